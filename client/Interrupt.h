// Waiting that Ctrl-C ends in order.
#ifndef VQ_CLIENT_INTERRUPT_H
#define VQ_CLIENT_INTERRUPT_H

#include <chrono>

namespace vqclient {

// From construction on, the first SIGINT or SIGTERM is only noted, whatever the program does at
// that moment; the next one ends it at once. Thread contract: one object a process, one thread.
class Interrupt {
 public:
  Interrupt();

  // Waits for the time, or less when one of the two signals has arrived or arrives. True when one
  // has.
  bool Wait(std::chrono::milliseconds time);
};

}  // namespace vqclient

#endif  // VQ_CLIENT_INTERRUPT_H
