// Keeps a thread, and those that it starts meanwhile, from taking signals but those of faults.
#ifndef VQ_SUPPORT_FOUNDATIONS_NOSIGNALS_H
#define VQ_SUPPORT_FOUNDATIONS_NOSIGNALS_H

#include <csignal>

namespace vq {

// While it exists. Destroyed on the thread that constructed it.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t m_before{};
};

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_NOSIGNALS_H
