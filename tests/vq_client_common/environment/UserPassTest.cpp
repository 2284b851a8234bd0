#include <vq_client_common/environment/UserPass.h>

#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tests/TestEnvironment.h>

#include "LogLines.h"

namespace {

using ::testing::ElementsAre;

// Standard input is the given text; closed when there is none.
class StandardInput {
 public:
  explicit StandardInput(const std::optional<std::string>& text) : m_saved(dup(STDIN_FILENO)) {
    close(STDIN_FILENO);
    if (!text) return;
    const std::string path = m_directory.Write("input", *text);
    EXPECT_EQ(open(path.c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  }
  ~StandardInput() {
    dup2(m_saved, STDIN_FILENO);
    close(m_saved);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  vq::test::TemporaryDirectory m_directory;
  int m_saved;
};

const char* const kAsking =
    "4 No/Missing parameters supplied for Username/Password, get from console";
const char* const kReading = "5 Have password file name, trying to get contents.";
const char* const kReadError = "1 Error receiving Username and Password from file.";
const char* const kNoAnswer = "1 Error receiving Username.";

struct InitCase {
  const char* user;
  const char* password;
  std::optional<std::string> file;  // its content; "-" stands for a file that is not there
  std::optional<std::string> console;
  bool result;
  UserPass::eStatus status;
  const char* credentials;  // "user/password" afterwards
  std::vector<std::string> log;
};

std::string Error(const char* text) {
  return std::string("1 Username/Password Conflict/Error: ") + text;
}

TEST(UserPassTest, InitCompletesWhatIsGivenOrTellsWhyNot) {
  const char* const missingAll = "Missing Login Parameters.";
  const char* const badFile = "Missing or corrupted password file.";
  const InitCase cases[] = {
      {"u", "p", {}, {}, true, UserPass::STAT_OK, "u/p", {"5 Have Username and Password"}},
      // From the console.
      {"", "", {}, "c\nd\n", true, UserPass::STAT_OK, "c/d", {kAsking}},
      {"u", "", {}, "d\n", true, UserPass::STAT_OK, "u/d", {kAsking}},
      {"", "p", {}, "c\n", true, UserPass::STAT_OK, "c/p", {kAsking}},
      {"",
       "",
       {},
       {},
       false,
       UserPass::STAT_MISSING_ALL,
       "/",
       {kAsking, kNoAnswer, Error(missingAll)}},
      {"",
       "",
       {},
       "c\n",
       false,
       UserPass::STAT_MISSING_PASSWORD,
       "c/",
       {kAsking, kNoAnswer, Error("Missing password")}},
      {"u",
       "",
       {},
       "\n",
       false,
       UserPass::STAT_MISSING_PASSWORD,
       "u/",
       {kAsking, Error("Missing password")}},
      {"",
       "p",
       {},
       "\n",
       false,
       UserPass::STAT_MISSING_USERNAME,
       "/p",
       {kAsking, Error("Missing username")}},
      {"",
       "",
       {},
       "\nd\n",
       false,
       UserPass::STAT_MISSING_USERNAME,
       "/d",
       {kAsking, Error("Missing username")}},
      // From the file; the console, which would answer, is not asked.
      {"", "", "user=f\npassword=g\n", "c\nd\n", true, UserPass::STAT_OK, "f/g", {kReading}},
      {"",
       "",
       "user=f\n",
       "c\nd\n",
       false,
       UserPass::STAT_MISSING_PASSWORD,
       "f/",
       {kReading, Error("Missing password")}},
      {"",
       "",
       "password=g\n",
       "c\nd\n",
       false,
       UserPass::STAT_MISSING_USERNAME,
       "/g",
       {kReading, Error("Missing username")}},
      {"",
       "",
       "# nothing\n",
       "c\nd\n",
       false,
       UserPass::STAT_MISSING_ALL,
       "/",
       {kReading, Error(missingAll)}},
      {"",
       "",
       "-",
       "c\nd\n",
       false,
       UserPass::STAT_PASSWORD_FILE,
       "/",
       {kReading, kReadError, Error(badFile)}},
      {"",
       "",
       "nonsense",
       "c\nd\n",
       false,
       UserPass::STAT_PASSWORD_FILE,
       "/",
       {kReading, kReadError, Error(badFile)}},
      // Conflicts; nothing is read.
      {"u",
       "",
       "user=f\npassword=g\n",
       "d\n",
       false,
       UserPass::STAT_CONFLICT_USER_AND_FILE,
       "u/",
       {Error("Conflict, Have a Username and password file")}},
      {"",
       "p",
       "user=f\npassword=g\n",
       "c\n",
       false,
       UserPass::STAT_CONFLICT_PASSWORD_AND_FILE,
       "/p",
       {Error("Conflict, Have a Password and password file")}},
      {"u",
       "p",
       "user=f\npassword=g\n",
       {},
       false,
       UserPass::STAT_CONFLICT_ALL,
       "u/p",
       {Error("Conflict, Have too many parameters")}},
  };
  int number = 0;
  for (const InitCase& expected : cases) {
    SCOPED_TRACE(number++);
    const vq::test::TemporaryDirectory directory;
    std::string path;
    if (expected.file) {
      path = directory.Path() + "credentials";
      if (*expected.file != "-") {
        directory.Write("credentials", *expected.file);
        chmod(path.c_str(), 0600);
      }
    }
    const StandardInput input(expected.console);
    UserPass credentials(expected.user, expected.password, path);
    LogLines log(5);
    TDiag::Instance()->SetModuleLevel("PasswordFile", 1);
    EXPECT_EQ(credentials.Init(), expected.result);
    TDiag::Instance()->ClearModuleLevels();
    EXPECT_EQ(credentials.GetStatus(), expected.status);
    EXPECT_EQ(credentials.isValid(), expected.result);
    EXPECT_EQ(credentials.GetUsername() + "/" + credentials.GetPassword(), expected.credentials);
    EXPECT_EQ(log.Take(), expected.log);
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
    const char* user;
    const char* password;
    const char* file;
    bool isCorrectable;
  } cases[] = {{"", "", "", true},        {"u", "", "", true},       {"", "p", "", true},
               {"u", "p", "", false},     {"", "", "/none", false},  {"u", "", "/none", false},
               {"", "p", "/none", false}, {"u", "p", "/none", false}};
  int status = 0;
  for (const auto& expected : cases) {
    credentials.SetUsername(expected.user);
    credentials.SetPassword(expected.password);
    credentials.SetPassFile(expected.file);
    credentials.Init();
    EXPECT_EQ(credentials.GetStatus(), status++);
    EXPECT_EQ(credentials.isCorrectable(), expected.isCorrectable) << status;
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
