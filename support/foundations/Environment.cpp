#include <support/foundations/Environment.h>

#include <array>
#include <cerrno>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include <pwd.h>
#include <unistd.h>

namespace vq {

namespace {

// Calls `use` with the account of the process's effective user; false when there is none.
template <class Use>
bool WithAccount(Use use) {
  constexpr std::size_t kLargest = std::size_t{1} << 20U;
  const auto buffer = std::make_unique_for_overwrite<char[]>(kLargest);
  passwd entry{};
  passwd* found = nullptr;
  errno = ::getpwuid_r(::geteuid(), &entry, buffer.get(), kLargest, &found);
  if (found != nullptr) use(*found);
  return found != nullptr;
}

}  // namespace

bool HostName(std::string& name) {
  std::array<char, 256> buffer{};  // One byte more than offered, so that a closing zero is sure.
  name.clear();
  if (::gethostname(buffer.data(), buffer.size() - 1) == -1) return false;
  name = buffer.data();
  return true;
}

bool AccountName(std::string& name, std::size_t size) {
  // The account database is a file or a server, and an account keeps its name: it is read once for
  // each effective user that the process has in turn. Never destroyed.
  static std::mutex mutex;
  static auto* const known = new std::optional<std::pair<uid_t, std::string>>;
  name.clear();
  const uid_t user = ::geteuid();
  const std::lock_guard lock(mutex);
  if (!*known || (*known)->first != user) {
    std::string found;
    if (!WithAccount([&](const passwd& account) { found = account.pw_name; })) return false;
    known->emplace(user, found);
  }
  if ((*known)->second.size() >= size) return false;
  name = (*known)->second;
  return true;
}

std::string AccountHome() {
  std::string home;
  WithAccount([&](const passwd& account) { home = account.pw_dir; });
  return home;
}

}  // namespace vq
