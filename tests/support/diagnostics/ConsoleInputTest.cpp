#include <support/diagnostics/ConsoleInput.h>

#include <csignal>
#include <string>
#include <thread>

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

TEST(ConsolePromptTest, ThePasswordIsTypedWithoutEchoAndTheTerminalIsPutBack) {
  const struct {
    const char* keys;
    int exitCode;
  } cases[] = {
      {"sesame\n", 0},         {"sesamee\x7f\n", 0},  // the erase key still works
      {"sesame\x04\x04", 0},                          // ended by end of file
      {"\x04", kRefused},                             // end of file alone
      {"\n", kWrongText},                             // an empty line is an answer
      {"other\n", kWrongText},
  };
  for (const auto& [keys, exitCode] : cases) {
    SCOPED_TRACE(keys);
    PseudoTerminal terminal(AskForSesame);
    ASSERT_TRUE(terminal.Sees("Password: "));
    EXPECT_FALSE(terminal.Echoes());
    terminal.Type(keys);
    const int status = terminal.NextStatus();
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), exitCode);
    EXPECT_TRUE(terminal.Echoes());
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
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1}) {
    SCOPED_TRACE(signal);
    PseudoTerminal terminal(AskForSesame);
    ASSERT_TRUE(terminal.Sees("Password: "));
    terminal.Type("ses");
    terminal.Send(signal);
    const int status = terminal.NextStatus();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), signal);
    EXPECT_TRUE(terminal.Echoes());
  }
}

TEST(ConsolePromptTest, AStoppedProcessLeavesTheEchoOnAndAsksAgain) {
  PseudoTerminal terminal(AskForSesame);
  ASSERT_TRUE(terminal.Sees("Password: "));
  terminal.Type("left over\x1a");
  ASSERT_TRUE(WIFSTOPPED(terminal.NextStatus()));
  EXPECT_TRUE(terminal.Echoes());
  terminal.Send(SIGCONT);
  ASSERT_TRUE(terminal.Sees("Password: "));
  EXPECT_FALSE(terminal.Echoes());
  terminal.Type("sesame\n");
  EXPECT_EQ(terminal.NextStatus(), 0);
  EXPECT_TRUE(terminal.Echoes());
}

volatile std::sig_atomic_t handled = 0;
void CountSignal(int) {
  handled = handled + 1;
}

TEST(ConsolePromptTest, TheApplicationsOwnHandlerRunsAndTheAnswerIsNone) {
  PseudoTerminal terminal([] {
    signal(SIGINT, CountSignal);
    const int result = AskForSesame();
    raise(SIGINT);  // the handler is in its place again
    return handled == 2 ? result : kWrongText;
  });
  ASSERT_TRUE(terminal.Sees("Password: "));
  terminal.Type("\x03");
  EXPECT_EQ(WEXITSTATUS(terminal.NextStatus()), kRefused);
  EXPECT_TRUE(terminal.Echoes());
}

TEST(ConsolePromptTest, AnIgnoredSignalStaysIgnored) {
  PseudoTerminal terminal([] {
    signal(SIGINT, SIG_IGN);
    return AskForSesame();
  });
  ASSERT_TRUE(terminal.Sees("Password: "));
  terminal.Send(SIGINT);
  terminal.Type("sesame\n");
  EXPECT_EQ(terminal.NextStatus(), 0);
}

TEST(ConsolePromptTest, ASignalThatAnotherThreadGetsInterruptsToo) {
  PseudoTerminal terminal([] {
    int result = kWrongText;
    std::thread([&result] { result = AskForSesame(); }).join();
    return result;
  });
  ASSERT_TRUE(terminal.Sees("Password: "));
  terminal.Send(SIGINT);
  const int status = terminal.NextStatus();
  EXPECT_TRUE(WIFSIGNALED(status)) << status;
  EXPECT_TRUE(terminal.Echoes());
}

TEST(ConsoleScriptTest, ALineIsReadForEachAnswer) {
  const std::string longest(4096, 'x');
  const struct {
    std::string input;
    int userResult;
    std::string user;
    int passwordResult;
    std::string password;
  } cases[] = {
      {"operator\nsesame\nrest", 1, "operator", 1, "sesame"},
      {"operator\r\nopen = sesame", 1, "operator", 1, "open = sesame"},
      {"\n\n", 1, "", 1, ""},
      {"operator", 1, "operator", 0, "-"},
      {"", 0, "-", 0, "-"},
      {longest + "\n" + longest + "x\n", 1, longest, 0, "-"},
      {std::string("a\0b\nsesame\n", 11), 0, "-", 1, "b"},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.input.substr(0, 20));
    const StandardInput input(expected.input);
    std::string user = "-";
    std::string password = "-";
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(getUserFromStdin(user), expected.userResult);
    EXPECT_EQ(getPasswdFromStdin(password), expected.passwordResult);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(user, expected.user);
    EXPECT_EQ(password, expected.password);
  }
}

TEST(ConsoleScriptTest, AClosedStandardInputIsNoAnswer) {
  const StandardInput closed(std::nullopt);
  std::string text = "-";
  EXPECT_EQ(getUserFromStdin(text), 0);
  EXPECT_EQ(getPasswdFromStdin(text), 0);
  EXPECT_EQ(text, "-");
}

}  // namespace
