#include <support/configuration/SafeFile.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vq {

namespace {

std::string SystemError(const std::string& path) {
  return path + ": " + std::generic_category().message(errno);
}

// Writes the new content under its temporary name, with the permissions of `former` if there is
// such a file, and flushes it to the disk.
bool WriteDurably(const std::string& path, std::string_view text, const struct stat* former) {
  ::unlink(path.c_str());  // What a writer left that was killed; O_EXCL follows no link.
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                         former != nullptr ? 0600 : 0644));
  return file.IsOpen() && WriteAll(file.Get(), text) &&
         (former == nullptr || ::fchmod(file.Get(), former->st_mode & 07777U) == 0) &&
         ::fsync(file.Get()) == 0 && file.Close();
}

}  // namespace

ReadResult ReadFile(const std::string& path, std::size_t limit, std::string& text,
                    std::string& error) {
  // O_NONBLOCK, so that a pipe under this name does not stop the process.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  const auto fail = [&error](const std::string& why) {
    error = why;
    return ReadResult::kFailed;
  };
  struct stat status {};
  if (!file.IsOpen() && errno == ENOENT) return ReadResult::kMissing;
  if (!file.IsOpen() || ::fstat(file.Get(), &status) == -1) return fail(SystemError(path));
  if (!S_ISREG(status.st_mode)) return fail(path + ": not a regular file");
  std::string content;
  char buffer[16384];
  for (;;) {
    const ssize_t size = ::read(file.Get(), buffer, sizeof buffer);
    if (size == -1 && errno == EINTR) continue;
    if (size == -1) return fail(SystemError(path));
    if (size == 0) break;
    content.append(buffer, static_cast<std::size_t>(size));
    if (content.size() <= limit) continue;
    return fail(path + ": more than " + std::to_string(limit) + " bytes");
  }
  text = std::move(content);
  return ReadResult::kRead;
}

bool ReplaceFile(const std::string& path, std::string_view text, std::string& error) {
  struct stat status {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  const std::string temporary = path + ".new";
  const auto fail = [&](const std::string& where) {
    error = SystemError(where);
    ::unlink(temporary.c_str());
    return false;
  };
  if (!WriteDurably(temporary, text, exists ? &status : nullptr)) return fail(temporary);
  if (std::rename(temporary.c_str(), path.c_str()) != 0) return fail(path);
  // The rename reaches the disk with its directory. A file system that can't flush that on demand
  // does it later; the file is complete in either case.
  const std::string inDirectory = path.substr(0, path.rfind('/') + 1) + ".";
  const Descriptor directory(::open(inDirectory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.IsOpen()) ::fsync(directory.Get());
  return true;
}

FileLock::FileLock(const std::string& path, std::chrono::milliseconds wait)
    // O_NONBLOCK, so that a pipe under this name does not stop the process.
    : m_file(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644)) {
  constexpr std::chrono::milliseconds kPause{5};
  struct stat status {};
  if (!m_file.IsOpen() || ::fstat(m_file.Get(), &status) == -1) {
    m_error = SystemError(path);
    return;
  }
  if (!S_ISREG(status.st_mode)) {
    m_error = path + ": not a regular file";
    return;
  }
  // The system offers no lock that waits for a limited time.
  const auto end = std::chrono::steady_clock::now() + wait;
  while (::flock(m_file.Get(), LOCK_EX | LOCK_NB) == -1) {
    const bool taken = errno == EWOULDBLOCK || errno == EINTR;
    if (!taken || std::chrono::steady_clock::now() >= end) {
      m_error = taken ? path + ": another program is writing" : SystemError(path);
      return;
    }
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace vq
