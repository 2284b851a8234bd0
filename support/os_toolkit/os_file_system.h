// What the suite asks of the file system.
//
//   if (!os_file_system::exists(path)) ...
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H

#include <filesystem>
#include <string>
#include <system_error>

class os_file_system {
 public:
  // Whether something stands at the path: a file, a directory, anything. A link counts as what it
  // leads to. False also when the path cannot be looked at, is empty, or holds a zero byte.
  static bool exists(const std::string& path) {
    // The system would look for the part before a zero byte, which is another file.
    if (path.find('\0') != std::string::npos) return false;
    std::error_code error;
    return std::filesystem::exists(path, error);
  }
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
