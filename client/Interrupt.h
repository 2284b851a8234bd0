// A wait that SIGHUP, SIGINT and SIGTERM end.
#ifndef VQ_CLIENT_INTERRUPT_H
#define VQ_CLIENT_INTERRUPT_H

#include <chrono>

namespace vqclient {

// Once constructed, the first of these signals only ends WaitUntil; the same one again ends the
// process. One object per process, used by one thread.
class Interrupt {
 public:
  Interrupt();

  // Waits until `end`, within the next 24 days, or until one of the signals arrives. Returns
  // whether one has arrived.
  bool WaitUntil(std::chrono::steady_clock::time_point end);
};

}  // namespace vqclient

#endif  // VQ_CLIENT_INTERRUPT_H
