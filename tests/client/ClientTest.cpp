// vqclient as a script sees it: exit code, data on standard output, words on standard error.

#include <tests/fixture/Environment.h>
#include <tests/fixture/Server.h>

#include <csignal>

#include <gmock/gmock.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

struct Outcome {
  int code = -1;
  std::string output, words;
};

class ClientTest : public ::testing::Test {
 protected:
  ClientTest() { m_environment.Isolate(m_directory.Path()); }

  void StartServer(const json& site = BaseSite()) {
    m_server = std::make_unique<Server>(m_directory, m_naming.Reference(), site);
  }
  ChildProcess Start(Words arguments, const std::string& input = "secret\n") {
    arguments.insert(arguments.begin(), VQ_CLIENT);
    ChildProcess::Options options;
    options.standardInput = m_directory.Write("in", input);
    options.standardOutput = m_directory.Write("out", "");
    options.standardError = m_directory.Write("err", "");
    return ChildProcess::Start(arguments, options);
  }
  Outcome Run(const Words& arguments, const std::string& input = "secret\n") {
    ChildProcess client = Start(arguments, input);
    const int code = client.Wait(std::chrono::seconds(120)).value_or(-1);
    return {code, m_directory.Read("out"), m_directory.Read("err")};
  }
  // The arguments of a command that connects, with the connection's options behind them.
  Words Connected(Words command, const std::string& user = "alice",
                  const std::string& server = "central") const {
    for (const std::string& word :
         {std::string("-s"), server, std::string("-u"), user, std::string("--naming"), m_address}) {
      command.push_back(word);
    }
    return command;
  }

  TemporaryDirectory m_directory;
  Environment m_environment;
  NamingService m_naming{m_directory};
  std::unique_ptr<Server> m_server;
  std::string m_address = "127.0.0.1:" + std::to_string(m_naming.Port());
};

TEST_F(ClientTest, TheExitCodeTellsTheCause) {
  StartServer();
  const std::tuple<Words, const char*, int, const char*> rows[] = {
      {Connected({"login"}), "secret\n", 0, ""},
      {Connected({"login"}), "wrong\n", 1, "User 'alice' is not defined properly."},
      {{"login"}, "", 2, "--server is required"},
      {{"nonsense"}, "", 2, ""},
      {Connected({"login", "--kind", "XYZ"}), "", 2, "XYZ"},
      {Connected({"login"}), "", 4, "Missing password"},
      {Connected({"login"}, "expired"), "secret\n", 48, "Password has expired."},
      {Connected({"login"}, "locked"), "secret\n", 49, "User account is locked."},
      {Connected({"login"}, "a", "nowhere"), "secret\n", 54, "'nowhere'"},
      {{"login", "--server", "central", "--user", "a", "-n", "127.0.0.1:1"},
       "secret\n",
       55,
       "Naming"},
      {Connected({"param", "get", "general", "Nothing"}), "secret\n", 5, "general/Nothing"}};
  for (const auto& [arguments, input, code, words] : rows) {
    const Outcome outcome = Run(arguments, input);
    EXPECT_EQ(outcome.code, code) << arguments[0] << ": " << outcome.words;
    EXPECT_THAT(outcome.words, HasSubstr(words));
  }
}

TEST_F(ClientTest, DataAreOnStandardOutputAndAlsoJson) {
  StartServer();
  const Outcome parameter = Run(Connected({"param", "get", "general", "Language"}));
  EXPECT_EQ(parameter.output + std::to_string(parameter.code), "english\n0");
  EXPECT_EQ(json::parse(Run(Connected({"--json", "login"}, "soon")).output),
            json::parse(R"({"result": 50, "connected": true,
                            "message": "Your password is about to expire.\t"})"));
}

TEST_F(ClientTest, ThePasswordFileServesAsWell) {
  StartServer();
  const std::string file = m_directory.Write("credentials", "user=alice\npassword=secret\n");
  const Words arguments{"login", "-s", "central", "--password-file", file, "-n", m_address};
  for (const auto& [readers, code] : {std::pair(0400, 0), std::pair(0404, 4)}) {
    std::filesystem::permissions(file, static_cast<std::filesystem::perms>(readers));
    EXPECT_EQ(Run(arguments, "").code, code);
  }
}

TEST_F(ClientTest, ASessionEndsInOrderOnInterrupt) {
  StartServer();
  ChildProcess client = Start(Connected({"session", "--interval", "3600"}));
  ASSERT_TRUE(WaitUntil([&] { return !m_server->LastCall("CRB_ResetTimeout").is_null(); }));
  ASSERT_TRUE(
      WaitUntil([&] { return m_directory.Read("out").find("login: 1") != std::string::npos; }));
  client.Signal(SIGINT);
  EXPECT_EQ(client.Wait(std::chrono::seconds(60)), 0);
  EXPECT_EQ(m_server->Operations().back(), "CRB_Unregister");
}

TEST_F(ClientTest, APasswordIsChangedInASessionAndAfterItHasExpired) {
  StartServer();
  for (const char* user : {"alice", "expired"}) {
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nnew-one\nother\n").code, 4) << user;
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nshort\nshort\n").code, 51) << user;
    EXPECT_EQ(Run(Connected({"passwd"}, user), "secret\nnew-one\nnew-one\n").code, 0) << user;
    EXPECT_EQ(Run(Connected({"login"}, user), "new-one\n").code, 0) << user;
  }
}

TEST_F(ClientTest, QuestionsOfAuthorizationAreAnsweredByExitCode) {
  json site = BaseSite();
  site["users"]["alice"]["grants"]["tables"] = {
      {{"criteria", "TABLE LIKE 'PAY*'"}, {"level", "UPDATE_ACCESS"}}};
  StartServer(site);
  const std::tuple<const char*, const char*, int> rows[] = {
      {"TABLE=PAY01", "UPDATE_ACCESS", 0}, {"TABLE=PAY01", "FULL_ACCESS", 7},
      {"TABLE=TAX", "BROWSE_ACCESS", 7},   {"TABLE=TAX", "DEFAULT_ACCESS", 0},
      {"TABLE", "FULL_ACCESS", 2},         {"TABLE=TAX", "SOME_ACCESS", 2}};
  for (const auto& [table, level, code] : rows) {
    const Outcome outcome = Run(Connected({"auth", "check", "table", table, level}));
    EXPECT_EQ(outcome.code, code) << table << ' ' << level << outcome.words;
  }
  const json all = json::parse(Run(Connected({"--json", "auth"})).output);
  EXPECT_EQ(all["user"], "alice");
  EXPECT_EQ(all["administrator"], false);
  EXPECT_EQ(all["grants"]["table"]["own"][0]["criteria"], "TABLE LIKE 'PAY*'");
  EXPECT_EQ(all["privileges"].size(), 22U);
}

TEST_F(ClientTest, TheDoctorNamesTheFirstThingThatIsWrongAndWhatToDo) {
  StartServer();
  const auto expect = [&](const std::string& server, int code, const std::string& line) {
    const Outcome outcome = Run(Connected({"doctor"}, "alice", server), "wrong\n");
    EXPECT_EQ(outcome.code, code);
    EXPECT_THAT(outcome.output, HasSubstr(line));
  };
  expect("central", 1, "[BAD]  login: ");
  expect("nowhere", 54,
         "[BAD]  registration: the naming service knows no server 'nowhere' of kind GSR");
  m_server->Kill();
  expect(
      "central", 54,
      "[BAD]  address: 127.0.0.1 port " + std::to_string(m_server->Port()) + " cannot be reached");
  m_address = "127.0.0.1:1";
  expect("central", 55, "next:  Start the naming service");
}

TEST_F(ClientTest, TheDoctorWritesAWayThatWorksOnlyAfterAYes) {
  StartServer();
  std::filesystem::create_directories(m_directory / "root/config");
  for (const std::string answer : {"n", "y"}) {
    const Outcome outcome = Run(Connected({"doctor", "--fix"}), "secret\n" + answer + "\n");
    EXPECT_EQ(outcome.code, 0) << outcome.output << outcome.words;
    const bool written =
        m_directory.Read("root/config/vq.xml").find("-ORBListenEndpoints") != std::string::npos;
    EXPECT_EQ(written, answer == "y");
  }
}

TEST_F(ClientTest, EverySettingIsShownWithItsOrigin) {
  m_directory.Write("root/config/vq.xml",
                    "<domain><scope name=\"CLI\"><var name=\"-ORBCallTimeout\">7000</var></scope>"
                    "<scope name=\"default\"><var name=\"-BiDirPolicy\">1</var></scope></domain>");
  m_environment.Set("SUPPORT_CJK", "cjk");
  const Outcome outcome = Run({"--json", "config", "show", "-ORBConnectTimeout", "2000"});
  std::map<std::string, std::string> shown;
  for (const json& setting : json::parse(outcome.output)) {
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
