// What the suite asks of the file system.
//
//   if (!os_file_system::exists(path)) ...
#ifndef VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
#define VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H

#include <string>

// Thread contract: any thread, any time.
class os_file_system {
 public:
  // Whether something stands at the path: a file, a directory, anything. A link counts as what it
  // leads to. False also when the path cannot be looked at, is empty, or holds a zero byte.
  static bool exists(const std::string& path);
};

#endif  // VQ_SUPPORT_OS_TOOLKIT_OS_FILE_SYSTEM_H
