// A user at a pseudo-terminal, for tests of what a program asks there.
//
//   PseudoTerminal terminal([] { std::string text; return getUserFromStdin(text); });
//   ASSERT_TRUE(terminal.Sees("User name: "));
//   terminal.Type("operator\n");
//   EXPECT_EQ(WEXITSTATUS(terminal.NextStatus()), 1);
#ifndef VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H
#define VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

// Thread contract: belongs to one thread.
class PseudoTerminal {
 public:
  // Runs `program` in a process of its own, in the foreground of a new terminal, as a shell would
  // run it; its result is the exit code. Its standard output is kept apart.
  explicit PseudoTerminal(const std::function<int()>& program) {
    int status[2];
    int output[2];
    if (pipe2(status, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC | O_NONBLOCK) != 0) {
      throw std::runtime_error("no pipes");
    }
    std::fflush(nullptr);  // or the program would write what this process has left in its buffers
    m_leader = forkpty(&m_master, nullptr, nullptr, nullptr);
    if (m_leader < 0) throw std::runtime_error("no terminal");
    if (m_leader == 0) {
      close(status[0]);
      Lead(program, status[1], output[1]);
    }
    close(status[1]);
    close(output[1]);
    m_status = status[0];
    m_output = output[0];
    m_program = NextStatus();
    if (m_program <= 0) throw std::runtime_error("no program");
  }
  ~PseudoTerminal() {
    if (m_program > 0) kill(m_program, SIGKILL);
    kill(m_leader, SIGKILL);
    waitpid(m_leader, nullptr, 0);
    for (const int file : {m_master, m_status, m_output}) close(file);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Waits until `text` has appeared behind what an earlier call found; false after ten seconds.
  bool Sees(const std::string& text) {
    for (;;) {
      const std::size_t place = m_screen.find(text, m_seen);
      if (place != std::string::npos) {
        m_seen = place + text.size();
        return true;
      }
      if (!ReadScreen(kPatience)) return false;
    }
  }

  void Type(const std::string& keys) const {
    if (write(m_master, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
      throw std::runtime_error("the terminal takes no keys");
    }
  }

  // To its main thread; returns when that has taken it.
  void Send(int signal) const {
    syscall(SYS_tgkill, m_program, m_program, signal);
    // What is typed from here on must not overtake the signal.
    const std::string status = "/proc/" + std::to_string(m_program) + "/status";
    for (int waited = 0; waited < kPatience && HasPendingSignal(status); ++waited) usleep(1000);
  }

  bool Echoes() const {
    termios attributes{};
    if (tcgetattr(m_master, &attributes) != 0) throw std::runtime_error("no attributes");
    return (attributes.c_lflag & ECHO) != 0;
  }

  // The status, as waitpid gives it, when the program has ended or stopped; -1 after ten seconds.
  int NextStatus() const {
    int status = -1;
    if (!IsReadable(m_status, kPatience)) return -1;
    return read(m_status, &status, sizeof status) == sizeof status ? status : -1;
  }

  // All that has been shown.
  const std::string& Screen() {
    while (ReadScreen(0)) {
    }
    return m_screen;
  }

  std::string StandardOutput() const {
    char buffer[512];
    const ssize_t count = read(m_output, buffer, sizeof buffer);
    return count > 0 ? std::string(buffer, static_cast<std::size_t>(count)) : std::string();
  }

 private:
  static constexpr int kPatience = 10'000;  // milliseconds

  // Plays the shell: gives the terminal to the program and tells whenever it stops or ends.
  [[noreturn]] static void Lead(const std::function<int()>& program, int status, int output) {
    const pid_t child = fork();
    if (child == 0) {
      setpgid(0, 0);
      signal(SIGTTOU, SIG_IGN);
      tcsetpgrp(STDIN_FILENO, getpid());
      signal(SIGTTOU, SIG_DFL);
      dup2(output, STDOUT_FILENO);
      close(status);
      const int code = program();
      std::fflush(nullptr);
      _exit(code);
    }
    int report = static_cast<int>(child);
    while (write(status, &report, sizeof report) == sizeof report) {
      if (waitpid(child, &report, WUNTRACED) != child) break;
    }
    pause();  // the terminal stays until the test has looked at it
    _exit(0);
  }

  static bool IsReadable(int file, int milliseconds) {
    pollfd input{file, POLLIN, 0};
    return poll(&input, 1, milliseconds) == 1 && (input.revents & POLLIN) != 0;
  }

  // Whether a signal waits for a process of one thread; false when there is no such process any
  // more.
  static bool HasPendingSignal(const std::string& statusFile) {
    std::ifstream file(statusFile);
    for (std::string line; std::getline(file, line);) {
      const bool isPending = line.starts_with("SigPnd:") || line.starts_with("ShdPnd:");
      if (isPending && line.find_first_not_of("\t0", 7) != std::string::npos) return true;
    }
    return false;
  }

  bool ReadScreen(int milliseconds) {
    if (!IsReadable(m_master, milliseconds)) return false;
    char buffer[512];
    const ssize_t count = read(m_master, buffer, sizeof buffer);
    if (count <= 0) return false;
    m_screen.append(buffer, static_cast<std::size_t>(count));
    return true;
  }

  int m_master = -1;
  int m_status = -1;  // the session leader reports here
  int m_output = -1;
  pid_t m_leader = -1;
  pid_t m_program = -1;
  std::string m_screen;
  std::size_t m_seen = 0;
};

#endif  // VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H
