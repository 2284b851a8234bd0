// A program that is started with stdin, stdout or stderr closed must not have another file in their
// place: an ORB product opens a pipe as soon as it is loaded, which is before main. The entry below
// runs before the initialization of every shared library.

#include <initializer_list>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// No function of the C library but the bare system call: nothing is initialized yet. The
// replacement fails at once when it is used, as the closed descriptor would.
__attribute__((no_sanitize("address", "thread", "undefined"))) void OpenStandardStreams(int, char**,
                                                                                        char**) {
  constexpr int kWrongWay[] = {O_WRONLY, O_RDONLY, O_RDONLY};
  for (int stream = 0; stream < 3; ++stream) {
    if (syscall(SYS_fcntl, stream, F_GETFD) >= 0) continue;
    // The lowest free number is taken, which is this one.
    syscall(SYS_openat, AT_FDCWD, "/dev/null", kWrongWay[stream]);
  }
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const atStart)(int, char**,
                                                                    char**) = &OpenStandardStreams;

}  // namespace
