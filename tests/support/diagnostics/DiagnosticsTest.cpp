#include <support/diagnostics/ConsoleInput.h>
#include <support/diagnostics/PasswordFile.h>
#include <support/diagnostics/TDiag.h>

#include <sys/stat.h>
#include <unistd.h>

#include <tests/fixture/UnitTest.h>
#include <tests/support/diagnostics/StandardInput.h>

namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;
using std::string_literals::operator""s;

TEST(ConsoleScriptTest, ReadsOneLineEach) {
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
    EXPECT_EQ(::testing::internal::GetCapturedStdout() + ::testing::internal::GetCapturedStderr(),
              "");
    EXPECT_EQ(user + "|" + password, expectedUser + "|" + expectedPassword);
  }
}

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

TEST_F(PasswordFileTest, ReadsLines) {
  const std::string head = "user=u\npassword=p\n#";
  vq::test::ExpectRows(
      [&](const std::string& text) { return Read(Written(text)); },
      {"# c\n\n \t\npassword= a = b #\r\nuser=operator -> 1|operator| a = b #",
       "user=operator\n -> 1|operator|-", "password=sesame -> 1|-|sesame",
       "user=\npassword=\n -> 1||", " -> 1|-|-", "user=operator\nUSER=x\n -> 0|-|-",
       " user=operator\n -> 0|-|-", "user=a\npassword=b\nuser=a\n -> 0|-|-",
       "user=a\0b\npassword=c\n -> 0|-|-"s,
       head + std::string(65536 - head.size(), 'x') + " -> 1|u|p",
       head + std::string(65537 - head.size(), 'x') + " -> 0|-|-"});
}

TEST_F(PasswordFileTest, ReadsPrivateFilesOnly) {
  for (const mode_t mode : {0400U, 0700U, 0640U, 0604U, 0620U, 0602U, 0610U, 0601U}) {
    const bool isPrivate = (mode & 077U) == 0;
    EXPECT_EQ(Read(Written("user=u", mode)), isPrivate ? "1|u|-" : "0|-|-") << std::oct << mode;
  }
  const std::string path = Written("password=sesame\nsesame\n");
  vq::test::LogCapture log(5);
  Read(path);
  EXPECT_THAT(log.Take(), ElementsAre("1 Password file " + path +
                                      " refused: a line is neither user= nor password="));
  Written("user=u");
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

TDiagRegister diagModule("TDiagTest");

class TDiagTest : public ::testing::Test {
 protected:
  ~TDiagTest() override {
    TDiag::Instance()->RemoveAllSinks();
    TDiag::Instance()->ClearModuleLevels();
    TDiag::Instance()->SetClassMask(TDiag::kAllClasses);
  }
  vq::test::LogCapture m_log{4};
};

TEST_F(TDiagTest, WritesUpToTheLevel) {
  for (int level = 2; level <= 6; ++level) VQ_LOG(diagModule, level) << "at " << level;
  EXPECT_THAT(m_log.Take(), ElementsAre("2 at 2", "3 at 3", "4 at 4"));
  int evaluated = 0;
  VQ_LOG(diagModule, 5) << ++evaluated;
  TDiag::Instance()->RemoveAllSinks();
  VQ_LOG(diagModule, 0) << ++evaluated;
  EXPECT_EQ(evaluated, 0);
}

TEST_F(TDiagTest, StderrIsOneSink) {
  TDiag* const log = TDiag::Instance();
  const TDiag::SinkId first = log->AddStandardErrorSink();
  int others = 0;  // a second sink beside it
  const TDiag::SinkId second = log->AddCallbackSink([&](const TDiagLine&) { ++others; });
  EXPECT_EQ(log->AddStandardErrorSink(), first);
  ::testing::internal::CaptureStderr();
  VQ_LOG(diagModule, 1) << "once";
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::ranges::count(written, '\n'), 1) << written;
  log->RemoveSink(second);
  EXPECT_EQ(log->AddStandardErrorSink(), first) << "still there";
  log->RemoveSink(first);
  EXPECT_EQ(others, 1);
  EXPECT_NE(log->AddStandardErrorSink(), first);
}

TEST_F(TDiagTest, ScopeNamesItsLines) {
  TDiag::Instance()->SetMinimumDebugLevel(6);
  const TDiagFunc diag(diagModule, "Some::Function");
  VQ_LOG(diag, 2) << "flag " << true << ", number " << -7 << ", real " << 1.5 << '.';
  EXPECT_EQ(m_log.Text(),
            "6 Some::Function: Enter\n2 Some::Function: flag 1, number -7, real 1.5.\n");
}

TEST_F(TDiagTest, ModuleLevelsAndClasses) {
  TDiag::Instance()->ApplyLevels("1,TDiagTest=5,nonsense,Other=x,Another=0");
  const TDiagRegister other("Other"), another("Another");
  EXPECT_TRUE(diagModule.IsActive(5) && !diagModule.IsActive(6));
  EXPECT_TRUE(other.IsActive(1) && !other.IsActive(2));
  EXPECT_TRUE(another.IsActive(0) && !another.IsActive(1));

  TDiag::Instance()->SetClassMask(0x800000);
  VQ_LOG_CLASS(diagModule, 1, 0x1) << "left out";
  VQ_LOG_CLASS(diagModule, 1, 0x800000) << "kept";
  VQ_LOG(diagModule, 1) << "in all classes";
  EXPECT_THAT(m_log.Take(), ElementsAre("1 kept", "1 in all classes"));
}

TEST_F(TDiagTest, CallbackMayLog) {
  EXPECT_EQ(TDiag::Instance()->AddCallbackSink(nullptr), 0U);
  int calls = 0;
  TDiag::Instance()->AddCallbackSink([&](const TDiagLine&) {
    ++calls;
    VQ_LOG(diagModule, 0) << "once more";
  });
  VQ_LOG(diagModule, 1) << "line";
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(m_log.Take(), ElementsAre("1 line"));
}

TEST_F(TDiagTest, FileSinkEscapesForeignText) {
  const vq::test::TemporaryDirectory directory;
  ASSERT_NE(TDiag::Instance()->AddFileSink(directory / "log"), 0U);
  VQ_LOG(diagModule, 1) << "first\nL1 forged:\tsecond\r\x1b[2J\x7f\xc2\x9b\xc3\xa9";
  VQ_LOG(TDiagFunc(diagModule, "TDiagTest::Function"), 1) << "scope of the module";
  VQ_LOG(TDiagFunc(diagModule, "TDiagTestOther"), 1) << "another scope";
  EXPECT_THAT(directory.Read("log"),
              MatchesRegex(".* L1 TDiagTest: first\n"
                           "    L1 forged:\tsecond.x0d.x1b.2J.x7f.u009b\xc3\xa9\n"
                           ".* L1 TDiagTest::Function: scope of the module\n"
                           ".* L1 .TDiagTest. TDiagTestOther: another scope\n"));
  EXPECT_EQ(TDiag::Instance()->AddFileSink("/dev/null/not-a-directory/log"), 0U);
}

}  // namespace
