#include <support/foundations/Platform.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace vq {

namespace {

std::atomic<const Platform*> current{nullptr};

// Calls `use` with the account of the process's effective user; false when there is none.
template <class Use>
bool WithAccount(Use use) {
  constexpr std::size_t kLargest = std::size_t{1} << 20U;
  for (std::vector<char> buffer(1024);; buffer.resize(buffer.size() * 4)) {
    passwd entry{};
    passwd* found = nullptr;
    const int rc = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    if (rc == 0 && found != nullptr) {
      use(*found);
      return true;
    }
    if (rc != ERANGE || buffer.size() >= kLargest) return false;
  }
}

}  // namespace

bool Platform::HostName(std::string& name) const {
  std::array<char, 256> buffer{};  // One byte more than offered, so that a closing zero is sure.
  name.clear();
  if (::gethostname(buffer.data(), buffer.size() - 1) == -1) return false;
  name = buffer.data();
  return true;
}

bool Platform::AccountName(std::string& name, std::size_t size) const {
  name.clear();
  return WithAccount([&](const passwd& account) { name = account.pw_name; }) &&
         (name.size() < size || (name.clear(), false));
}

std::string Platform::AccountHome() const {
  std::string home;
  WithAccount([&](const passwd& account) { home = account.pw_dir; });
  return home;
}

std::string Platform::MachineSettingsDirectory() const {
  return "/etc/vq/";
}

const Platform& Platform::Current() {
  static const Platform machine;
  const Platform* replaced = current.load();
  return replaced != nullptr ? *replaced : machine;
}

PlatformReplacement::PlatformReplacement(const Platform& platform)
    : m_former(current.exchange(&platform)) {}

PlatformReplacement::~PlatformReplacement() {
  current = m_former;
}

}  // namespace vq
