#include <support/os_toolkit/os_file_system.h>

#include <filesystem>
#include <system_error>

bool os_file_system::exists(const std::string& path) {
  // The system would look for the part before a zero byte, which is another file.
  if (path.find('\0') != std::string::npos) return false;
  std::error_code error;
  return std::filesystem::exists(path, error);
}
