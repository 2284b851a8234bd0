#include <vq_client_common/environment/UserPass.h>

#include <sys/stat.h>

#include <tests/fixture/UnitTest.h>
#include <tests/support/diagnostics/StandardInput.h>

namespace {

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
  } cases[] = {{"u", "p", "", {}, 3, "u/p"},
               {"", "", "", "c\nd\n", 3, "c/d"},
               {"u", "", "", "d\n", 3, "u/d"},
               {"", "p", "", "c\n", 3, "c/p"},
               {"", "", "", {}, 0, "/"},
               {"", "", "", "c\n", 1, "c/"},
               {"u", "", "", "\n", 1, "u/"},
               {"", "", "", "\nd\n", 2, "/d"},
               // With a file alone the console, which would answer, is not asked.
               {"", "", "user=f\npassword=g", "c\nd\n", 3, "f/g"},
               {"", "", "user=f", "c\nd\n", 1, "f/"},
               {"", "", "# nothing", "c\nd\n", 0, "/"},
               {"", "", "nonsense", "c\nd\n", 4, "/"},
               // Conflicts; nothing is read.
               {"u", "", "user=f\npassword=g", "d\n", 5, "u/"},
               {"", "p", "user=f\npassword=g", "c\n", 6, "/p"},
               {"u", "p", "user=f\npassword=g", {}, 7, "u/p"}};
  const vq::test::TemporaryDirectory directory;
  for (const auto& [user, password, file, console, status, after] : cases) {
    const StandardInput input(console);
    UserPass credentials(user, password, *file != '\0' ? PrivateFile(directory, file) : "");
    EXPECT_EQ(credentials.GetStatus(), -1);
    EXPECT_STREQ(credentials.GetStatStr(), kWords[0]);
    EXPECT_FALSE(credentials.isCorrectable());
    EXPECT_EQ(credentials.Init(), status == 3);
    EXPECT_EQ(credentials.GetStatus(), status);
    EXPECT_STREQ(credentials.GetStatStr(), kWords[status]);
    EXPECT_EQ(credentials.isValid(), status == 3);
    EXPECT_EQ(credentials.isCorrectable(), status < 3);
    EXPECT_EQ(credentials.GetUsername() + "/" + credentials.GetPassword(), after);
  }
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
