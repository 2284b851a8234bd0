#include <client/Interrupt.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vqclient {
namespace {

std::array<int, 2> noted{-1, -1};  // a pipe; the signal handler writes into it

extern "C" void NoteSignal(int) {
  const int error = errno;
  [[maybe_unused]] const ssize_t ignored = write(noted[1], "", 1);
  errno = error;
}

}  // namespace

Interrupt::Interrupt() {
  if (pipe2(noted.data(), O_CLOEXEC | O_NONBLOCK) == -1) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  struct sigaction action {};
  action.sa_handler = NoteSignal;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

bool Interrupt::WaitUntil(std::chrono::steady_clock::time_point end) {
  pollfd waiting{noted[0], POLLIN, 0};
  for (;;) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    const int found = poll(&waiting, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
    if (found != -1 || errno != EINTR) return found == 1;
  }
}

}  // namespace vqclient
