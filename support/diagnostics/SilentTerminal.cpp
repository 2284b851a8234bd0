#include <support/diagnostics/SilentTerminal.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using After = vq::SilentTerminal::After;

struct CaughtSignal {
  int number;
  After after;
};
constexpr std::array<CaughtSignal, 9> kCaughtSignals = {{
    {SIGHUP, After::kGiveUp},
    {SIGINT, After::kGiveUp},
    {SIGQUIT, After::kGiveUp},
    {SIGTERM, After::kGiveUp},
    {SIGPIPE, After::kGiveUp},
    {SIGTSTP, After::kAskAgain},
    {SIGALRM, After::kAskAgain},
    {SIGUSR1, After::kAskAgain},
    {SIGUSR2, After::kAskAgain},
}};

// What the handler sees. It uses lock-free atomics and system calls only.
std::atomic<pid_t> promptProcess{0};
std::atomic<pid_t> promptThread{0};
std::atomic<std::uint64_t> heldBack{0};  // bit n: signal n
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

extern "C" void HoldBack(int signal) {
  const int error = errno;
  if (getpid() != promptProcess.load()) {
    // A child that another thread has forked: nobody waits there, so the default holds.
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    raise(signal);
  } else if (const pid_t thread = promptThread.load(); gettid() != thread) {
    syscall(SYS_tgkill, getpid(), thread, signal);
  } else {
    heldBack.fetch_or(std::uint64_t{1} << static_cast<unsigned>(signal));
  }
  errno = error;
}

}  // namespace

vq::SilentTerminal::SilentTerminal(int terminal) : m_terminal(terminal) {
  promptProcess = getpid();
  promptThread = gettid();
  heldBack = 0;
  CatchSignals();
  m_isSilent = SwitchEchoOff();
}

void vq::SilentTerminal::CatchSignals() {
  static_assert(kCaughtSignals.size() == kSignals);
  sigset_t caught;
  sigemptyset(&caught);
  for (std::size_t i = 0; i < kSignals; ++i) {
    const int number = kCaughtSignals[i].number;
    sigaction(number, nullptr, &m_actions[i]);
    m_isCaught[i] = m_actions[i].sa_handler != SIG_IGN;
    if (m_isCaught[i]) sigaddset(&caught, number);
  }
  pthread_sigmask(SIG_BLOCK, &caught, &m_mask);

  struct sigaction action {};
  action.sa_handler = HoldBack;
  action.sa_mask = caught;
  action.sa_flags = SA_RESTART | SA_ONSTACK;
  m_waitMask = m_mask;
  for (std::size_t i = 0; i < kSignals; ++i) {
    if (!m_isCaught[i]) continue;
    sigaction(kCaughtSignals[i].number, &action, nullptr);
    sigdelset(&m_waitMask, kCaughtSignals[i].number);
  }
}

bool vq::SilentTerminal::SwitchEchoOff() {
  m_hasAttributes = tcgetattr(m_terminal, &m_attributes) == 0;
  if (!m_hasAttributes) return false;
  termios silent = m_attributes;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
  while (tcsetattr(m_terminal, TCSAFLUSH, &silent) != 0) {
    if (errno != EINTR) return false;
  }
  // tcsetattr is content when it could make any one of the changes.
  termios now{};
  return tcgetattr(m_terminal, &now) == 0 && (now.c_lflag & (ECHO | ECHONL)) == 0;
}

bool vq::SilentTerminal::WaitForInput() const {
  pollfd input{m_terminal, POLLIN, 0};
  while (ppoll(&input, 1, nullptr, &m_waitMask) < 0) {
    if (errno != EINTR) return true;  // reading tells what is wrong
    if (heldBack.load() != 0) return false;
  }
  return true;
}

After vq::SilentTerminal::Restore() {
  if (!m_isActive) return After::kGoOn;
  m_isActive = false;

  // A process that has come into the background meanwhile may still put the terminal back.
  sigset_t background;
  sigemptyset(&background);
  sigaddset(&background, SIGTTOU);
  pthread_sigmask(SIG_BLOCK, &background, nullptr);
  if (m_hasAttributes) {
    while (tcsetattr(m_terminal, TCSAFLUSH, &m_attributes) != 0 && errno == EINTR) {
    }
  }
  for (std::size_t i = 0; i < kSignals; ++i) {
    if (m_isCaught[i]) sigaction(kCaughtSignals[i].number, &m_actions[i], nullptr);
  }
  pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);

  After after = After::kGoOn;
  const std::uint64_t signals = heldBack.exchange(0);
  for (const CaughtSignal& caught : kCaughtSignals) {
    if ((signals & (std::uint64_t{1} << static_cast<unsigned>(caught.number))) == 0) continue;
    if (after != After::kGiveUp) after = caught.after;
    // Where this thread blocks a signal, another one of the application waits for it.
    if (sigismember(&m_mask, caught.number) == 1) {
      kill(getpid(), caught.number);
    } else {
      raise(caught.number);
    }
  }
  return after;
}
