#include <support/diagnostics/PasswordFile.h>

#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

class PasswordFileTest : public ::testing::Test {
 protected:
  // "result|user|password" after reading into strings that hold "-".
  static std::string Read(const std::string& path) {
    std::string user = "-", password = "-";
    const int result = getUsrAndPasswdFromFile(path, user, password);
    return std::to_string(result) + "|" + user + "|" + password;
  }
  std::string Written(const std::string& text, mode_t mode = 0600) const {
    const std::string path = m_directory.Write("file", text);
    chmod(path.c_str(), mode);
    return path;
  }
  const vq::test::TemporaryDirectory m_directory;
};

TEST_F(PasswordFileTest, LinesGiveUserAndPassword) {
  const std::string head = "user=u\npassword=p\n#";
  const std::pair<std::string, const char*> cases[] = {
      {"# c\n\n \t\npassword= a = b #\r\nuser=operator", "1|operator| a = b #"},
      {"user=operator\n", "1|operator|-"},
      {"password=sesame", "1|-|sesame"},
      {"user=\npassword=\n", "1||"},
      {"", "1|-|-"},
      {"user=operator\nUSER=x\n", "0|-|-"},
      {" user=operator\n", "0|-|-"},
      {"user=a\npassword=b\nuser=a\n", "0|-|-"},
      {std::string("user=a\0b\npassword=c\n", 20), "0|-|-"},
      {head + std::string(65536 - head.size(), 'x'), "1|u|p"},
      {head + std::string(65537 - head.size(), 'x'), "0|-|-"}};
  for (const auto& [text, result] : cases) EXPECT_EQ(Read(Written(text)), result) << text;
}

TEST_F(PasswordFileTest, OnlyAPrivateRegularFileOfThatNameIsRead) {
  for (const mode_t mode : {0400U, 0700U, 0640U, 0604U, 0620U, 0602U, 0610U, 0601U}) {
    const bool isPrivate = (mode & 077U) == 0;
    EXPECT_EQ(Read(Written("user=u", mode)), isPrivate ? "1|u|-" : "0|-|-") << std::oct << mode;
  }
  const std::string path = Written("user=u");
  ASSERT_EQ(symlink(path.c_str(), (m_directory / "link").c_str()), 0);
  ASSERT_EQ(mkfifo((m_directory / "pipe").c_str(), 0600), 0);
  for (const char* name : {"link", "pipe", "none", ""}) {
    EXPECT_EQ(Read(m_directory / name), "0|-|-") << name;
  }
  EXPECT_EQ(Read(path + std::string("\0x", 2)), "0|-|-");
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  ASSERT_EQ(chown(path.c_str(), 12345, static_cast<gid_t>(-1)), 0);
  EXPECT_EQ(Read(path), "0|-|-");
}

TEST_F(PasswordFileTest, TheLogTellsTheReasonAndNoSecret) {
  vq::test::LogCapture log(5);
  const std::string path = Written("password=sesame\nsesame\n");
  Read(path);
  EXPECT_THAT(log.Take(),
              ::testing::ElementsAre("2 Password file " + path +
                                     " refused: a line is neither user= nor password="));
}

}  // namespace
