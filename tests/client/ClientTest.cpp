// vqclient as a script sees it: exit code, data on stdout, messages on stderr.

#include <csignal>
#include <iostream>
#include <regex>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

#include <tests/client/ClientFixture.h>
#include <vq_client_common/session/StoredSettings.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

// Whether `data` has all that `part` has; a list has it where one of its elements has.
bool Contains(const json& data, const json& part) {
  const auto has = [&](const json& one) { return Contains(data, one); };
  const auto isIn = [&](const json& one) { return Contains(one, part); };
  if (part.is_array()) return std::all_of(part.begin(), part.end(), has);
  if (data.is_array()) return std::any_of(data.begin(), data.end(), isIn);
  json merged = data;
  merged.merge_patch(part);
  return merged == data;
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
  const char* command;
  int code;
  const char* output;      // stdout contains it, without --json
  const char* words = "";  // stderr contains it
  json data = {};          // stdout contains it with --json; null: not tried
  const char* input = "secret\n";
};

class ClientTest : public ClientFixture {
 protected:
  // "value / origin" of each setting that the command shows.
  std::map<std::string, std::string> Shown(const std::string& command) {
    std::map<std::string, std::string> shown;
    for (const json& setting : json::parse(Run("--json " + command).output)) {
      const std::string value = setting["value"], origin = setting["origin"];
      shown[setting["name"]] = value + " / " + origin;
    }
    return shown;
  }
};

// Every command and every option, with text, JSON and exit code.
TEST_F(ClientTest, EveryCommandAndOption) {
  json site = BaseSite();
  site["users"]["alice"]["grants"]["tables"] = {
      {{"criteria", "TABLE LIKE 'PAY*'"}, {"level", "UPDATE_ACCESS"}}};
  site["users"]["alice"]["privileges"] = {{"CLI_PRIV_TYPE", "BROWSE_ACCESS"}};
  const int port = StartServer({.site = site}).Port();
  const std::string file = m_directory.Write("file", "user=alice\npassword=secret\n");
  const std::string open = m_directory.Write("open", "user=alice\npassword=secret\n");
  std::filesystem::create_symlink(file, m_directory / "link");
  ASSERT_EQ(::chmod(file.c_str(), 0600) + ::chmod(open.c_str(), 0644), 0);
  const json usage{{"exitCode", 2}}, in{{"connected", true}, {"loggedOut", true}},
      refused{{"cause", "connection refused at 127.0.0.1:1"}},
      login{{"event", "login"}, {"result", 1}}, alive{{"event", "keep-alive"}, {"result", 1}},
      logout{{"event", "logout"}, {"result", 1}};
  const json pinged{{"naming", {{"answers", 2}}}, {"server", {{"asked", 2}, {"answers", 2}}}},
      unknown{{"naming", {{"answers", 1}}}, {"server", {{"answers", 0}}}},
      listed{{"name", "central"}, {"kind", "GSR"}, {"port", port}, {"tls", false}, {"alive", true}},
      parameters{{"name", "I18N"}, {"value", "latin1"}},
      allowed{
          {"user", "alice"}, {"administrator", false}, {"privileges", {{"CLI", "BROWSE_ACCESS"}}}},
      versions{{"client", "8.0.05::P1"}, {"server", "8.0.05"}, {"result", 1}},
      timeOut{{"name", "-ORBCallTimeout"}, {"value", "70"}},
      good{{"step", "server"}, {"status", "good"}}, scope{{"scope", "default"}},
      name{{"name", "server"}};
  const Row rows[] = {
      {"--version", 0, "vqclient 1."},
      {"--help", 0, "Exit codes: 0 success"},
      {"login @alice", 0, "Logged in as alice to central.", "", in},
      {"--quiet login @alice", 0, "", "", {{"result", 1}, {"message", ""}}},
      {"login @soon", 0, "Logged in", "about to expire", {{"result", 50}}},
      {"login @alice", 1, "", "User 'alice' is not defined", {{"result", 0}}, "wrong\n"},
      {"login @alice -t 60 --kind GSR --max-time 100 --connect-timeout 2000 --call-timeout 9000", 0,
       "Logged in"},
      {"login @alice --timeout 60 --tcp-keep-alive 9000 --tcp-user-timeout 9000", 0, "Logged in"},
      {"login @alice --lifetime 0", 2, "", "--lifetime: '0' is not a number"},
      {"login", 55, "", "Next: Set --naming. To store it: vqclient config set naming"},
      {"login -n NAMING -u alice", 0, "Logged in as alice to central."},
      {"login -n NAMING --kind GAS", 2, "",
       "required: the naming service knows no server of kind GAS;", usage},
      {"nonsense", 2, "", "unknown command 'nonsense'\n", usage},
      {"n\x1b[\xc2\x9bs\xc3\xa9", 2, "", "unknown command 'n?[?s\xc3\xa9'\n", usage},
      {"logn -s x", 2, "", "did you mean 'login'?"},
      {"login --sever x", 2, "", "unknown option '--sever'; did you mean '--server'?"},
      {"login @alice --kind XYZ", 2, "", "not one of GSR, GAS, QIMS, Forecast, CMS, SLS"},
      {"login @alice", 4, "", "Missing password", {{"error", "Missing password"}}, ""},
      {"login -f DIR/file -n NAMING -s central", 0, "Logged in as alice"},
      {"login @alice -f DIR/file", 4, "", "Conflict, Have a Username and password file"},
      {"login --password-file DIR/open -s central", 4, "", "(mode 0644); make it 0600"},
      {"login -f DIR/link -s central", 4, "", "it is a symbolic link"},
      {"login -f DIR/none -s central", 4, "", "No such file"},
      {"login @expired", 48, "", "Password has expired.", {{"result", 48}, {"connected", false}}},
      {"login @locked", 49, "", "User account is locked."},
      {"login -s nowhere -u a -n NAMING", 54, "", "'nowhere'"},
      {"login --server central --user a -n 127.0.0.1:1", 55, "", "refused at 127.0.0.1:1", refused},
      {"login @alice --bidir 1 --listen iiop:// --prefer-ip 1 --max-message 10000", 0, "Logged in"},
      {"login @alice --call-timeout soon", 55, "", "Cause: the value 'soon' of -ORBCallTimeout"},
      {"login @alice --ca /no/such.pem --verify-peer 1 --verify-host 1", 55, "", "/no/such.pem"},
      {"login @alice --certificate /no/such.pem --key /no/key", 55, "", "/no/such.pem"},
      {"login @alice --server-names a.site --encrypt-lookups 1", 55, "", "and TLS is off"},
      {"login @alice --ca DIR/file --revocation-list /no/list", 55, "", "Cause: "},
      {"-v login @alice", 0, "Logged in", "LoginHandler"},
      {"ping @ --count 2 --interval 0", 0, "central (GSR): 2 of 2 answers, min/median/max ", "",
       pinged},
      {"ping -c 1 -n NAMING", 0, "naming service: 1 of 1 answers"},
      {"ping -c 1 -s nowhere -n NAMING", 1, "nowhere (GSR): 0 of 1", "not know this server",
       unknown},
      {"ping -n 127.0.0.1:1", 1, "", "refused at 127.0.0.1:1", {{"exitCode", 1}}},
      {"servers -n NAMING", 0, "NAME                 KIND      HOST ", "", listed},
      {"servers -n 127.0.0.1:1", 55, "", "Cause: connection refused at 127.0.0.1:1"},
      {"param get @alice general Language", 0, "english\n", "", {{"value", "english"}}},
      {"param get @alice general Nothing", 5, "", "general/Nothing", {{"exitCode", 5}}},
      {"param list @alice", 0, "gsr     AuthorSecurity                  -\n", "", parameters},
      {"session @locked", 49, " login: 49", "locked", {{"event", "login"}, {"result", 49}}},
      {"session @alice -i 1 --count 1 --again", 0, " keep-alive: 1", "", {login, alive, logout}},
      {"session @alice", 0, " logout: 1"},
      {"session @alice --interval 3600 --max-time 2", 0, " logout: 1"},
      {"auth @alice", 0, "user           alice\n\nACTIVEVP           DEFAULT_ACCESS", "", allowed},
      {"auth @alice", 0,
       "table        own    UPDATE_ACCESS TABLE LIKE 'PAY*'\nworkload     none\n"},
      {"auth @bob", 0, "user           bob (administrator)", "", {{"administrator", true}}},
      {"auth @alice check table TABLE=PAY01 UPDATE_ACCESS", 0, "yes\n", "", {{"allowed", true}}},
      {"auth @alice check table TABLE=PAY01 FULL_ACCESS", 7, "no\n", "", {{"allowed", false}}},
      {"auth @alice check table TABLE=TAX DEFAULT_ACCESS", 0, "yes"},
      {"auth @alice check service SERVICE=A BROWSE_ACCESS", 7, "no"},
      {"auth @alice check table TABLE FULL_ACCESS", 2, "", "'TABLE' is not NAME=VALUE"},
      {"auth @alice check table T=A SOME_ACCESS", 2, "", "unknown level 'SOME_ACCESS'"},
      {"auth @alice check chair T=A FULL_ACCESS", 2, "", "unknown kind 'chair'"},
      {"version @alice", 0,
       "client:  8.0.05::P1\nserver:  8.0.05\nverdict: the server accepts this client\n", "",
       versions},
      {"version @locked", 49, "verdict: the server accepts this client", "locked"},
      {"version -s central -u alice -n 127.0.0.1:1", 55, "client:  8.0.05::P1\nserver:  unknown\n",
       "refused"},
      {"passwd @alice", 4, "", "differ", {}, "secret\nnew-one\nother\n"},
      {"passwd @alice", 4, "", "no new password", {}, "secret\n"},
      {"passwd @alice", 51, "", "too short", {{"exitCode", 51}}, "secret\nshort\nshort\n"},
      {"passwd @alice", 0, "The password is changed.", "", {}, "secret\nnew-one\nnew-one\n"},
      {"passwd @alice", 0, "is changed", "", {}, "new-one\nsecret\nsecret\n"},
      {"passwd @expired", 51, "", "too short", {}, "secret\nshort\nshort\n"},
      {"passwd @expired", 4, "", "Password has expired.", {}, "secret\n"},
      {"passwd @expired", 0, "is changed", "has expired.", {}, "secret\nnew-one\nnew-one\n"},
      {"doctor @alice", 0, "[good] login: accepted as alice", "", good},
      {"doctor @alice --fix", 0, "", "Nothing is written.", {}, "secret\nn\n"},
      {"config show --call-timeout 70", 0, "70  (command line)", "", timeOut},
      {"config show --call-timeout x", 1, "malformed", "-ORBCallTimeout", {{"name", "malformed"}}},
      {"config set naming NAMING", 0, "default: -ORBInitRef = NameService=", "", scope},
      {"config set server central --system", 0, "vqclient: server = central", "", name},
      {"config set kind X", 2, "", "not one of GSR"},
      {"config set call-timeout 0", 2, "", "milliseconds"},
      {"config set naming host:", 2, "", "'host:' is not HOST:PORT"},
      {"config set servr X", 2, "", "did you mean 'server'?"},
      {"config set server-names *.site", 0, "default: -SSLServerNames = *.site"},
      {"config unset server-names", 0, "-SSLServerNames is not set"},
      {"config set ca ca.pem", 0, "default: -SSLCACertificate = /"},
      {"config unset ca", 0, "-SSLCACertificate is not set"},
      {"--site test config set user alice", 0, "site test: user = alice"},
      {"config sites", 0, "test\n", "", {"test"}},
      {"--site test login", 0, "Logged in as alice to central"},
      {"--site other login", 2, "", "no settings of a site 'other'"},
      {"ping -c 1", 0, "server central"},
      {"config unset naming", 0, "-ORBInitRef is not set", "", {{"name", "-ORBInitRef"}}},
      {"ping -c 1", 1, "", "no naming service is configured"},
      {"config set naming corbaloc::NAMING/NameService", 0, "NameService=corbaloc::127.0.0.1:"},
      {"ping -c 1", 0, "server central"},
  };
  std::set<std::string> tried;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.command);
    const Outcome outcome = Run(row.command, row.input);
    EXPECT_EQ(outcome.code, row.code) << outcome.words;
    EXPECT_THAT(outcome.output, HasSubstr(row.output));
    EXPECT_THAT(outcome.words, HasSubstr(row.words));
    if (row.code != 0) {
      EXPECT_THAT(outcome.output, Not(ContainsRegex("Logged in|is changed")));
    }
    for (const std::string& word : Words(row.command)) tried.insert(word);
    if (row.data.is_null()) continue;
    const Outcome again = Run(std::string("--json ") + row.command, row.input);
    EXPECT_EQ(again.code, row.code) << again.words;
    EXPECT_TRUE(Contains(Parse(again.output), row.data)) << again.output;
  }
  tried.insert("--json");
  tried.erase("");
  // The short form of an option, or the other one, stands for it.
  const std::regex option("\n  (-[a-z])?,?(--[a-z-]+)?"), command("\n  ([a-z]+)  ");
  const std::function<void(const std::string&)> look = [&](const std::string& path) {
    const std::string help = Run(path + " --help").output;
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at) {
      if (!(*at)[1].matched && !(*at)[2].matched) continue;
      EXPECT_TRUE(tried.contains((*at)[1]) || tried.contains((*at)[2]) || (*at)[1] == "-h")
          << "no row has " << (*at)[0];
    }
    const std::string below = help.substr(std::min(help.find("\nSubcommands:"), help.size()));
    for (std::sregex_iterator at(below.begin(), below.end(), command), end; at != end; ++at) {
      EXPECT_TRUE(tried.contains((*at)[1])) << "no row has " << (*at)[1];
      look(path + " " + (*at)[1].str());
    }
  };
  look("");
}

TEST_F(ClientTest, TheNearestPlaceHasTheSetting) {
  m_environment.Set("VQ_CONFIG_DOMAINS", std::nullopt);
  m_environment.Set("XDG_CONFIG_HOME", m_directory / "user");
  m_environment.Set("SUPPORT_CJK", "cjk");
  m_environment.Set("VQ_KIND", "CMS");
  m_environment.Set("VQ_DATA", m_directory / "data");
  m_directory.Write("user/vq/profile.ini", "[Orb Parameters]\nRegisterTimeOut = 60\n");
  const std::string host = m_directory.Write("root/config/vq.xml", R"(<domain>
    <scope name="CLI"><var name="-ORBCallTimeout">7000</var>
      <var name="-ORBMaxMessageSize">9000</var></scope>
    <scope name="default"><var name="-BiDirPolicy">1</var></scope>
    <scope name="vqclient"><var name="server">of-host</var><var name="user">of-host</var>
      <var name="kind">GAS</var><var name="password-file">of-host</var></scope>
    <scope name="site prod"><var name="user">of-site</var><var name="-SSLVerifyHost">0</var></scope>
    </domain>)");
  const std::string user = m_directory.Write("user/vq/vq.xml", R"(<domain>
    <scope name="default"><var name="-ORBCallTimeout">8000</var></scope>
    <scope name="vqclient"><var name="server">of-user</var><var name="user">of-user</var></scope>
    </domain>)");
  std::map<std::string, std::string> shown =
      Shown("--site prod config show -ORBConnectTimeout 2000");
  EXPECT_EQ(shown["-ORBConnectTimeout"], "2000 / command line");
  EXPECT_EQ(shown["-ORBCallTimeout"], "8000 / " + user + ", default");
  EXPECT_EQ(shown["-ORBMaxMessageSize"], "9000 / " + host + ", CLI");
  EXPECT_EQ(shown["-BiDirPolicy"], "1 / " + host + ", default");
  EXPECT_EQ(shown["-SSLVerifyHost"], "0 / " + host + ", site prod");
  EXPECT_EQ(shown["-PreferIPMask"], " / built in");
  EXPECT_EQ(shown["server"], "of-user / " + user + ", vqclient");
  EXPECT_EQ(shown["user"], "of-site / " + host + ", site prod");
  EXPECT_EQ(shown["password-file"], " / not set") << "the user is of a stronger place";
  EXPECT_EQ(shown["kind"], "CMS / environment, VQ_KIND");
  EXPECT_EQ(shown["SUPPORT_CJK"], "cjk / environment");
  EXPECT_EQ(shown["ENABLE_TEST_CALLBACK"], " / not set");
  const std::string root = m_directory / "root/";
  EXPECT_EQ(shown["root"], root + " / environment, VQ_HOME");
  EXPECT_EQ(shown["data"], m_directory / "data/ / environment, VQ_DATA");
  EXPECT_EQ(shown["user's settings"], m_directory / "user/vq/ / environment, XDG_CONFIG_HOME");
  EXPECT_EQ(shown["[Orb Parameters] RegisterTimeOut"], "60 / profile.ini");
  EXPECT_EQ(shown["product NFT"], "8.0.05 P1 / " + root + "installed-products.ini");
}

TEST_F(ClientTest, EverySettingOfTheOrbHasALongOption) {
  std::filesystem::remove(m_directory / "root/installed-products.ini");
  std::map<std::string, std::string> shown = Shown(
      "config show --listen iiop:// --bidir 0 --prefer-ip 1 --naming a:1 --connect-timeout 1 "
      "--call-timeout 1 --tcp-keep-alive 1 --tcp-user-timeout 1 --max-message 8192 --ca a "
      "--certificate a --key a --verify-peer 1 --verify-host 1 --server-names a "
      "--encrypt-lookups 0 --revocation-list a");
  int count = 0;
  for (const auto& [name, place] : shown) {
    if (!name.starts_with('-')) continue;
    EXPECT_THAT(place, HasSubstr(" / command line")) << name;
    ++count;
  }
  EXPECT_EQ(count, 17);
  EXPECT_EQ(shown["user's settings"], m_directory / ".config/vq/ / built in");
  EXPECT_EQ(shown["[Orb Parameters] RegisterTimeOut"], " / not set; the server is asked");
  EXPECT_EQ(shown["product NFT"], " / not set");
}

// What the next test runs as a program of its own. vqclient would do but for its shared library,
// which a set-user-ID program takes from trusted directories alone.
TEST(StoredSettings, DISABLED_Print) {
  std::string error;
  for (const StoredSetting& setting : ReadStoredSettings(error)) std::cout << setting.value << '\n';
  std::cout << std::flush;
  std::_Exit(0);  // A leak checker may not look at such a program.
}

// With the rights of its owner a program must not take settings from the user who starts it.
TEST_F(ClientTest, ASetUserIdProgramDoesNotReadTheUsersLayer) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make such a program";
  m_environment.Set("VQ_CONFIG_DOMAINS", std::nullopt);
  m_directory.Write(".config/vq/vq.xml",
                    "<domain><scope name=\"vqclient\"><var name=\"server\">of-user</var></scope>"
                    "</domain>");
  const std::string program = m_directory / "program";
  std::filesystem::copy_file("/proc/self/exe", program);
  ASSERT_EQ(::chmod(m_directory.Path().c_str(), 0755) + ::chown(program.c_str(), 54321, 54321), 0);
  ChildProcess::Options options;
  options.standardOutput = m_directory / "out";
  // The layer is where it is by itself, and where a variable says.
  for (const auto& [place, mode] :
       {std::pair("", 0755U), {"", 04755U}, {"x", 0755U}, {"x", 04755U}}) {
    if (*place != '\0') m_environment.Set("VQ_CONFIG_DOMAINS", m_directory / ".config/vq");
    std::filesystem::remove(options.standardOutput);
    ASSERT_EQ(::chmod(program.c_str(), mode), 0);
    ChildProcess client =
        ChildProcess::Start({"setpriv", "--reuid=12345", "--clear-groups", program,
                             "--gtest_also_run_disabled_tests", "--gtest_filter=*DISABLED_Print"},
                            options);
    ASSERT_EQ(client.Wait(std::chrono::seconds(60)), 0) << m_directory.Read("out");
    EXPECT_EQ(m_directory.Read("out").find("of-user") != std::string::npos, mode == 0755)
        << m_directory.Read("out");
  }
}

TEST_F(ClientTest, NothingIsCalledASuccessThatDidNotHappen) {
  StartServer();
  EXPECT_EQ(Run("auth @alice", "secret\n", "/dev/full").code, 1);
  EXPECT_EQ(Run("--version", "", "/dev/full").code, 1);
  // Each of the standard streams closed in turn; the ORB's own pipe takes none of their places.
  const std::tuple<const char*, const char*, int> rows[] = {{"login @alice", "<&-", 4},
                                                            {"login @alice", ">&-", 1},
                                                            {"login @alice", "2>&-", 0},
                                                            {"--version", "<&- >&-", 1}};
  for (const auto& [words, closed, code] : rows) {
    std::string command = "exec timeout 60 " VQ_CLIENT;
    for (const std::string& word : Words(words)) command += " " + word;
    ChildProcess shell =
        ChildProcess::Start({"sh", "-c", command + " " + closed},
                            {.standardInput = m_directory.Write("in", "secret\n")});
    EXPECT_EQ(shell.Wait(std::chrono::seconds(90)), code) << closed;
  }
  // The logout at the end is not answered.
  m_server->SetFaults({{{"operation", "CRB_Unregister"}, {"action", "drop"}}});
  for (const char* command : {"login @alice", "session @alice"}) {
    const Outcome outcome = Run(command);
    EXPECT_EQ(outcome.code, 6) << command;
    EXPECT_THAT(outcome.words, HasSubstr("The server does not confirm the logout.\n  Cause: "));
  }
  // It is not known which of two servers to ask.
  const Server other(m_directory, m_naming.Reference(), {.name = "other"});
  const Outcome ping = Run("ping --count 1 -n NAMING");
  EXPECT_EQ(ping.code, 1);
  EXPECT_THAT(ping.words,
              ContainsRegex("several servers of kind GSR: (central, other|other, central);"));
  // A domain that cannot be saved: its lock file is a pipe.
  std::filesystem::create_directories(m_directory / "domains");
  ASSERT_EQ(::mkfifo((m_directory / "domains/vq.xml.lock").c_str(), 0600), 0);
  const Outcome outcome = Run("config set server central");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.words, HasSubstr("vq.xml.lock: not a regular file"));
}

TEST_F(ClientTest, ALostSessionHasItsTrueCauseAndKeepsToItsTime) {
  const struct {
    std::string options;
    std::function<void(Server&)> fault;
    std::string output, words;
  } rows[] = {{"", [](Server& server) { server.SetFaults({Return("CRB_ClientKeepAlive", 0)}); },
               " keep-alive: 0\n", "The server does not know the session any more."},
              {"", [](Server& server) { server.Kill(); }, " keep-alive: 54\n",
               "Cause: connection refused at 127.0.0.1:"},
              {" --max-time 6", [](Server& server) { server.Stop(); }, " logout: 54\n",
               "Cause: no answer from 127.0.0.1:"}};
  const auto prints = [&](const char* event) {
    return WaitUntil([&] { return m_directory.Read("out").find(event) != std::string::npos; });
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.words);
    Server& server = StartServer();
    ChildProcess client = Start("session @alice --interval 1" + row.options);
    ASSERT_TRUE(prints("keep-alive: 1"));
    row.fault(server);
    EXPECT_EQ(client.Wait(std::chrono::seconds(20)), 6);
    EXPECT_THAT(m_directory.Read("out"), HasSubstr(row.output));
    EXPECT_THAT(m_directory.Read("err"), HasSubstr(row.words));
  }
  // The server still hangs. It uses up the time, and not the naming service that is asked later.
  const Outcome outcome = Run("login @alice --max-time 2");
  EXPECT_EQ(outcome.code, 54);
  EXPECT_THAT(outcome.words,
              HasSubstr("Cause: no answer from 127.0.0.1:" + std::to_string(m_server->Port())));
  m_server->Kill();

  StartServer();
  ChildProcess goesOn = Start("session @alice --interval 1 --again --call-timeout 1000");
  ASSERT_TRUE(prints("keep-alive: 1"));
  m_naming.Stop();
  m_server->Stop();
  ASSERT_TRUE(prints("login again: 54"));
  m_server->Continue();
  EXPECT_TRUE(WaitUntil([&] {  // It needs no naming service.
    const std::string output = m_directory.Read("out");
    return output.find("keep-alive: 1", output.find("login again")) != std::string::npos;
  }));
  m_naming.Continue();
  m_server->Kill();
  ASSERT_TRUE(prints("login again: 54"));
  StartServer();
  EXPECT_TRUE(prints("login again: 1"));
  goesOn.Signal(SIGTERM);
  EXPECT_EQ(goesOn.Wait(std::chrono::seconds(20)), 0);

  // The time ends during the session, and the server still receives the logout.
  Server& slow = StartServer();
  slow.SetFaults(
      {{{"operation", "CRB_GetSystemParameterValue"}, {"action", "delay"}, {"ms", 500}}});
  EXPECT_EQ(Run("param list @alice --max-time 3").code, 6);
  EXPECT_EQ(slow.Calls().back()["operation"], "CRB_Unregister");
}

// Every option of the simulator with its exit status, and one command for naming service and
// server.
TEST_F(ClientTest, TheSimulatorBringsAWholeSite) {
  const std::string site = "--site " + m_directory.Write("site.json", BaseSite().dump()) + " ";
  const struct {
    std::string command;
    int code;
    const char* words;
  } rows[] = {{"--version", 0, "1."},
              {"--help", 0, "Exit codes: 0 stopped"},
              {"--nonsense", 2, "--nonsense"},
              {"--naming-service --naming x", 2, "--naming"},
              {"--site DIR/none", 2, "none"},
              {site + "--kind GSR --kind GSR", 2, "a --kind is given twice"},
              {site + "--endpoint nonsense", 2, "nonsense"},
              {site + "--endpoint iiop://192.0.2.77:", 4, "does not start on iiop://192.0.2.77:"},
              {site + "--naming corbaloc::127.0.0.1:1/NameService", 3, "does not answer"},
              {site + "--log /no/such/log", 5, "/no/such/log"},
              {site + "--ready-file /no/such/file", 5, "/no/such/file"},
              {site + "--control /no/such/socket --no-bidir", 5, "/no/such/socket"}};
  const auto start = [&](const std::string& command) {
    std::vector<std::string> words = Words(command);
    words.insert(words.begin(), VQ_SIMULATOR);
    return ChildProcess::Start(words, {.standardOutput = m_directory.Write("simulator", "")});
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command);
    EXPECT_EQ(start(row.command).Wait(std::chrono::seconds(60)), row.code);
    EXPECT_THAT(m_directory.Read("simulator"), HasSubstr(row.words));
  }
  ChildProcess simulator = start(site + "--naming-service --server central");
  std::smatch found;
  std::string ready;
  ASSERT_TRUE(WaitUntil([&] {
    ready = m_directory.Read("simulator");
    return std::regex_search(ready, found, std::regex("naming service (corbaloc[^;]*); users: "));
  })) << ready;
  EXPECT_EQ(Run("config set naming " + found[1].str()).code, 0);
  for (const char* command : {"login", "ping --count 1", "servers", "auth", "doctor"}) {
    m_environment.Set("VQ_USER", "alice");
    EXPECT_EQ(Run(command).code, 0) << command;
  }
  simulator.Signal(SIGTERM);
  EXPECT_EQ(simulator.Wait(std::chrono::seconds(30)), 0);
}

TEST_F(ClientTest, ASessionEndsInOrderOnInterruptWhateverItDoes) {
  // Between two keep-alives, and during one that takes its time.
  for (const char* interval : {"3600", "1"}) {
    Server& server = StartServer();
    server.SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "delay"}, {"ms", 3000}}});
    ChildProcess client = Start(std::string("session @alice --interval ") + interval);
    const std::string awaited = *interval == '1' ? "CRB_ClientKeepAlive" : "CRB_Register";
    ASSERT_TRUE(
        WaitUntil([&] { return m_directory.Read("out").find("login: 1") != std::string::npos; }));
    ASSERT_TRUE(WaitUntil([&] { return !server.LastCall(awaited).is_null(); }));
    client.Signal(*interval == '1' ? SIGHUP : SIGINT);
    EXPECT_EQ(client.Wait(std::chrono::seconds(60)), 0) << m_directory.Read("err");
    EXPECT_EQ(server.Operations().back(), "CRB_Unregister");
  }
}

}  // namespace
}  // namespace vq::test
