// A wait that SIGINT and SIGTERM end.
#ifndef VQ_CLIENT_INTERRUPT_H
#define VQ_CLIENT_INTERRUPT_H

#include <chrono>

namespace vqclient {

// Once constructed, the first SIGINT or SIGTERM only ends WaitUntil; the second ends the process.
// One object per process, used by one thread.
class Interrupt {
 public:
  Interrupt();

  // Waits until `end`, within the next 24 days, or until one of the signals arrives. Returns
  // whether one has arrived.
  bool WaitUntil(std::chrono::steady_clock::time_point end);
};

}  // namespace vqclient

#endif  // VQ_CLIENT_INTERRUPT_H
