// vqclient as a script sees it: exit code, data on standard output, words on standard error.

#include "ClientFixture.h"

#include <csignal>
#include <regex>
#include <set>
#include <sstream>

#include <sys/stat.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

// Whether `data` has all that `part` has; a list has it where one of its elements has.
bool Contains(const json& data, const json& part) {
  if (part.is_object() && data.is_array()) {
    return std::any_of(data.begin(), data.end(),
                       [&](const json& one) { return Contains(one, part); });
  }
  if (!part.is_object() || !data.is_object()) return data == part;
  return std::all_of(part.items().begin(), part.items().end(), [&](const auto& item) {
    return data.contains(item.key()) && Contains(data[item.key()], item.value());
  });
}

// One document, or one a line.
json Parse(const std::string& text) {
  json data = json::parse(text, nullptr, false);
  if (!data.is_discarded()) return data;
  data = json::array();
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    data.push_back(json::parse(line, nullptr, false));
  return data;
}

struct Row {
  Words command;
  std::string input;
  int code;
  const char* output;  // what standard output holds, without --json
  const char* words;   // what standard error holds
  json data;           // what standard output holds with it; null: not asked
};

using ClientTest = ClientFixture;

// Every command and every option, with text, JSON and exit code.
TEST_F(ClientTest, EveryCommandAndOption) {
  json site = BaseSite();
  site["users"]["alice"]["grants"]["tables"] = {
      {{"criteria", "TABLE LIKE 'PAY*'"}, {"level", "UPDATE_ACCESS"}}};
  const std::string port = std::to_string(StartServer(site).Port());
  const std::string file = m_directory.Write("credentials", "user=alice\npassword=secret\n");
  const std::string open = m_directory.Write("open", "user=alice\npassword=secret\n");
  const std::string link = m_directory / "link";
  ASSERT_EQ(::chmod(file.c_str(), 0600) + ::chmod(open.c_str(), 0644), 0);
  std::filesystem::create_symlink(file, link);
  const std::string password = "secret\n";
  const Words toServer{"-n", m_address, "-s", "central"};
  const auto with = [](Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const Row rows[] = {
      {{"--version"}, "", 0, "vqclient 1.", "", {}},
      {{"--help"}, "", 0, "Exit codes: 0 success", "", {}},
      {Connected({"login"}), password, 0, "Logged in as alice", "", {{"connected", true}}},
      {Connected({"--quiet", "login"}), password, 0, "", "", {{"result", 1}}},
      {Connected({"login"}, "soon"), password, 0, "Logged in", "about to expire", {{"result", 50}}},
      {Connected({"login"}), "wrong\n", 1, "", "User 'alice' is not defined", {{"result", 0}}},
      {Connected({"login", "-t", "60", "--kind", "GSR"}), password, 0, "Logged in", "", {}},
      {Connected({"login", "--timeout", "60", "--max-time", "100"}), password, 0, "Logged", "", {}},
      {Connected({"login", "--lifetime", "0"}), "", 2, "", "--lifetime: '0' is no number", {}},
      {{"login"}, "", 2, "", "--server is required", {{"exitCode", 2}}},
      {{"nonsense"}, "", 2, "", "unknown command 'nonsense'\n", {{"exitCode", 2}}},
      {{"logn", "-s", "x"}, "", 2, "", "did you mean 'login'?", {}},
      {{"login", "--sever", "x"},
       "",
       2,
       "",
       "unknown option '--sever'; did you mean '--server'?",
       {}},
      {Connected({"login", "--kind", "XYZ"}),
       "",
       2,
       "",
       "none of GSR, GAS, QIMS, Forecast, CMS, SLS",
       {}},
      {Connected({"login"}), "", 4, "", "Missing password", {{"error", "Missing password"}}},
      {with({"login", "-f", file}, toServer), "", 0, "Logged in as alice", "", {}},
      {with({"login", "--password-file", open}, toServer),
       "",
       4,
       "",
       "(mode 0644); make it 0600",
       {{"exitCode", 4}}},
      {with({"login", "-f", link}, toServer), "", 4, "", "it is a symbolic link", {}},
      {with({"login", "-f", file + "x"}, toServer), "", 4, "", "No such file", {}},
      {Connected({"login"}, "expired"),
       password,
       48,
       "",
       "Password has expired.",
       {{"result", 48}}},
      {Connected({"login"}, "locked"), password, 49, "", "User account is locked.", {}},
      {Connected({"login"}, "a", "nowhere"), password, 54, "", "'nowhere'", {}},
      {{"login", "--server", "central", "--user", "a", "-n", "127.0.0.1:1"},
       password,
       55,
       "",
       "Naming",
       {}},
      {Connected({"login", "--connect-timeout", "2000", "--call-timeout", "9000", "--bidir", "1"}),
       password,
       0,
       "Logged in",
       "",
       {}},
      {Connected({"login", "--listen", "iiop://", "--prefer-ip", "1", "--max-message", "10000"}),
       password,
       0,
       "Logged in",
       "",
       {}},
      {Connected({"login", "--call-timeout", "soon"}), password, 55, "", "Naming", {}},
      {Connected({"login", "--ca", "/no/such.pem", "--verify-peer", "1", "--verify-host", "1"}),
       password,
       55,
       "",
       "Naming",
       {}},
      {Connected({"login", "--certificate", "/no/such.pem", "--key", "/no/key"}),
       password,
       55,
       "",
       "Naming",
       {}},
      {Connected({"-v", "login"}), password, 0, "Logged in", "LoginHandler", {}},
      {Connected({"ping", "--count", "2", "--interval", "0"}),
       "",
       0,
       "server central (GSR): 2 of 2 answers, min/median/max ",
       "",
       {{"naming", {{"answers", 2}}}, {"server", {{"asked", 2}, {"answers", 2}}}}},
      {{"ping", "-c", "1", "-n", m_address}, "", 0, "naming service: 1 of 1", "", {}},
      {Connected({"ping", "-c", "1"}, "", "nowhere"),
       "",
       1,
       "nowhere (GSR): 0 of 1",
       "not know it",
       {{"server", {{"answers", 0}}}}},
      {{"ping", "-n", "127.0.0.1:1"}, "", 1, "", "does not answer", {{"exitCode", 1}}},
      {{"servers", "-n", m_address},
       "",
       0,
       "central",
       "",
       {{"name", "central"}, {"kind", "GSR"}, {"port", std::stoi(port)}, {"alive", true}}},
      {{"servers", "-n", "127.0.0.1:1"}, "", 55, "", "does not answer", {}},
      {Connected({"param", "get", "general", "Language"}),
       password,
       0,
       "english\n",
       "",
       {{"value", "english"}}},
      {Connected({"param", "get", "general", "Nothing"}),
       password,
       5,
       "",
       "general/Nothing",
       {{"exitCode", 5}}},
      {Connected({"param", "list"}),
       password,
       0,
       "general Language                        english",
       "",
       {{"name", "I18N"}, {"value", "latin1"}}},
      {Connected({"session", "-i", "0"}),
       password,
       0,
       " logout: 1",
       "",
       {{"event", "login"}, {"result", 1}}},
      {Connected({"session", "--interval", "1", "--count", "1", "--again"}),
       password,
       0,
       " keep-alive: 1",
       "",
       {}},
      {Connected({"auth"}),
       password,
       0,
       "table        own    UPDATE_ACCESS TABLE LIKE 'PAY*'",
       "",
       {{"user", "alice"}, {"administrator", false}}},
      {Connected({"auth", "check", "table", "TABLE=PAY01", "UPDATE_ACCESS"}),
       password,
       0,
       "yes\n",
       "",
       {{"allowed", true}}},
      {Connected({"auth", "check", "table", "TABLE=PAY01", "FULL_ACCESS"}),
       password,
       7,
       "no\n",
       "",
       {{"allowed", false}}},
      {Connected({"auth", "check", "table", "TABLE=TAX", "DEFAULT_ACCESS"}),
       password,
       0,
       "yes",
       "",
       {}},
      {Connected({"auth", "check", "table", "TABLE", "FULL_ACCESS"}), "", 2, "", "NAME=VALUE", {}},
      {Connected({"auth", "check", "table", "T=A", "SOME_ACCESS"}), "", 2, "", "SOME_ACCESS", {}},
      {Connected({"version"}), password, 0, "verdict: ", "", {{"result", 1}}},
      {Connected({"passwd"}), "secret\nnew-one\nother\n", 4, "", "differ", {}},
      {Connected({"passwd"}), "secret\nshort\nshort\n", 51, "", "", {{"exitCode", 51}}},
      {Connected({"passwd"}), "secret\nnew-one\nnew-one\n", 0, "The password is changed.", "", {}},
      {Connected({"passwd"}), "new-one\nsecret\nsecret\n", 0, "is changed", "", {}},
      {Connected({"passwd"}, "expired"), "secret\nnew-one\nnew-one\n", 0, "is changed", "", {}},
      {Connected({"doctor"}),
       password,
       0,
       "[good] login: accepted as alice",
       "",
       {{"step", "server"}, {"status", "good"}}},
      {Connected({"doctor", "--fix"}), "secret\nn\n", 0, "", "Nothing is written.", {}},
      {{"config", "show", "--call-timeout", "70"},
       "",
       0,
       "70  (command line)",
       "",
       {{"name", "-ORBCallTimeout"}, {"value", "70"}}},
      {{"config", "show", "--call-timeout", "x"},
       "",
       1,
       "malformed",
       "-ORBCallTimeout",
       {{"name", "malformed"}}},
      {{"config", "set", "naming", m_address},
       "",
       0,
       "default: -ORBInitRef = NameService=",
       "",
       {{"scope", "default"}}},
      {{"config", "set", "server", "central", "--system"},
       "",
       0,
       "vqclient: server = central",
       "",
       {{"name", "server"}}},
      {{"config", "set", "kind", "X"}, "", 2, "", "none of GSR", {}},
      {{"config", "set", "call-timeout", "0"}, "", 2, "", "milliseconds", {}},
      {{"config", "set", "servr", "X"}, "", 2, "", "did you mean 'server'?", {}},
      {{"--site", "test", "config", "set", "user", "alice"},
       "",
       0,
       "site test: user = alice",
       "",
       {}},
      {{"config", "sites"}, "", 0, "test\n", "", json::array({"test"})},
      {{"--site", "test", "login"}, password, 0, "Logged in as alice to central", "", {}},
      {{"--site", "other", "login"}, password, 2, "", "no settings of a site 'other'", {}},
      {{"ping", "-c", "1"}, "", 0, "server central", "", {}},
      {{"config", "unset", "naming"}, "", 0, "-ORBInitRef is not set", "", {{"value", nullptr}}},
      {{"ping", "-c", "1"}, "", 1, "", "No naming service is configured", {}},
  };
  std::set<std::string> tried;
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::PrintToString(row.command));
    const Outcome outcome = Run(row.command, row.input);
    EXPECT_EQ(outcome.code, row.code) << outcome.words;
    EXPECT_THAT(outcome.output, HasSubstr(row.output));
    EXPECT_THAT(outcome.words, HasSubstr(row.words));
    tried.insert(row.command.begin(), row.command.end());
    if (row.data.is_null()) continue;
    Words asJson = row.command;
    asJson.insert(asJson.begin(), "--json");
    const Outcome again = Run(asJson, row.input);
    EXPECT_EQ(again.code, row.code) << again.words;
    EXPECT_TRUE(Contains(Parse(again.output), row.data)) << again.output;
  }
  tried.insert("--json");
  tried.erase("");
  // The short form of an option, or the other one, stands for it.
  const std::regex option("\n  (-[a-z])?,?(--[a-z-]+)?"), command("\n  ([a-z]+)  ");
  const std::function<void(const Words&)> look = [&](const Words& path) {
    const std::string help = Run(with(path, {"--help"})).output;
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at) {
      if (!(*at)[1].matched && !(*at)[2].matched) continue;
      EXPECT_TRUE(tried.contains((*at)[1]) || tried.contains((*at)[2]) || (*at)[1] == "-h")
          << "no row has " << (*at)[0];
    }
    const std::string below = help.substr(std::min(help.find("\nSubcommands:"), help.size()));
    for (std::sregex_iterator at(below.begin(), below.end(), command), end; at != end; ++at) {
      EXPECT_TRUE(tried.contains((*at)[1])) << "no row has " << (*at)[1];
      look(with(path, {(*at)[1]}));
    }
  };
  look({});
}

TEST_F(ClientTest, TheNearestPlaceHasTheSetting) {
  m_environment.Set("VQ_CONFIG_DOMAINS", std::nullopt);
  m_environment.Set("XDG_CONFIG_HOME", m_directory / "user");
  m_environment.Set("SUPPORT_CJK", "cjk");
  m_environment.Set("VQ_KIND", "CMS");
  const auto scope = [](const std::string& name, const std::map<std::string, std::string>& values) {
    std::string text = "<scope name=\"" + name + "\">";
    for (const auto& [key, value] : values) {
      text += "<var name=\"" + key + "\">" + value + "</var>";
    }
    return text + "</scope>";
  };
  const std::string host = m_directory.Write(
      "root/config/vq.xml",
      "<domain>" + scope("CLI", {{"-ORBCallTimeout", "7000"}, {"-ORBMaxMessageSize", "9000"}}) +
          scope("default", {{"-BiDirPolicy", "1"}}) +
          scope("vqclient", {{"server", "of-host"}, {"user", "of-host"}, {"kind", "GAS"}}) +
          scope("site prod", {{"user", "of-site"}, {"-SSLVerifyHost", "0"}}) + "</domain>");
  const std::string user = m_directory.Write(
      "user/vq/vq.xml", "<domain>" + scope("default", {{"-ORBCallTimeout", "8000"}}) +
                            scope("vqclient", {{"server", "of-user"}, {"user", "of-user"}}) +
                            "</domain>");
  const Outcome outcome =
      Run({"--json", "--site", "prod", "config", "show", "-ORBConnectTimeout", "2000"});
  std::map<std::string, std::string> shown;
  for (const json& setting : json::parse(outcome.output)) {
    shown[setting["name"]] =
        setting["value"].get<std::string>() + " / " + setting["origin"].get<std::string>();
  }
  EXPECT_EQ(shown["-ORBConnectTimeout"], "2000 / command line");
  EXPECT_EQ(shown["-ORBCallTimeout"], "8000 / " + user + ", default");
  EXPECT_EQ(shown["-ORBMaxMessageSize"], "9000 / " + host + ", CLI");
  EXPECT_EQ(shown["-BiDirPolicy"], "1 / " + host + ", default");
  EXPECT_EQ(shown["-SSLVerifyHost"], "0 / " + host + ", site prod");
  EXPECT_EQ(shown["-PreferIPMask"], " / built in");
  EXPECT_EQ(shown["server"], "of-user / " + user + ", vqclient");
  EXPECT_EQ(shown["user"], "of-site / " + host + ", site prod");
  EXPECT_EQ(shown["kind"], "CMS / environment, VQ_KIND");
  EXPECT_EQ(shown["SUPPORT_CJK"], "cjk / environment");
}

TEST_F(ClientTest, NothingIsCalledASuccessThatDidNotHappen) {
  StartServer();
  EXPECT_EQ(Run(Connected({"auth"}), "secret\n", "/dev/full").code, 1);
  EXPECT_EQ(Run({"--version"}, "", "/dev/full").code, 1);
  // Each of the standard streams closed in turn; the ORB's own pipe takes none of their places.
  for (const auto& [closed, code] : {std::pair("<&-", 4), {">&-", 1}, {"2>&-", 0}}) {
    std::string command = "exec timeout 60 " VQ_CLIENT;
    for (const std::string& word : Connected({"login"})) command += " " + word;
    ChildProcess::Options options;
    options.standardInput = m_directory.Write("in", "secret\n");
    ChildProcess shell = ChildProcess::Start({"sh", "-c", command + " " + closed}, options);
    EXPECT_EQ(shell.Wait(std::chrono::seconds(90)), code) << closed;
  }
  // A domain that cannot be saved: its lock file is a pipe.
  std::filesystem::create_directories(m_directory / "domains");
  ASSERT_EQ(::mkfifo((m_directory / "domains/vq.xml.lock").c_str(), 0600), 0);
  const Outcome outcome = Run({"config", "set", "server", "central"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.words, HasSubstr("vq.xml.lock: not a regular file"));
}

TEST_F(ClientTest, ASessionEndsInOrderOnInterruptWhateverItDoes) {
  // Between two keep-alives, and during one that takes its time.
  for (const char* interval : {"3600", "1"}) {
    Server& server = StartServer();
    server.SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "delay"}, {"ms", 3000}}});
    ChildProcess client = Start(Connected({"session", "--interval", interval}));
    const std::string awaited = *interval == '1' ? "CRB_ClientKeepAlive" : "CRB_Register";
    ASSERT_TRUE(
        WaitUntil([&] { return m_directory.Read("out").find("login: 1") != std::string::npos; }));
    ASSERT_TRUE(WaitUntil([&] { return !server.LastCall(awaited).is_null(); }));
    client.Signal(SIGINT);
    EXPECT_EQ(client.Wait(std::chrono::seconds(60)), 0) << m_directory.Read("err");
    EXPECT_EQ(server.Operations().back(), "CRB_Unregister");
  }
}

}  // namespace
}  // namespace vq::test
