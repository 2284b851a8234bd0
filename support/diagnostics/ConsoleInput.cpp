#include <support/diagnostics/ConsoleInput.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
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

// Switches the terminal's echo off, and back on whatever happens. At most one exists at a time.
//
// Signals that would end or stop the process are held back while the echo is off: this thread
// blocks them except while it waits, so that none can arrive between a check and the wait. A
// handler that runs on another thread passes its signal on to this one. The end puts the terminal
// and the application's handlers back first and only then raises what was held back.
class SilentTerminal {
 public:
  // `after` is set at the end.
  explicit SilentTerminal(After& after);
  ~SilentTerminal();
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  bool IsSilent() const { return m_isSilent; }
  // Of this thread, for a wait that a signal ends.
  const sigset_t& WaitMask() const { return m_waitMask; }

 private:
  void CatchSignals();
  bool SwitchEchoOff();
  After RaiseSignals() const;

  After& m_after;
  bool m_isSilent = false;
  bool m_hasAttributes = false;
  termios m_attributes{};  // as found
  sigset_t m_mask{};       // of this thread, as found
  sigset_t m_waitMask{};   // while it waits
  sigset_t m_caught{};
  std::array<struct sigaction, kCaughtSignals.size()> m_actions{};
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

SilentTerminal::SilentTerminal(After& after) : m_after(after) {
  promptProcess = getpid();
  promptThread = gettid();
  heldBack = 0;
  CatchSignals();
  m_isSilent = SwitchEchoOff();
}

void SilentTerminal::CatchSignals() {
  sigemptyset(&m_caught);
  for (std::size_t i = 0; i < kCaughtSignals.size(); ++i) {
    sigaction(kCaughtSignals[i].number, nullptr, &m_actions[i]);
    if (m_actions[i].sa_handler != SIG_IGN) sigaddset(&m_caught, kCaughtSignals[i].number);
  }
  pthread_sigmask(SIG_BLOCK, &m_caught, &m_mask);

  struct sigaction action {};
  action.sa_handler = HoldBack;
  action.sa_mask = m_caught;
  action.sa_flags = SA_RESTART | SA_ONSTACK;
  m_waitMask = m_mask;
  for (const CaughtSignal& caught : kCaughtSignals) {
    if (sigismember(&m_caught, caught.number) == 0) continue;
    sigaction(caught.number, &action, nullptr);
    sigdelset(&m_waitMask, caught.number);
  }
}

bool SilentTerminal::SwitchEchoOff() {
  m_hasAttributes = tcgetattr(STDIN_FILENO, &m_attributes) == 0;
  if (!m_hasAttributes) return false;
  termios silent = m_attributes;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
  while (tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) != 0) {
    if (errno != EINTR) return false;
  }
  // tcsetattr succeeds when it could make any one of the changes.
  termios now{};
  return tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & (ECHO | ECHONL)) == 0;
}

SilentTerminal::~SilentTerminal() {
  // A process that is in the background by now may still put the terminal back.
  sigset_t background;
  sigemptyset(&background);
  sigaddset(&background, SIGTTOU);
  pthread_sigmask(SIG_BLOCK, &background, nullptr);
  if (m_hasAttributes) {
    while (tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_attributes) != 0 && errno == EINTR) {
    }
  }
  for (std::size_t i = 0; i < kCaughtSignals.size(); ++i) {
    const int number = kCaughtSignals[i].number;
    if (sigismember(&m_caught, number) == 1) sigaction(number, &m_actions[i], nullptr);
  }
  pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);
  m_after = RaiseSignals();
}

After SilentTerminal::RaiseSignals() const {
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

std::mutex consoleMutex;

constexpr const char* kStandardInput = "/proc/self/fd/0";

// The file of a descriptor, such as "pipe:[4711]"; empty when there is none.
std::string FileOf(const std::filesystem::path& descriptor) {
  std::error_code failure;
  return std::filesystem::read_symlink(descriptor, failure).string();
}

// The pipe that took descriptor 0 before this library was loaded, in a process that was started
// with it closed: an ORB product opens one when it is loaded, so the process has both ends. Nothing
// is ever written to it. Empty without one; never destroyed.
const std::string& takenPipe = *new std::string([] {
  const std::string input = FileOf(kStandardInput);
  if (!input.starts_with("pipe:")) return std::string();
  std::error_code failure;
  const std::filesystem::directory_iterator descriptors("/proc/self/fd", failure);
  const auto ends =
      std::ranges::count(descriptors, input, [](const auto& entry) { return FileOf(entry); });
  return ends > 1 ? input : "";
}());

// With 0 closed, the next file that the process opens would be taken for standard input.
bool IsStandardInputOpen() {
  const bool isTaken = !takenPipe.empty() && FileOf(kStandardInput) == takenPipe;
  return fcntl(STDIN_FILENO, F_GETFD) != -1 && !isTaken;
}

void Show(std::string_view text) {
  const vq::Descriptor terminal(open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC));
  const int out = terminal.IsOpen() ? terminal.Get() : STDERR_FILENO;
  vq::WriteAll(out, text);  // A question that cannot be shown can be answered unseen.
}

// Waits for something to read, the end of input and a failure included. False when a signal was
// held back.
bool WaitForInput(const sigset_t* mask) {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (ppoll(&input, 1, nullptr, mask) < 0 && errno == EINTR) {
    if (heldBack.load() != 0) return false;
  }
  return true;
}

// Appends one line of standard input to `line`, which has room for the longest. `mask` is that of
// the thread while it waits; null for its usual one.
Answer ReadLine(std::string& line, const sigset_t* mask = nullptr) {
  for (bool waits = mask != nullptr;;) {
    if (waits && !WaitForInput(mask)) return Answer::kInterrupted;
    char c = 0;
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    // A program that shares standard input may have made it non-blocking.
    if (count < 0 && errno == EAGAIN) waits = true;
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
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
  const std::lock_guard lock(consoleMutex);
  if (!IsStandardInputOpen()) return 0;
  const bool isTerminal = isatty(STDIN_FILENO) == 1;
  if (isTerminal) Show("User name: ");
  vq::SecretString line;
  line.Text().reserve(kLongestLine);
  const Answer answer = ReadLine(line.Text());
  if (isTerminal && answer == Answer::kNone) Show("\n");
  return Deliver(answer, line, user);
}

int getPasswdFromStdin(std::string& password) {
  const std::lock_guard lock(consoleMutex);
  if (!IsStandardInputOpen()) return 0;
  vq::SecretString line;
  line.Text().reserve(kLongestLine);
  if (isatty(STDIN_FILENO) != 1) return Deliver(ReadLine(line.Text()), line, password);

  for (;;) {
    After after = After::kContinue;
    Answer answer = Answer::kNone;
    if (const SilentTerminal silent(after); silent.IsSilent()) {
      Show("Password: ");
      answer = ReadLine(line.Text(), &silent.WaitMask());
      Show("\n");  // the user's own line end was not shown
    }
    if (answer != Answer::kInterrupted || after != After::kAskAgain) {
      return Deliver(answer, line, password);
    }
    vq::Wipe(line.Text());  // keeps its room
  }
}
