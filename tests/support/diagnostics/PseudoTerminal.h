// A user at a pseudo-terminal, for tests of what a program asks there.
//
//   PseudoTerminal terminal([] { std::string text; return getUserFromStdin(text); });
//   ASSERT_TRUE(terminal.Sees("User name: "));
//   terminal.Type("operator\n");
//   EXPECT_EQ(WEXITSTATUS(terminal.NextStatus()), 1);
#ifndef VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H
#define VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H

#include <cstddef>
#include <functional>
#include <string>

#include <sys/types.h>

// Thread contract: belongs to one thread.
class PseudoTerminal {
 public:
  // Runs `program` in a process of its own, in the foreground of a new terminal, as a shell would
  // run it; its result is the exit code. Its standard output is kept apart.
  explicit PseudoTerminal(const std::function<int()>& program);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Waits until `text` has appeared behind what an earlier call found; false after ten seconds.
  bool Sees(const std::string& text);
  void Type(const std::string& keys) const;
  void Send(int signal) const;  // to its main thread; returns when that has taken it
  bool Echoes() const;

  // The status, as waitpid gives it, when the program has ended or stopped; -1 after ten seconds.
  int NextStatus() const;

  const std::string& Screen();  // all that has been shown
  std::string StandardOutput() const;

 private:
  bool ReadScreen(int milliseconds);

  int m_master = -1;
  int m_status = -1;  // the session leader reports here
  int m_output = -1;
  pid_t m_leader = -1;
  pid_t m_program = -1;
  std::string m_screen;
  std::size_t m_seen = 0;
};

#endif  // VQ_TESTS_SUPPORT_DIAGNOSTICS_PSEUDOTERMINAL_H
