#include <support/diagnostics/PasswordFile.h>

#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tests/TestEnvironment.h>

#include "LogLines.h"

namespace {

class PasswordFileTest : public ::testing::Test {
 protected:
  void Write(std::string_view text, mode_t mode = 0600) {
    m_directory.Write("credentials", std::string(text));
    ASSERT_EQ(chmod(m_path.c_str(), mode), 0);
  }

  // "result user password" after reading into strings that hold "-".
  std::string Read() {
    std::string user = "-";
    std::string password = "-";
    const int result = getUsrAndPasswdFromFile(m_path, user, password);
    return std::to_string(result) + "|" + user + "|" + password;
  }

  vq::test::TemporaryDirectory m_directory;
  std::string m_path = m_directory.Path() + "credentials";
};

TEST_F(PasswordFileTest, LinesGiveUserAndPassword) {
  using std::string_view_literals::operator""sv;
  const struct {
    std::string_view text;
    std::string_view result;
  } cases[] = {
      {"user=operator\npassword=sesame\n"sv, "1|operator|sesame"},
      {"# nightly\n\n \t\npassword= a = b #\r\nuser=operator"sv, "1|operator| a = b #"},
      {"user=operator\n"sv, "1|operator|-"},
      {"password=sesame"sv, "1|-|sesame"},
      {"user=\npassword=\n"sv, "1||"},
      {""sv, "1|-|-"},
      {"user=operator\nUSER=x\n"sv, "0|-|-"},
      {" user=operator\n"sv, "0|-|-"},
      {"user\n"sv, "0|-|-"},
      {"user=a\npassword=b\nuser=a\n"sv, "0|-|-"},
      {"user=a\0b\npassword=c\n"sv, "0|-|-"},
  };
  for (const auto& [text, result] : cases) {
    Write(text);
    EXPECT_EQ(Read(), result) << text;
  }
}

TEST_F(PasswordFileTest, SixtyFourKibibytesAreRead) {
  const std::string head = "user=u\npassword=p\n#";
  Write(head + std::string(65536 - head.size(), 'x'));
  EXPECT_EQ(Read(), "1|u|p");
  Write(head + std::string(65537 - head.size(), 'x'));
  EXPECT_EQ(Read(), "0|-|-");
}

TEST_F(PasswordFileTest, OnlyAPrivateFileIsRead) {
  const struct {
    mode_t mode;
    std::string_view result;
  } cases[] = {{0600, "1|u|p"}, {0400, "1|u|p"}, {0700, "1|u|p"}, {0640, "0|-|-"},
               {0604, "0|-|-"}, {0620, "0|-|-"}, {0602, "0|-|-"}};
  for (const auto& [mode, result] : cases) {
    Write("user=u\npassword=p\n", mode);
    EXPECT_EQ(Read(), result) << std::oct << mode;
  }
}

TEST_F(PasswordFileTest, OnlyARegularFileOfThatNameIsRead) {
  EXPECT_EQ(Read(), "0|-|-") << "missing";

  Write("user=u\npassword=p\n");
  const std::string file = m_path;
  m_path = m_directory.Path() + "link";
  ASSERT_EQ(symlink(file.c_str(), m_path.c_str()), 0);
  EXPECT_EQ(Read(), "0|-|-") << "symbolic link";

  m_path = m_directory.Path() + "pipe";
  ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
  EXPECT_EQ(Read(), "0|-|-") << "named pipe";

  m_path = m_directory.Path();
  EXPECT_EQ(Read(), "0|-|-") << "directory";

  m_path = file + std::string(1, '\0') + "x";
  EXPECT_EQ(Read(), "0|-|-") << "zero byte in the name";
}

TEST_F(PasswordFileTest, AnotherUsersFileIsRefused) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  Write("user=u\npassword=p\n");
  ASSERT_EQ(chown(m_path.c_str(), 12345, static_cast<gid_t>(-1)), 0);
  EXPECT_EQ(Read(), "0|-|-");
}

TEST_F(PasswordFileTest, TheLogTellsTheReasonAndNoSecret) {
  LogLines log(5);
  Write("password=sesame\nsesame\n");
  Read();
  EXPECT_THAT(log.Take(),
              ::testing::ElementsAre("2 Password file " + m_path +
                                     " refused: a line is neither user= nor password="));
}

}  // namespace
