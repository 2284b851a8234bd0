#include <vq_client_common/environment/UserPass.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <tests/support/diagnostics/StandardInput.h>

namespace {

using ::testing::ElementsAreArray;
using Lines = std::vector<std::string>;

constexpr auto kComplete = "5 Have Username and Password";
constexpr auto kAsks = "4 No/Missing parameters supplied for Username/Password, get from console";
constexpr auto kReads = "5 Have password file name, trying to get contents.";
constexpr auto kNoAnswer = "1 Error receiving Username.";  // for the password too
constexpr auto kBadFile = "1 Error receiving Username and Password from file.";

constexpr const char* kWords[] = {"Missing Login Parameters.",
                                  "Missing password",
                                  "Missing username",
                                  "Status Ok. Have Username and password",
                                  "Missing or corrupted password file.",
                                  "Conflict, Have a Username and password file",
                                  "Conflict, Have a Password and password file",
                                  "Conflict, Have too many parameters"};

std::string PrivateFile(const vq::test::TemporaryDirectory& directory, const std::string& content) {
  const std::string path = directory.Write("credentials", content);
  chmod(path.c_str(), 0600);
  return path;
}

TEST(UserPassTest, InitCompletesOrRefuses) {
  const struct {
    const char *user, *password, *file;  // the file's content; "" for no file at all
    std::optional<std::string> console;  // the answers; nothing for a closed standard input
    int status;
    const char* credentials;  // "user/password" afterwards
    Lines log;                // without the last line, which is the status as a text
  } cases[] = {{"u", "p", "", {}, 3, "u/p", {kComplete}},
               {"", "", "", "c\nd\n", 3, "c/d", {kAsks}},
               {"u", "", "", "d\n", 3, "u/d", {kAsks}},
               {"", "p", "", "c\n", 3, "c/p", {kAsks}},
               {"", "", "", {}, 0, "/", {kAsks, kNoAnswer}},
               {"", "", "", "c\n", 1, "c/", {kAsks, kNoAnswer}},
               {"u", "", "", "\n", 1, "u/", {kAsks}},
               {"", "", "", "\nd\n", 2, "/d", {kAsks}},
               // With a file alone the console, which would answer, is not asked.
               {"", "", "user=f\npassword=g", "c\nd\n", 3, "f/g", {kReads}},
               {"", "", "user=f", "c\nd\n", 1, "f/", {kReads}},
               {"", "", "# nothing", "c\nd\n", 0, "/", {kReads}},
               {"", "", "nonsense", "c\nd\n", 4, "/", {kReads, kBadFile}},
               // Conflicts; nothing is read.
               {"u", "", "user=f\npassword=g", "d\n", 5, "u/", {}},
               {"", "p", "user=f\npassword=g", "c\n", 6, "/p", {}},
               {"u", "p", "user=f\npassword=g", {}, 7, "u/p", {}}};
  const vq::test::TemporaryDirectory directory;
  TDiag::Instance()->SetModuleLevel("PasswordFile", 0);
  for (const auto& [user, password, file, console, status, after, lines] : cases) {
    const StandardInput input(console);
    UserPass credentials(user, password, *file != '\0' ? PrivateFile(directory, file) : "");
    EXPECT_EQ(credentials.GetStatus(), -1);
    EXPECT_STREQ(credentials.GetStatStr(), kWords[0]);
    EXPECT_FALSE(credentials.isCorrectable());
    vq::test::LogCapture log(5);
    EXPECT_EQ(credentials.Init(), status == 3);
    EXPECT_EQ(credentials.GetStatus(), status);
    EXPECT_STREQ(credentials.GetStatStr(), kWords[status]);
    EXPECT_EQ(credentials.isValid(), status == 3);
    EXPECT_EQ(credentials.isCorrectable(), status < 3);
    EXPECT_EQ(credentials.GetUsername() + "/" + credentials.GetPassword(), after);
    Lines expected = lines;
    if (status != 3) {
      expected.push_back(std::string("1 Username/Password Conflict/Error: ") + kWords[status]);
    }
    EXPECT_THAT(log.Take(), ElementsAreArray(expected));
  }
  TDiag::Instance()->ClearModuleLevels();
}

TEST(UserPassTest, CopiesAndSets) {
  const vq::test::TemporaryDirectory directory;
  const std::string path = PrivateFile(directory, "user=f\npassword=g\n");
  UserPass credentials("", "", path);
  const UserPass before(credentials);
  EXPECT_TRUE(credentials.Init());
  EXPECT_EQ(credentials.GetPassFile() + before.GetUsername(), path);
  UserPass copy("x", "y", "z");
  copy = credentials;
  copy = static_cast<const UserPass&>(copy);
  credentials.SetPassword("");
  EXPECT_EQ(copy.GetUsername() + copy.GetPassword() + copy.GetPassFile(), "fg" + path);
  EXPECT_TRUE(credentials.isValid() && copy.isValid() && !before.isValid());
  EXPECT_FALSE(credentials.Init());  // What was read from the file is a conflict now.
  EXPECT_EQ(credentials.GetStatus(), UserPass::STAT_CONFLICT_USER_AND_FILE);
}

}  // namespace
