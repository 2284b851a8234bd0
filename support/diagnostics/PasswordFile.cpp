#include <support/diagnostics/PasswordFile.h>

#include <cerrno>
#include <cstddef>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/os_file_system.h>
#include <support/os_toolkit/os_tokenizer.h>
#include <support/security/SecretString.h>

namespace {

TDiagRegister diagModule("PasswordFile");

constexpr std::size_t kLongestFile = 64U * 1024U;

// Why the open file is not private; empty when it is.
std::string WhyNotPrivate(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return "its owner and mode cannot be read";
  if (!S_ISREG(status.st_mode)) return "it is not a regular file";
  if (status.st_uid != geteuid()) {
    return fmt::format("it belongs to another user (number {}, not {})", status.st_uid, geteuid());
  }
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return fmt::format("group or others have rights to it (mode {:04o}); make it 0600",
                       status.st_mode & 07777U);
  }
  return {};
}

// Reads the whole file into one buffer that never grows, so that no copy is left behind in memory.
// Returns why that failed; empty when it was read.
std::string ReadAll(int file, std::string& text) {
  text.resize(kLongestFile + 1);
  std::size_t length = 0;
  while (length < text.size()) {
    const ssize_t count = read(file, text.data() + length, text.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return "it cannot be read";
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  if (length > kLongestFile) return "it is too long";
  text.resize(length);
  return {};
}

// Why the file is refused; empty when it was read.
std::string ReadFile(const std::string& path, std::string& user, std::string& password) {
  if (path.find('\0') != std::string::npos) return "its name holds a zero byte";
  // Without O_NONBLOCK, opening a named pipe would wait for a writer.
  const vq::Descriptor file(
      open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
  if (!file.IsOpen()) {
    if (errno == ELOOP) return "it is a symbolic link; name the file itself";
    return std::generic_category().message(errno);
  }
  vq::SecretString text;
  std::string reason = WhyNotPrivate(file.Get());
  if (reason.empty()) reason = ReadAll(file.Get(), text.Text());
  return reason.empty() ? vq::ParsePasswordFile(text.Text(), user, password) : reason;
}

}  // namespace

std::string vq::ParsePasswordFile(std::string_view text, std::string& user, std::string& password) {
  if (text.find('\0') != std::string_view::npos) return "it holds a zero byte";
  std::optional<std::string_view> newUser, newPassword;
  while (!text.empty()) {
    std::string_view line = Cut(text, '\n');
    if (line.ends_with('\r')) line.remove_suffix(1);  // a line end of other systems
    if (line.starts_with('#') || line.find_first_not_of(" \t") == std::string_view::npos) continue;

    const bool isUser = line.starts_with("user=");
    if (!isUser && !line.starts_with("password=")) return "a line is neither user= nor password=";
    std::optional<std::string_view>& value = isUser ? newUser : newPassword;
    if (value) return "a value is given twice";
    value = line.substr(line.find('=') + 1);
  }
  if (newUser) user = *newUser;
  if (newPassword) {
    Wipe(password);
    password = *newPassword;
  }
  return {};
}

std::string vq::WhyPasswordFileIsRefused(const std::string& path) {
  std::string user;
  SecretString password;
  return ReadFile(path, user, password.Text());
}

int getUsrAndPasswdFromFile(const std::string& path, std::string& user, std::string& password) {
  const TDiagFunc diag(diagModule, "getUsrAndPasswdFromFile");
  const std::string reason = ReadFile(path, user, password);
  if (reason.empty()) return 1;
  VQ_LOG(diag, 1) << "Password file " << path << " refused: " << reason;
  return 0;
}
