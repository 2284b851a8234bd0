// vqclient as a script sees it: exit code, data on standard output, words on standard error.

#include <tests/fixture/Environment.h>
#include <tests/fixture/Server.h>

#include <csignal>

#include <gtest/gtest.h>

namespace vq::test {
namespace {

struct Outcome {
  int code = -1;
  std::string output, words;
};

class ClientTest : public ::testing::Test {
 protected:
  ClientTest() { m_environment.Isolate(m_directory.Path()); }

  ChildProcess Start(std::vector<std::string> arguments, const std::string& input = "secret\n") {
    arguments.insert(arguments.begin(), VQ_CLIENT);
    ChildProcess::Options options;
    options.standardInput = m_directory.Write("in", input);
    options.standardOutput = m_directory / "out";
    options.standardError = m_directory / "err";
    std::filesystem::remove(options.standardOutput);
    std::filesystem::remove(options.standardError);
    return ChildProcess::Start(arguments, options);
  }

  Outcome Run(const std::vector<std::string>& arguments, const std::string& input = "secret\n") {
    ChildProcess client = Start(arguments, input);
    const int code = client.Wait(std::chrono::seconds(120)).value_or(-1);
    return {code, ReadFile(m_directory / "out"), ReadFile(m_directory / "err")};
  }

  // The arguments of a command that connects, with the connection's options behind them.
  std::vector<std::string> Connected(std::vector<std::string> command,
                                     const std::string& user = "alice") const {
    const std::vector<std::string> options{
        "--server", "central",  "--user",
        user,       "--naming", "127.0.0.1:" + std::to_string(m_naming.Port())};
    command.insert(command.end(), options.begin(), options.end());
    return command;
  }

  TemporaryDirectory m_directory;
  Environment m_environment;
  NamingService m_naming{m_directory};
};

TEST_F(ClientTest, TheExitCodeTellsTheCause) {
  Server server(m_directory, m_naming.Reference(), BaseSite());
  const std::string naming = "127.0.0.1:" + std::to_string(m_naming.Port());
  const struct {
    std::vector<std::string> arguments;
    const char* input;
    int code;
    const char* words;
  } kRows[] = {
      {Connected({"login"}), "secret\n", 0, ""},
      {Connected({"login"}), "wrong\n", 1, "User 'alice' is not defined properly."},
      {{"login"}, "", 2, "--server is required"},
      {{"nonsense"}, "", 2, ""},
      {Connected({"login", "--kind", "XYZ"}), "", 2, "XYZ"},
      {Connected({"login"}), "", 4, "Missing password"},
      {Connected({"login"}, "expired"), "secret\n", 48, "Password has expired."},
      {Connected({"login"}, "locked"), "secret\n", 49, "User account is locked."},
      {{"login", "-s", "nowhere", "-u", "a", "-n", naming}, "secret\n", 54, "'nowhere'"},
      {{"login", "-s", "central", "-u", "a", "-n", "127.0.0.1:1"}, "secret\n", 55, "Naming"},
      {Connected({"param", "get", "general", "Language"}), "secret\n", 0, ""},
      {Connected({"param", "get", "general", "Nothing"}), "secret\n", 5, "general/Nothing"},
  };
  for (const auto& row : kRows) {
    const Outcome outcome = Run(row.arguments, row.input);
    EXPECT_EQ(outcome.code, row.code) << row.arguments[0] << ": " << outcome.words;
    EXPECT_NE(outcome.words.find(row.words), std::string::npos) << outcome.words;
  }
}

TEST_F(ClientTest, DataAreOnStandardOutputAndAlsoJson) {
  const Server server(m_directory, m_naming.Reference(), BaseSite());
  EXPECT_EQ(Run(Connected({"param", "get", "general", "Language"})).output, "english\n");

  const Outcome login = Run(Connected({"--json", "login"}, "soon"));
  const nlohmann::json answer = nlohmann::json::parse(login.output);
  EXPECT_EQ(answer["result"], 50);
  EXPECT_EQ(answer["connected"], true);
  EXPECT_EQ(answer["message"], "Your password is about to expire.\t");
}

TEST_F(ClientTest, ThePasswordFileServesAsWell) {
  const Server server(m_directory, m_naming.Reference(), BaseSite());
  const std::string file = m_directory.Write("credentials", "user=alice\npassword=secret\n");
  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  const std::vector<std::string> arguments{"login",
                                           "--server",
                                           "central",
                                           "--password-file",
                                           file,
                                           "--naming",
                                           "127.0.0.1:" + std::to_string(m_naming.Port())};
  EXPECT_EQ(Run(arguments, "").code, 0);
  std::filesystem::permissions(file, std::filesystem::perms::others_read,
                               std::filesystem::perm_options::add);
  EXPECT_EQ(Run(arguments, "").code, 4);
}

TEST_F(ClientTest, ASessionEndsInOrderOnInterrupt) {
  Server server(m_directory, m_naming.Reference(), BaseSite());
  ChildProcess client = Start(Connected({"session", "--interval", "3600"}));
  ASSERT_TRUE(WaitUntil([&] { return !server.LastCall("CRB_ResetTimeout").is_null(); }));
  ASSERT_TRUE(WaitUntil(
      [&] { return ReadFile(m_directory / "out").find("login: 1") != std::string::npos; }));
  client.Signal(SIGINT);
  EXPECT_EQ(client.Wait(std::chrono::seconds(60)), 0);
  EXPECT_EQ(server.Operations().back(), "CRB_Unregister");
}

TEST_F(ClientTest, APasswordIsChangedInASessionAndAfterItHasExpired) {
  Server server(m_directory, m_naming.Reference(), BaseSite());
  for (const char* user : {"alice", "expired"}) {
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nnew-one\nother\n").code, 4) << user;
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nshort\nshort\n").code, 51) << user;
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nnew-one\nnew-one\n").code, 0) << user;
    EXPECT_EQ(Run(Connected({"login"}, user), "new-one\n").code, 0) << user;
  }
}

TEST_F(ClientTest, QuestionsOfAuthorizationAreAnsweredByExitCode) {
  nlohmann::json site = BaseSite();
  site["users"]["alice"]["grants"]["tables"] = {
      {{"criteria", "TABLE LIKE 'PAY*'"}, {"level", "UPDATE_ACCESS"}}};
  const Server server(m_directory, m_naming.Reference(), site);
  const struct {
    const char *table, *level;
    int code;
  } kRows[] = {{"TABLE=PAY01", "UPDATE_ACCESS", 0}, {"TABLE=PAY01", "FULL_ACCESS", 7},
               {"TABLE=TAX", "BROWSE_ACCESS", 7},   {"TABLE=TAX", "DEFAULT_ACCESS", 0},
               {"TABLE", "FULL_ACCESS", 2},         {"TABLE=TAX", "SOME_ACCESS", 2}};
  for (const auto& row : kRows) {
    const Outcome outcome = Run(Connected({"auth", "check", "table", row.table, row.level}));
    EXPECT_EQ(outcome.code, row.code) << row.table << ' ' << row.level << outcome.words;
  }
  const nlohmann::json all = nlohmann::json::parse(Run(Connected({"--json", "auth"})).output);
  EXPECT_EQ(all["user"], "alice");
  EXPECT_EQ(all["administrator"], false);
  EXPECT_EQ(all["grants"]["table"]["own"][0]["criteria"], "TABLE LIKE 'PAY*'");
  EXPECT_EQ(all["privileges"].size(), 22U);
}

TEST_F(ClientTest, TheDoctorNamesTheFirstThingThatIsWrongAndWhatToDo) {
  Server server(m_directory, m_naming.Reference(), BaseSite());
  const std::string naming = "127.0.0.1:" + std::to_string(m_naming.Port());
  const auto examine = [&](const std::string& name, const std::string& at) {
    return Run({"doctor", "-s", name, "-u", "alice", "-n", at});
  };
  EXPECT_EQ(Run(Connected({"doctor"}), "wrong\n").code, 1);
  const Outcome unknown = examine("nowhere", naming);
  EXPECT_EQ(unknown.code, 54);
  EXPECT_NE(unknown.output.find("[BAD]  registration: the naming service knows no server "
                                "'nowhere' of kind GSR"),
            std::string::npos)
      << unknown.output;
  server.Kill();
  const Outcome dead = examine("central", naming);
  EXPECT_EQ(dead.code, 54);
  EXPECT_NE(dead.output.find("[BAD]  address: 127.0.0.1 port " + std::to_string(server.Port()) +
                             " cannot be reached"),
            std::string::npos)
      << dead.output;
  const Outcome lost = examine("central", "127.0.0.1:1");
  EXPECT_EQ(lost.code, 55);
  EXPECT_NE(lost.output.find("next:  Start the naming service"), std::string::npos) << lost.output;
}

TEST_F(ClientTest, TheDoctorWritesAWayThatWorksOnlyAfterAYes) {
  const Server server(m_directory, m_naming.Reference(), BaseSite());
  std::filesystem::create_directories(m_directory / "root/config");
  const std::string domain = m_directory / "root/config/vq.xml";
  const auto variables = [&] { return ReadFile(domain).find("-ORBListenEndpoints"); };
  EXPECT_EQ(Run(Connected({"doctor", "--fix"}), "secret\nn\n").code, 0);
  EXPECT_EQ(variables(), std::string::npos);
  const Outcome fixed = Run(Connected({"doctor", "--fix"}), "secret\ny\n");
  EXPECT_EQ(fixed.code, 0) << fixed.output << fixed.words;
  EXPECT_NE(variables(), std::string::npos);
}

TEST_F(ClientTest, EverySettingIsShownWithItsOrigin) {
  m_directory.Write("root/config/vq.xml",
                    "<domain><scope name=\"CLI\"><var name=\"-ORBCallTimeout\">7000</var></scope>"
                    "<scope name=\"default\"><var name=\"-BiDirPolicy\">1</var></scope></domain>");
  m_environment.Set("SUPPORT_CJK", "cjk");
  const Outcome outcome = Run({"--json", "config", "show", "-ORBConnectTimeout", "2000"});
  std::map<std::string, std::string> shown;
  for (const nlohmann::json& setting : nlohmann::json::parse(outcome.output)) {
    shown[setting["name"]] =
        setting["value"].get<std::string>() + " / " + setting["origin"].get<std::string>();
  }
  EXPECT_EQ(shown["-ORBConnectTimeout"], "2000 / command line");
  EXPECT_EQ(shown["-ORBCallTimeout"], "7000 / configuration domain, own scope");
  EXPECT_EQ(shown["-BiDirPolicy"], "1 / configuration domain, scope default");
  EXPECT_EQ(shown["-PreferIPMask"], " / built in");
  EXPECT_EQ(shown["SUPPORT_CJK"], "cjk / environment");
}

}  // namespace
}  // namespace vq::test
