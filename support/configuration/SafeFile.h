// Reads and replaces a small file safely: neither a crash nor a second writer can corrupt it.
//
//   const vq::FileLock lock(path + ".lock", std::chrono::seconds(10));
//   if (!lock.Held()) return false;
//   vq::ReplaceFile(path, text, error);
//
// Error strings are for a person: the path and the system's message.
#ifndef VQ_SUPPORT_CONFIGURATION_SAFEFILE_H
#define VQ_SUPPORT_CONFIGURATION_SAFEFILE_H

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include <support/os_toolkit/os_file_system.h>

namespace vq {

enum class ReadResult { kRead, kMissing, kFailed };

// Reads the regular file at `path` into `text`. kMissing when there is none. kFailed, with `error`
// set, when it can't be read, is no regular file or has more than `limit` bytes. `text` is changed
// only with kRead.
ReadResult ReadFile(const std::string& path, std::size_t limit, std::string& text,
                    std::string& error);

// Puts `text` into the file at `path`, completely or not at all: it is written to `path` + ".new",
// flushed to the disk and renamed. The new file has the permissions of the old one; where there was
// none, those that the process's mask leaves of 0644. Returns false, with `error` set and the old
// file unchanged, when a step fails. Callers exclude each other with a FileLock.
bool ReplaceFile(const std::string& path, std::string_view text, std::string& error);

// Excludes other writers that use the same lock file, in this process and in others. The system
// releases the lock when its holder ends, however it ends; the lock file itself stays.
class FileLock {
 public:
  // Creates the lock file at `path` where it is missing, and waits at most `wait` for its holder.
  FileLock(const std::string& path, std::chrono::milliseconds wait);

  bool Held() const { return m_error.empty(); }
  const std::string& Error() const { return m_error; }  // empty when held

 private:
  Descriptor m_file;
  std::string m_error;
};

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_SAFEFILE_H
