// Logins at a server through a naming service, and the results of logins that are refused or fail.

#include <tests/fixture/Product.h>
#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/Session.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;
using LoginTest = SessionFixture;

TEST_F(LoginTest, ReportsRefusals) {
  EXPECT_EQ(GL_ReLogin(600), 0);
  json site = BaseSite();
  site["users"].merge_patch(json::parse(R"({
    "said": {"password": "secret", "locked": true, "message": "Ask Bob."},
    "odd": {"password": "secret", "result": 7, "message": "Seven."},
    "late": {"password": "secret", "expiry": "soon", "message": "Two days."}})"));
  Server& server = StartServer({.site = site});
  // The last column: the result of a second registration, which is a number only.
  const std::tuple<const char*, int, std::string, bool, int> rows[] = {
      {"locked", 49, "User account is locked.\t", false, 0},
      {"said", 49, "Ask Bob.", false, 0},
      {"expired", 48, "Password has expired.\t", false, 0},
      {"odd", 7, "Seven.", false, 7},
      {"soon", 50, "Your password is about to expire.\t", true, 50},
      {"late", 50, "Two days.", true, 50},
      {"alice", 1, "", true, 1}};
  for (const auto& [user, code, message, connected, again] : rows) {
    EXPECT_EQ(Login(user), code) << user;
    EXPECT_EQ(m_message, message) << user;
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), connected) << user;
    server.ForgetCalls();
    EXPECT_EQ(GL_ReLogin(60), again) << user;
    EXPECT_EQ(server.LastCall("CRB_Register")["arguments"]["timeOut"], 60);
    EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], "response");
    EXPECT_EQ(server.LastCall("CRB_ResetTimeout").is_null(), again == 0) << user;
    GL_LogOut(false);
  }
}

TEST_F(LoginTest, SendsTheClientsData) {
  InstallClient("8.0.00", "P1,P2");
  Server& server = StartServer();
  // The last column: the version that is verified; none for a client whose version is not checked.
  const std::tuple<CLIENT_ID, const char*, const char*, json> rows[] = {
      {CLIENT_GUI, "vq_gui", "8.0.00::P1,P2", "8.0.00"},
      {CLIENT_QIMC, "vq_qimc", "0", nullptr},
      {CLIENT_UNKNOWN, "Unkown_Client", "0", nullptr}};
  for (const auto& [client, name, version, verifiedVersion] : rows) {
    server.ForgetCalls();
    m_log.Clear();
    ASSERT_EQ(Login("alice", "secret", "central", client), 1) << m_log.Text();
    const std::string log = m_log.Text(), entered = "6 LoginHandler::Register: Enter";
    ASSERT_NE(log.find(entered), std::string::npos) << log;
    EXPECT_EQ(log.find(entered), log.rfind(entered)) << "one scope";
    const json arguments = server.LastCall("CRB_Register")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["clientName"], name);
    EXPECT_EQ(arguments["clientVersion"], version);
    EXPECT_EQ(arguments["timeOut"], 600);
    const json verified = server.LastCall("CRB_VerifyClientServerVersion");
    EXPECT_EQ(verified.is_null() ? verified : verified["arguments"]["clientVersion"],
              verifiedVersion);
    EXPECT_EQ(ConnectionSettings::Get()->GetDBUserName(), "vqdb");
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID().size(), 32U);
  }
}

TEST_F(LoginTest, SendsPasswordsAsTheServerSays) {
  const std::pair<json, const char*> rows[] = {
      {"1", "response"},           {"0", "plain"},
      {"00", "response"},          {"", "response"},
      {{{"fail", 5}}, "response"}, {{{"userNotFound", "?"}}, "response"}};
  Server& server = StartServer();
  for (const auto& [parameter, form] : rows) {
    server.SetParameter("general", "PasswordEncode", parameter);
    EXPECT_EQ(Login(), 1) << parameter << '\n' << m_log.Text();
    EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], form) << parameter;
    GL_LogOut(true);
    exit_vqclient_common();  // an unreadable parameter leaves what the last login learned
  }
}

TEST_F(LoginTest, KeepsTheReferenceUntilLogout) {
  Server& server = StartSession();
  const Server& other = StartServer({.name = "other"});
  server.ForgetCalls();
  ASSERT_EQ(Login("alice", "secret", "other"), 1);
  EXPECT_EQ(server.Operations().size(), 4U) << "the other server name changes nothing yet";
  EXPECT_TRUE(other.Operations().empty());
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_EQ(server.LastCall("CRB_Unregister")["arguments"]["userId"], userId);
  EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
  ASSERT_EQ(Login("alice", "secret", "other"), 1);
  EXPECT_EQ(other.Operations().back(), "CRB_Register");
  GL_LogOut(false);
  EXPECT_EQ(Login("alice", "wrong", "other"), 0);
  server.ForgetCalls();
  const Session session(Options());
  EXPECT_FALSE(server.Operations().empty()) << "a Session goes to its server after any failure";
}

TEST_F(LoginTest, BindsEachServerKindOnItsOwn) {
  Server& server = StartServer({.arguments = {"--kind", "GSR", "--kind", "CMS"}});
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_CLI, E_CMS), 1) << m_log.Text();
  EXPECT_EQ(server.LastCall("CRB_Register")["kind"], "CMS");
  // Some parameters are read from the central server, whatever the kind of the login is.
  std::string value;
  EXPECT_TRUE(GetSystemParameter("Language", value, "general", E_GSR));
  EXPECT_EQ(value, "english");
  EXPECT_EQ(server.Calls().back()["kind"], "GSR");
}

TEST_F(LoginTest, NamesTheSettingOfATooLargeReply) {
  m_directory.Write("root/config/vq.xml",
                    "<domain><scope name=\"CLI\">"
                    "<var name=\"-ORBMaxMessageSize\">20000</var></scope></domain>");
  json site = BaseSite();
  site["parameters"]["general"]["Long"] = std::string(30000, 'x');
  StartSession(site);
  std::string value = "kept";
  EXPECT_FALSE(GetSystemParameter("Long", value, "general", E_GSR));
  EXPECT_EQ(value, "kept");
  EXPECT_TRUE(m_log.Contains("larger than the setting -ORBMaxMessageSize allows")) << m_log.Text();
}

// The cause of a failed login is one line beside its result and its text.
TEST_F(LoginTest, ReportsTheCause) {
  json site = BaseSite();
  site["users"]["odd"] = {{"password", "secret"}, {"result", 7}, {"message", "Seven.\t"}};
  Server& server = StartServer({.site = site});
  InstallClient("8.0.00");
  const std::string at = "127.0.0.1:" + std::to_string(server.Port());
  const json none = json::array();
  const json late = {{{"operation", "CRB_Register"}, {"action", "delay"}, {"ms", 4000}}};
  const auto refuse = [](std::string&, SecretString&) { return "None.\t"; };
  const char* const noOrb = "CORBA initialization failed\nThis error can occur";
  using O = SessionOptions;
  const std::tuple<std::function<void(O&)>, json, int, const char*, std::string> rows[] = {
      {[](O& o) { o.user = "locked"; }, none, 49, "User account is locked.", ""},
      {[](O& o) { o.user = "odd"; }, none, 7, "Seven.", ""},
      {[](O& o) { o.password.Text() = "x"; }, none, 0, "This error may be caused", ""},
      {[](O& o) { o.user = ""; }, none, 0, "This error", "the user, the password or the server"},
      {[](O& o) { o.server = ""; }, none, 0, "This error", "the user, the password or the server"},
      {[](O& o) { o.server = "no"; }, none, 54, "This error",
       "the naming service has no UsersManager of a server 'no' of the kind GSR"},
      {[](O& o) { o.namingService = "corbaloc:iiop:127.0.0.1:1/NameService"; }, none, 55, noOrb,
       "connection refused at 127.0.0.1:1"},
      {[](O& o) { o.namingService = "corbaloc:iiop:none.invalid:1/NameService"; }, none, 55, noOrb,
       "the host none.invalid cannot be resolved: "},
      {[](O& o) {
         o.orbArguments = {"-ORBCallTimeout", "soon"};
       },
       none, 55, noOrb, "the value 'soon' of -ORBCallTimeout (command line) is not "},
      {[&](O& o) { o.credentials = refuse, o.password = {}; }, none, 0, "None.", ""},
      {[](O& o) { o.deadline = 500ms; }, late, 0, "This error", "no answer from " + at},
      {[](O&) {}, Raise("CRB_Register", "TRANSIENT"), 0, "This error", at + ": TRANSIENT"},
      {[](O&) {}, Raise("CRB_VerifyClientServerVersion", "NO_RESOURCES"), 0, "This error",
       at + ": NO_RESOURCES"},
      {[](O&) {}, Raise("CRB_GetMyAuthorizationsFromMemory", "NO_RESOURCES"), 0, "Failed to load",
       at + ": NO_RESOURCES"}};
  for (const auto& [change, faults, code, text, cause] : rows) {
    server.SetFaults(faults);
    SessionOptions options = Options();
    change(options);
    LoginError error;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Session::Open(options, error));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s) << cause;
    EXPECT_EQ(error.Code(), code) << error.what();
    EXPECT_TRUE(std::string(error.what()).starts_with(text)) << error.what();
    EXPECT_FALSE(std::string(error.what()).ends_with('\t')) << error.what();
    EXPECT_EQ(error.Cause().substr(0, cause.empty() ? 99 : cause.size()), cause) << m_log.Text();
  }
  EXPECT_EQ(Login("alice", "secret", "no"), 54);
  EXPECT_EQ(GL_GetFailureCause(), GL_GetFailureCause()) << "it can be asked for again";
  EXPECT_TRUE(GL_GetFailureCause().starts_with("the naming service has no")) << "as before";
  EXPECT_EQ(Login("locked"), 49);
  EXPECT_EQ(GL_GetFailureCause(), "") << "the message says it all";
  GL_LogOut(false);
  server.Kill();
  EXPECT_EQ(Login(), 54);
  EXPECT_NE(m_message.find("is not running on '127.0.0.1'.\t\n - The Server listening port of " +
                           std::to_string(server.Port()) + " is blocked by the firewall.\t\n"),
            std::string::npos)
      << m_message;
  GL_LogOut(true);
  m_naming->Kill();
  EXPECT_EQ(Login(), 55);
  EXPECT_TRUE(m_message.ends_with(
      "[Edit and save the file. Restart the application to apply the new settings].\t"));
  if (!ThisProduct().manyOrbs) {
    int count = 0;
    const CORBA::ORB_var other = CORBA::ORB_init(count, nullptr);
    EXPECT_EQ(Login(), 55);
    EXPECT_TRUE(GL_GetFailureCause().starts_with("omniORB is up already"));
    other->destroy();
  }
}

}  // namespace
}  // namespace vq::test
