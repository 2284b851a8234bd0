// What the suite asks of the file system, an open file that closes itself, and writing to it.
//
//   if (!os_file_system::exists(path)) ...
//   const vq::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
//   if (!file.IsOpen()) ...   // errno has the reason
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <unistd.h>

class os_file_system {
 public:
  // Whether something is at the path: a file, a directory, anything. A link counts as what it leads
  // to. False also when the path cannot be looked at, is empty, or contains a zero byte.
  static bool exists(const std::string& path) {
    // The system would look for the part before a zero byte, which is another file.
    if (path.find('\0') != std::string::npos) return false;
    std::error_code error;
    return std::filesystem::exists(path, error);
  }
};

namespace vq {

// Owns a file descriptor, of a file, a socket or a terminal.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : m_number(number) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }

  bool IsOpen() const { return m_number >= 0; }
  int Get() const { return m_number; }  // -1 when it is not open

  // True when it was open and the system reports no error, such as a write that failed late.
  bool Close() { return IsOpen() && ::close(std::exchange(m_number, -1)) == 0; }

 private:
  int m_number;
};

// Writes all of the text to the file of that number. False when that fails; errno has the reason.
inline bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written == -1 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace vq

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
