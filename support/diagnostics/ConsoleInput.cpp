#include <support/diagnostics/ConsoleInput.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <support/diagnostics/SilentTerminal.h>
#include <support/security/SecretString.h>

namespace {

constexpr std::size_t kLongestLine = 4096;

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
// with it closed: an ORB product opens one when it is loaded. Nobody would ever write to it.
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
  const int terminal = open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC);
  const int out = terminal >= 0 ? terminal : STDERR_FILENO;
  while (!text.empty()) {
    const ssize_t count = write(out, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;  // the question can be answered without having been seen
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  if (terminal >= 0) close(terminal);
}

// Appends one line of standard input to `line`, which has room for the longest.
Answer ReadLine(std::string& line, const vq::SilentTerminal* silent) {
  for (;;) {
    if (silent != nullptr && !silent->WaitForInput()) return Answer::kInterrupted;
    char c = 0;
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) {  // shared with a program that does not want to wait
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

// Stores an answer that was given; what stood there goes to `line`, which is wiped.
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
    vq::SilentTerminal silent(STDIN_FILENO);
    Answer answer = Answer::kNone;
    if (silent.IsSilent()) {
      Show("Password: ");
      answer = ReadLine(line.Text(), &silent);
      Show("\n");  // the user's own line end was not shown
    }
    const auto after = silent.Restore();
    const bool asksAgain = after == vq::SilentTerminal::After::kAskAgain;
    if (answer != Answer::kInterrupted || !asksAgain) return Deliver(answer, line, password);
    vq::Wipe(line.Text());  // keeps its room
  }
}
