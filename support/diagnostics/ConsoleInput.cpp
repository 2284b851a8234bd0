#include <support/diagnostics/ConsoleInput.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include <support/os_toolkit/os_file_system.h>
#include <support/security/SecretString.h>

namespace {

constexpr std::size_t kLongestLine = 4096;

// What is left to do after the signals that were held back have been delivered.
enum class After {
  kContinue,  // there was none
  kAskAgain,  // the process was stopped and continued, or a handler of its own took the signal
  kGiveUp,    // it was told to end, and a handler kept it alive
};

struct CaughtSignal {
  int number;
  After after;
};
constexpr std::array kCaughtSignals = {
    CaughtSignal{SIGHUP, After::kGiveUp},    CaughtSignal{SIGINT, After::kGiveUp},
    CaughtSignal{SIGQUIT, After::kGiveUp},   CaughtSignal{SIGTERM, After::kGiveUp},
    CaughtSignal{SIGPIPE, After::kGiveUp},   CaughtSignal{SIGTSTP, After::kAskAgain},
    CaughtSignal{SIGALRM, After::kAskAgain}, CaughtSignal{SIGUSR1, After::kAskAgain},
    CaughtSignal{SIGUSR2, After::kAskAgain},
};

// Switches a terminal's echo off, and back on whatever happens. At most one exists at a time.
//
// Signals that would end or stop the process are held back while the echo is off: this thread
// blocks them except while it waits, so that none can arrive between a check and the wait. A
// handler that runs on another thread passes its signal on to this one. Restore puts the terminal
// and the application's handlers back first and only then raises what was held back.
class SilentTerminal {
 public:
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
  void CatchSignals();
  bool SwitchEchoOff();

  int m_terminal;
  bool m_isSilent = false;
  bool m_isActive = true;
  bool m_hasAttributes = false;
  termios m_attributes{};  // as found
  sigset_t m_mask{};       // of this thread, as found
  sigset_t m_waitMask{};   // while it waits
  std::array<struct sigaction, kCaughtSignals.size()> m_actions{};
  std::array<bool, kCaughtSignals.size()> m_isCaught{};
};

// What the handler sees. It uses lock-free atomics and system calls only.
std::atomic<pid_t> promptProcess{0};
std::atomic<pid_t> promptThread{0};
std::atomic<std::uint64_t> heldBack{0};  // bit n: signal n
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

extern "C" void HoldBack(int signal) {
  const int error = errno;
  if (getpid() != promptProcess.load()) {
    // A child that another thread has forked has no such wait, so the default applies.
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

SilentTerminal::SilentTerminal(int terminal) : m_terminal(terminal) {
  promptProcess = getpid();
  promptThread = gettid();
  heldBack = 0;
  CatchSignals();
  m_isSilent = SwitchEchoOff();
}

void SilentTerminal::CatchSignals() {
  sigset_t caught;
  sigemptyset(&caught);
  for (std::size_t i = 0; i < kCaughtSignals.size(); ++i) {
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
  for (std::size_t i = 0; i < kCaughtSignals.size(); ++i) {
    if (!m_isCaught[i]) continue;
    sigaction(kCaughtSignals[i].number, &action, nullptr);
    sigdelset(&m_waitMask, kCaughtSignals[i].number);
  }
}

bool SilentTerminal::SwitchEchoOff() {
  m_hasAttributes = tcgetattr(m_terminal, &m_attributes) == 0;
  if (!m_hasAttributes) return false;
  termios silent = m_attributes;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
  while (tcsetattr(m_terminal, TCSAFLUSH, &silent) != 0) {
    if (errno != EINTR) return false;
  }
  // tcsetattr succeeds when it could make any one of the changes.
  termios now{};
  return tcgetattr(m_terminal, &now) == 0 && (now.c_lflag & (ECHO | ECHONL)) == 0;
}

bool SilentTerminal::WaitForInput() const {
  pollfd input{m_terminal, POLLIN, 0};
  while (ppoll(&input, 1, nullptr, &m_waitMask) < 0) {
    if (errno != EINTR) return true;  // reading reports the failure
    if (heldBack.load() != 0) return false;
  }
  return true;
}

After SilentTerminal::Restore() {
  if (!m_isActive) return After::kContinue;
  m_isActive = false;

  // A process that is in the background by now may still put the terminal back.
  sigset_t background;
  sigemptyset(&background);
  sigaddset(&background, SIGTTOU);
  pthread_sigmask(SIG_BLOCK, &background, nullptr);
  if (m_hasAttributes) {
    while (tcsetattr(m_terminal, TCSAFLUSH, &m_attributes) != 0 && errno == EINTR) {
    }
  }
  for (std::size_t i = 0; i < kCaughtSignals.size(); ++i) {
    if (m_isCaught[i]) sigaction(kCaughtSignals[i].number, &m_actions[i], nullptr);
  }
  pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);

  After after = After::kContinue;
  const std::uint64_t signals = heldBack.exchange(0);
  for (const CaughtSignal& caught : kCaughtSignals) {
    if ((signals & (std::uint64_t{1} << static_cast<unsigned>(caught.number))) == 0) continue;
    if (after != After::kGiveUp) after = caught.after;
    // Where this thread blocks a signal, another one of the application takes it.
    if (sigismember(&m_mask, caught.number) == 1) {
      kill(getpid(), caught.number);
    } else {
      raise(caught.number);
    }
  }
  return after;
}

enum class Answer { kGiven, kNone, kInterrupted };

std::mutex& ConsoleMutex() {
  static std::mutex mutex;
  return mutex;
}

bool IsSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Whether the process itself holds the other end of the pipe.
bool IsOwnPipe(const struct stat& input) {
  if (!S_ISFIFO(input.st_mode)) return false;
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", failure)) {
    const int file = std::atoi(entry.path().filename().c_str());
    struct stat status {};
    if (file != STDIN_FILENO && fstat(file, &status) == 0 && IsSameFile(input, status)) return true;
  }
  return false;
}

// The pipe that took descriptor 0 before this library was loaded, in a process that was started
// with it closed: an ORB product opens one when it is loaded. Nothing is ever written to it.
const struct TakenDescriptor {
  TakenDescriptor() : taken(fstat(STDIN_FILENO, &pipe) == 0 && IsOwnPipe(pipe)) {}
  struct stat pipe {};
  bool taken;
} atLoading;

// With 0 closed, the next file that the process opens would be taken for standard input.
bool IsStandardInputOpen() {
  struct stat now {};
  return fstat(STDIN_FILENO, &now) == 0 && !(atLoading.taken && IsSameFile(now, atLoading.pipe));
}

void Show(std::string_view text) {
  const vq::Descriptor terminal(open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC));
  const int out = terminal.IsOpen() ? terminal.Get() : STDERR_FILENO;
  while (!text.empty()) {
    const ssize_t count = write(out, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;  // the question can be answered unseen
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

// Appends one line of standard input to `line`, which has room for the longest.
Answer ReadLine(std::string& line, const SilentTerminal* silent) {
  for (;;) {
    if (silent != nullptr && !silent->WaitForInput()) return Answer::kInterrupted;
    char c = 0;
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) {  // shared with a program that made it non-blocking
      pollfd input{STDIN_FILENO, POLLIN, 0};
      if (silent == nullptr) poll(&input, 1, -1);
      continue;
    }
    if (count < 0) return Answer::kNone;
    if (count == 0) return line.empty() ? Answer::kNone : Answer::kGiven;
    if (c == '\n') {
      if (line.ends_with('\r')) line.pop_back();
      return Answer::kGiven;
    }
    if (c == '\0' || line.size() == kLongestLine) return Answer::kNone;
    line.push_back(c);
  }
}

// Stores an answer that was given; the former content goes to `line`, which is wiped.
int Deliver(Answer answer, vq::SecretString& line, std::string& result) {
  if (answer != Answer::kGiven) return 0;
  result.swap(line.Text());
  return 1;
}

}  // namespace

int getUserFromStdin(std::string& user) {
  const std::lock_guard lock(ConsoleMutex());
  if (!IsStandardInputOpen()) return 0;
  const bool isTerminal = isatty(STDIN_FILENO) == 1;
  if (isTerminal) Show("User name: ");
  vq::SecretString line;
  line.Text().reserve(kLongestLine);
  const Answer answer = ReadLine(line.Text(), nullptr);
  if (isTerminal && answer == Answer::kNone) Show("\n");
  return Deliver(answer, line, user);
}

int getPasswdFromStdin(std::string& password) {
  const std::lock_guard lock(ConsoleMutex());
  if (!IsStandardInputOpen()) return 0;
  vq::SecretString line;
  line.Text().reserve(kLongestLine);
  if (isatty(STDIN_FILENO) != 1) return Deliver(ReadLine(line.Text(), nullptr), line, password);

  for (;;) {
    SilentTerminal silent(STDIN_FILENO);
    Answer answer = Answer::kNone;
    if (silent.IsSilent()) {
      Show("Password: ");
      answer = ReadLine(line.Text(), &silent);
      Show("\n");  // the user's own line end was not shown
    }
    const auto after = silent.Restore();
    const bool asksAgain = after == After::kAskAgain;
    if (answer != Answer::kInterrupted || !asksAgain) return Deliver(answer, line, password);
    vq::Wipe(line.Text());  // keeps its room
  }
}
