// A program that is started with stdin, stdout or stderr closed must not open another file under
// their numbers: an ORB product opens a pipe when it is loaded, which is before main. The function
// below runs before the initialization of any shared library.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Only bare system calls: the C library is not initialized yet. The replacement is opened the wrong
// way round, so that its use fails as that of a closed descriptor.
__attribute__((no_sanitize("address", "thread", "undefined"))) void OpenStandardStreams(int, char**,
                                                                                        char**) {
  constexpr int kWrongWay[] = {O_WRONLY, O_RDONLY, O_RDONLY};
  for (int stream = 0; stream < 3; ++stream) {
    if (syscall(SYS_fcntl, stream, F_GETFD) >= 0) continue;
    // This opens the lowest free number, which is `stream`.
    syscall(SYS_openat, AT_FDCWD, "/dev/null", kWrongWay[stream]);
  }
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const atStart)(int, char**,
                                                                    char**) = &OpenStandardStreams;

}  // namespace
