// Waiting that Ctrl-C ends in order.
#ifndef VQ_CLIENT_INTERRUPT_H
#define VQ_CLIENT_INTERRUPT_H

#include <chrono>

namespace vqclient {

// Blocks SIGINT and SIGTERM from construction on, so that they are noticed by Wait alone. Made
// before any thread is, because threads inherit what is blocked. Thread contract: one thread.
class Interrupt {
 public:
  Interrupt();

  // Waits for the time, or less if one of the two signals arrives. True when one has.
  bool Wait(std::chrono::milliseconds time);
};

}  // namespace vqclient

#endif  // VQ_CLIENT_INTERRUPT_H
