#include <support/diagnostics/ConsoleInput.h>

#include <csignal>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "PseudoTerminal.h"
#include "StandardInput.h"

namespace {

constexpr int kRefused = 7;  // what AskForSesame ends with when nobody answered
constexpr int kWrongText = 8;

// 0 when the password that was asked for is "sesame".
int AskForSesame() {
  std::string password = "before";
  if (getPasswdFromStdin(password) == 0) return password == "before" ? kRefused : kWrongText;
  return password == "sesame" ? 0 : kWrongText;
}

// A user who is asked for the password by `program`, and types and sends to it.
struct Prompt : PseudoTerminal {
  explicit Prompt(const std::function<int()>& program = AskForSesame) : PseudoTerminal(program) {
    EXPECT_TRUE(Sees("Password: "));
    EXPECT_FALSE(Echoes());
  }
  int Exit() {
    const int status = NextStatus();
    EXPECT_TRUE(Echoes());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

TEST(ConsolePromptTest, ThePasswordIsTypedWithoutEchoAndTheTerminalIsPutBack) {
  // The erase key still works; an end of file ends a line and alone is no answer; an empty line is.
  const std::pair<const char*, int> cases[] = {
      {"sesamee\x7f\n", 0}, {"sesame\x04\x04", 0}, {"\x04", kRefused}, {"\n", kWrongText}};
  for (const auto& [keys, exitCode] : cases) {
    Prompt terminal;
    terminal.Type(keys);
    EXPECT_EQ(terminal.Exit(), exitCode) << keys;
    EXPECT_EQ(terminal.Screen(), "Password: \r\n");
    EXPECT_EQ(terminal.StandardOutput(), "");
  }
}

TEST(ConsolePromptTest, TheUserNameIsEchoed) {
  PseudoTerminal terminal([] {
    std::string user;
    return getUserFromStdin(user) != 0 && user == "operator" ? 0 : kWrongText;
  });
  ASSERT_TRUE(terminal.Sees("User name: "));
  terminal.Type("operator\n");
  EXPECT_EQ(terminal.NextStatus(), 0);
  EXPECT_EQ(terminal.Screen(), "User name: operator\r\n");
  EXPECT_EQ(terminal.StandardOutput(), "");
}

TEST(ConsolePromptTest, ASignalThatEndsTheProcessFirstPutsTheTerminalBack) {
  const auto onAnotherThread = [] {
    std::jthread(AskForSesame).join();
    return kWrongText;
  };
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1}) {
    Prompt terminal(signal == SIGTERM ? std::function<int()>(onAnotherThread) : AskForSesame);
    terminal.Type("ses");
    terminal.Send(signal);
    const int status = terminal.NextStatus();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << ' ' << status;
    EXPECT_TRUE(terminal.Echoes());
  }
}

TEST(ConsolePromptTest, AStoppedProcessLeavesTheEchoOnAndAsksAgain) {
  Prompt terminal;
  terminal.Type("left over\x1a");
  ASSERT_TRUE(WIFSTOPPED(terminal.NextStatus()));
  EXPECT_TRUE(terminal.Echoes());
  terminal.Send(SIGCONT);
  ASSERT_TRUE(terminal.Sees("Password: "));
  EXPECT_FALSE(terminal.Echoes());
  terminal.Type("sesame\n");
  EXPECT_EQ(terminal.Exit(), 0);
}

volatile std::sig_atomic_t handled = 0;
void CountSignal(int) {
  handled = handled + 1;
}

TEST(ConsolePromptTest, TheApplicationsOwnHandlerRunsAndTheAnswerIsNone) {
  Prompt terminal([] {
    signal(SIGINT, CountSignal);
    const int result = AskForSesame();
    raise(SIGINT);  // the handler is in its place again
    return handled == 2 ? result : kWrongText;
  });
  terminal.Type("\x03");
  EXPECT_EQ(terminal.Exit(), kRefused);
}

TEST(ConsolePromptTest, AnIgnoredSignalStaysIgnored) {
  Prompt terminal([] {
    signal(SIGINT, SIG_IGN);
    return AskForSesame();
  });
  terminal.Send(SIGINT);
  terminal.Type("sesame\n");
  EXPECT_EQ(terminal.Exit(), 0);
}

TEST(ConsoleScriptTest, ALineIsReadForEachAnswer) {
  const std::string longest(4096, 'x');
  const struct {
    std::optional<std::string> input;
    const char* results;  // of asking for the user and the password
    std::string user, password;
  } cases[] = {{"operator\r\nopen = sesame\nrest", "11", "operator", "open = sesame"},
               {"\n\n", "11", "", ""},
               {"operator", "10", "operator", "-"},
               {std::nullopt, "00", "-", "-"},
               {longest + "\n" + longest + "x\n", "10", longest, "-"},
               {std::string("a\0b\nsesame\n", 11), "01", "-", "b"}};
  for (const auto& [text, results, expectedUser, expectedPassword] : cases) {
    const StandardInput input(text);
    std::string user = "-", password = "-";
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(getUserFromStdin(user), results[0] - '0') << expectedUser;
    EXPECT_EQ(getPasswdFromStdin(password), results[1] - '0') << expectedUser;
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(user, expectedUser);
    EXPECT_EQ(password, expectedPassword);
  }
}

}  // namespace
