#include "Interrupt.h"

#include <cerrno>
#include <csignal>
#include <ctime>

namespace vqclient {
namespace {

sigset_t Signals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

}  // namespace

Interrupt::Interrupt() {
  const sigset_t signals = Signals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool Interrupt::Wait(std::chrono::milliseconds time) {
  const sigset_t signals = Signals();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const timespec limit{static_cast<time_t>(seconds.count()),
                       static_cast<long>((time - seconds).count() * 1'000'000)};
  int caught = 0;
  do {
    caught = sigtimedwait(&signals, nullptr, &limit);
  } while (caught == -1 && errno == EINTR);
  return caught != -1;
}

}  // namespace vqclient
