// Waiting that Ctrl-C ends in order.
#ifndef VQ_CLIENT_INTERRUPT_H
#define VQ_CLIENT_INTERRUPT_H

#include <chrono>

namespace vqclient {

// From construction on, the first SIGINT or SIGTERM is only noted, whatever the program is doing;
// the next one ends it at once. One object a process, in one thread.
class Interrupt {
 public:
  Interrupt();

  // Waits for the time, or until one of the two signals arrives. True when one has arrived.
  bool Wait(std::chrono::milliseconds time);
};

}  // namespace vqclient

#endif  // VQ_CLIENT_INTERRUPT_H
