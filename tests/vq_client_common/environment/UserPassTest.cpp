#include <vq_client_common/environment/UserPass.h>

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <tests/TestEnvironment.h>
#include <tests/support/diagnostics/LogLines.h>
#include <tests/support/diagnostics/StandardInput.h>

namespace {

using ::testing::ElementsAre;

struct InitCase {
  const char* user;
  const char* password;
  const char* file;  // its content; "" is no file at all, "-" the path of one that is not there
  std::optional<std::string> console;  // what the user answers; nothing for a closed standard input
  int status;
  const char* credentials;  // "user/password" afterwards
  const char* trouble;      // logged on the way, where an answer or a file is refused
};

constexpr const char* kNoAnswer = "1 Error receiving Username.";  // for the password too
constexpr const char* kBadFile = "1 Error receiving Username and Password from file.";

const InitCase kInitCases[] = {
    {"u", "p", "", {}, 3, "u/p", ""},
    {"", "", "", "c\nd\n", 3, "c/d", ""},
    {"u", "", "", "d\n", 3, "u/d", ""},
    {"", "p", "", "c\n", 3, "c/p", ""},
    {"", "", "", {}, 0, "/", kNoAnswer},
    {"", "", "", "c\n", 1, "c/", kNoAnswer},
    {"u", "", "", "\n", 1, "u/", ""},
    {"", "p", "", "\n", 2, "/p", ""},
    {"", "", "", "\nd\n", 2, "/d", ""},
    // With a file alone the console, which would answer, is not asked.
    {"", "", "user=f\npassword=g\n", "c\nd\n", 3, "f/g", ""},
    {"", "", "user=f\n", "c\nd\n", 1, "f/", ""},
    {"", "", "password=g\n", "c\nd\n", 2, "/g", ""},
    {"", "", "# nothing\n", "c\nd\n", 0, "/", ""},
    {"", "", "-", "c\nd\n", 4, "/", kBadFile},
    {"", "", "nonsense", "c\nd\n", 4, "/", kBadFile},
    // Conflicts; nothing is read.
    {"u", "", "user=f\npassword=g\n", "d\n", 5, "u/", ""},
    {"", "p", "user=f\npassword=g\n", "c\n", 6, "/p", ""},
    {"u", "p", "user=f\npassword=g\n", {}, 7, "u/p", ""},
};

std::vector<std::string> ExpectedLog(const InitCase& expected, const std::string& words) {
  const bool isGiven = *expected.user != '\0' || *expected.password != '\0';
  std::vector<std::string> log;
  if (*expected.file == '\0') {
    log.emplace_back(*expected.user != '\0' && *expected.password != '\0'
                         ? "5 Have Username and Password"
                         : "4 No/Missing parameters supplied for Username/Password, get from "
                           "console");
  } else if (!isGiven) {
    log.emplace_back("5 Have password file name, trying to get contents.");
  }
  if (*expected.trouble != '\0') log.emplace_back(expected.trouble);
  if (expected.status != 3) log.emplace_back("1 Username/Password Conflict/Error: " + words);
  return log;
}

TEST(UserPassTest, InitCompletesWhatIsGivenOrTellsWhyNot) {
  for (const InitCase& expected : kInitCases) {
    SCOPED_TRACE(&expected - kInitCases);
    const vq::test::TemporaryDirectory directory;
    const std::string content = expected.file;
    const std::string path = content.empty() ? "" : directory.Path() + "credentials";
    if (content.size() > 1) chmod(directory.Write("credentials", content).c_str(), 0600);
    const StandardInput input(expected.console);
    UserPass credentials(expected.user, expected.password, path);
    LogLines log(5);
    TDiag::Instance()->SetModuleLevel("PasswordFile", 1);
    EXPECT_EQ(credentials.Init(), expected.status == 3);
    TDiag::Instance()->ClearModuleLevels();
    EXPECT_EQ(credentials.GetStatus(), expected.status);
    EXPECT_EQ(credentials.isValid(), expected.status == 3);
    EXPECT_EQ(credentials.GetUsername() + "/" + credentials.GetPassword(), expected.credentials);
    EXPECT_EQ(log.Take(), ExpectedLog(expected, credentials.GetStatStr()));
  }
}

TEST(UserPassTest, EveryStatusHasItsWordsAndMayBeCorrectableOrNot) {
  UserPass credentials("u", "", "f");
  EXPECT_EQ(credentials.GetStatus(), -1);
  EXPECT_STREQ(credentials.GetStatStr(), "Missing Login Parameters.");
  EXPECT_FALSE(credentials.isValid());
  EXPECT_FALSE(credentials.isCorrectable());

  const StandardInput closed(std::nullopt);
  const struct {
    const char* words;
    bool isCorrectable;
  } cases[] = {
      {"Missing Login Parameters.", true},
      {"Missing password", true},
      {"Missing username", true},
      {"Status Ok. Have Username and password", false},
      {"Missing or corrupted password file.", false},
      {"Conflict, Have a Username and password file", false},
      {"Conflict, Have a Password and password file", false},
      {"Conflict, Have too many parameters", false},
  };
  for (int status = 0; status < 8; ++status) {
    credentials.SetUsername((status & 1) != 0 ? "u" : "");
    credentials.SetPassword((status & 2) != 0 ? "p" : "");
    credentials.SetPassFile((status & 4) != 0 ? "/none" : "");
    credentials.Init();
    EXPECT_EQ(credentials.GetStatus(), status);
    EXPECT_STREQ(credentials.GetStatStr(), cases[status].words);
    EXPECT_EQ(credentials.isCorrectable(), cases[status].isCorrectable) << status;
  }
}

TEST(UserPassTest, ASetterLeavesTheStatusAndAReadFileIsAConflictTheNextTime) {
  const vq::test::TemporaryDirectory directory;
  const std::string path = directory.Write("credentials", "user=f\npassword=g\n");
  chmod(path.c_str(), 0600);
  UserPass credentials("", "", path);
  EXPECT_TRUE(credentials.Init());
  EXPECT_EQ(credentials.GetPassFile(), path);
  credentials.SetUsername("");
  EXPECT_TRUE(credentials.isValid());
  credentials.SetUsername("f");
  EXPECT_FALSE(credentials.Init());
  EXPECT_EQ(credentials.GetStatus(), UserPass::STAT_CONFLICT_ALL);
}

TEST(UserPassTest, ACopyStandsAlone) {
  const UserPass original("u", "a password too long to lie in the object itself", "");
  UserPass assigned("x", "y", "z");
  {
    UserPass copy(original);
    copy.Init();
    assigned = copy;
    const UserPass& itself = assigned;
    assigned = itself;
    copy.SetPassword("other");
  }
  EXPECT_EQ(assigned.GetUsername(), "u");
  EXPECT_EQ(assigned.GetPassword(), original.GetPassword());
  EXPECT_EQ(assigned.GetPassFile(), "");
  EXPECT_TRUE(assigned.isValid());
  EXPECT_EQ(original.GetStatus(), UserPass::STAT_NOT_INITIALIZED);
}

TEST(UserPassTest, TheConsoleIsTracedUnderItsOwnName) {
  const StandardInput closed(std::nullopt);
  const LogLines log(1);
  UserPass("", "", "").GetConsoleMissData();
  EXPECT_THAT(log.Scopes(), ElementsAre("UserPass::GetLine"));
}

}  // namespace
