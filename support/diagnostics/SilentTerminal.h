// Takes a terminal's echo away for a while and gives it back whatever happens.
//
//   vq::SilentTerminal silent(STDIN_FILENO);
//   if (!silent.IsSilent()) ...                       // the echo could not be switched off
//   while (silent.WaitForInput()) ...                 // read one byte
//   if (silent.Restore() == vq::SilentTerminal::After::kAskAgain) ...
//
// Signals that would end or stop the process are held back while the echo is off: this thread
// blocks them save while it waits, so none can slip in between a look and the wait. A handler that
// runs on another thread passes its signal on to this one. Restore puts the terminal and the
// application's handlers back first and only then raises what was held back.
#ifndef VQ_SUPPORT_DIAGNOSTICS_SILENTTERMINAL_H
#define VQ_SUPPORT_DIAGNOSTICS_SILENTTERMINAL_H

#include <array>
#include <csignal>
#include <cstddef>

#include <termios.h>

namespace vq {

// Thread contract: an object belongs to one thread, and there is one object at a time in the
// process, which its user sees to.
class SilentTerminal {
 public:
  // What is left to do once the signals that were held back have taken their course.
  enum class After {
    kGoOn,      // there was none
    kAskAgain,  // the process was stopped and goes on, or a handler of its own took the signal
    kGiveUp,    // it was told to end, and chose to live
  };

  explicit SilentTerminal(int terminal);
  ~SilentTerminal() { Restore(); }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  bool IsSilent() const { return m_isSilent; }

  // Returns true when there is something to read, the end of input and a failure included; false
  // when a signal was held back.
  bool WaitForInput() const;

  // Undoes everything; a second call does nothing.
  After Restore();

 private:
  static constexpr std::size_t kSignals = 9;

  void CatchSignals();
  bool SwitchEchoOff();

  int m_terminal;
  bool m_isSilent = false;
  bool m_isActive = true;
  bool m_hasAttributes = false;
  termios m_attributes{};  // as found
  sigset_t m_mask{};       // of this thread, as found
  sigset_t m_waitMask{};   // while it waits
  std::array<struct sigaction, kSignals> m_actions{};
  std::array<bool, kSignals> m_isCaught{};
};

}  // namespace vq

#endif  // VQ_SUPPORT_DIAGNOSTICS_SILENTTERMINAL_H
