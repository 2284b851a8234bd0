// A login against a real server through a real naming service, and what becomes of it when the
// server refuses.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using Operations = std::vector<std::string>;
using LoginTest = SessionFixture;

TEST_F(LoginTest, RefusalsReachTheCallerAsCodeAndText) {
  nlohmann::json site = BaseSite();
  site["users"].merge_patch(nlohmann::json::parse(R"({
    "said": {"password": "secret", "locked": true, "message": "Ask Bob."},
    "odd": {"password": "secret", "result": 7, "message": "Seven."},
    "late": {"password": "secret", "expiry": "soon", "message": "Two days."}})"));
  Server& server = StartServer(site);
  const std::tuple<const char*, int, std::string, bool> rows[] = {
      {"locked", 49, "User account is locked.\t", false},
      {"said", 49, "Ask Bob.", false},
      {"expired", 48, "Password has expired.\t", false},
      {"odd", 7, "Seven.", false},
      {"soon", 50, "Your password is about to expire.\t", true},
      {"late", 50, "Two days.", true},
      {"alice", 1, "", true}};
  for (const auto& [user, code, message, connected] : rows) {
    EXPECT_EQ(Login(user), code) << user;
    EXPECT_EQ(m_message, message) << user;
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), connected) << user;
    GL_LogOut(false);
  }
  EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], "response");
}

TEST_F(LoginTest, AnEmptyValueIsRefusedHereAfterTheServerWasAskedForItsPasswords) {
  Server& server = StartServer();
  const Operations ask = {"CRB_GetSystemParameterValue"}, nobody;
  const std::tuple<std::string, const char*, const char*, Operations> rows[] = {
      {"", "secret", "central", ask},
      {"alice", "", "central", ask},
      {"alice", "secret", "", nobody}};
  for (const auto& [user, password, name, asked] : rows) {
    server.ForgetCalls();
    EXPECT_EQ(Login(user, password, name), 0);
    EXPECT_NE(m_message.find("User '" + user + "' is not defined properly."), std::string::npos);
    EXPECT_EQ(ConnectionSettings::Get()->getUserName(), user);
    EXPECT_EQ(server.Operations(), asked);
    GL_LogOut(false);
  }
}

TEST_F(LoginTest, TheServerIsToldWhoLogsIn) {
  InstallClient("8.0.00", "P1,P2");
  Server& server = StartServer();
  // The last is the version that is verified: none for a client outside the version gate.
  const std::tuple<CLIENT_ID, const char*, const char*, nlohmann::json> rows[] = {
      {CLIENT_GUI, "vq_gui", "8.0.00::P1,P2", "8.0.00"},
      {CLIENT_QIMC, "vq_qimc", "0", nullptr},
      {CLIENT_UNKNOWN, "Unkown_Client", "0", nullptr}};
  for (const auto& [client, name, version, verifiedVersion] : rows) {
    server.ForgetCalls();
    m_log.Clear();
    ASSERT_EQ(Login("alice", "secret", "central", client), 1) << m_log.Text();
    const nlohmann::json arguments = server.LastCall("CRB_Register")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["clientName"], name);
    EXPECT_EQ(arguments["clientVersion"], version);
    EXPECT_EQ(arguments["timeOut"], 600);
    const nlohmann::json verified = server.LastCall("CRB_VerifyClientServerVersion");
    EXPECT_EQ(verified.is_null() ? verified : verified["arguments"]["clientVersion"],
              verifiedVersion);
    EXPECT_EQ(ConnectionSettings::Get()->GetDBUserName(), "vqdb");
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID().size(), 32U);
    // A later login in the same process finds its references.
    const bool first = client == CLIENT_GUI;
    EXPECT_EQ(m_log.Has(4, "UsersManager: CRB servant is about to be bound."), first);
    EXPECT_EQ(m_log.Has(5, "UsersManager: CRB servant is already bound."), !first);
  }
}

TEST_F(LoginTest, TheServerDecidesHowPasswordsTravel) {
  const std::pair<nlohmann::json, const char*> rows[] = {
      {"1", "response"},           {"0", "plain"},
      {"00", "response"},          {"", "response"},
      {{{"fail", 5}}, "response"}, {{{"userNotFound", "?"}}, "response"}};
  Server& server = StartServer();
  for (const auto& [parameter, form] : rows) {
    server.SetParameter("general", "PasswordEncode", parameter);
    server.ForgetCalls();
    EXPECT_EQ(Login(), 1) << parameter << '\n' << m_log.Text();
    EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], form) << parameter;
    GL_LogOut(true);
    exit_vqclient_common();  // an unreadable parameter leaves what the last login learned
  }
}

TEST_F(LoginTest, TheReferenceOfTheFirstServerStaysUntilLogout) {
  Server& server = StartSession();
  const Server& other = StartServer(BaseSite(), {"GSR"}, {}, "other");
  server.ForgetCalls();
  ASSERT_EQ(Login("alice", "secret", "other"), 1);
  EXPECT_EQ(server.Operations().size(), 4U) << "the other server name changes nothing yet";
  EXPECT_TRUE(other.Operations().empty());
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
  ASSERT_EQ(Login("alice", "secret", "other"), 1);
  EXPECT_EQ(other.Operations().back(), "CRB_Register");
}

TEST_F(LoginTest, EachServerKindIsBoundOnItsOwn) {
  Server& server = StartServer(BaseSite(), {"GSR", "CMS"});
  ASSERT_EQ(Login("alice", "secret", "central", CLIENT_CLI, E_CMS), 1) << m_log.Text();
  EXPECT_EQ(server.LastCall("CRB_Register")["kind"], "CMS");
  // Some parameters are asked of the central server whatever kind one is logged in to.
  std::string value;
  EXPECT_TRUE(GetSystemParameter("Language", value, "general", E_GSR));
  EXPECT_EQ(value, "english");
  EXPECT_EQ(server.Calls().back()["kind"], "GSR");
}

TEST_F(LoginTest, LogoutUnregistersOnce) {
  Server& server = StartSession();
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  server.ForgetCalls();
  for (int time = 0; time < 2; ++time) EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_EQ(server.Operations(), (Operations{"CRB_Unregister"}));
  EXPECT_EQ(server.LastCall("CRB_Unregister")["arguments"]["userId"], userId);
}

TEST_F(LoginTest, WithoutANamingServiceTheOrbIsNotUp) {
  m_naming->Kill();
  EXPECT_EQ(Login(), 55);
  EXPECT_TRUE(m_message.starts_with("CORBA initialization failed\nThis error can occur"));
  EXPECT_TRUE(m_message.ends_with(
      "[Edit and save the file. Restart the application to apply the new settings].\t"));
  EXPECT_TRUE(m_log.Has(1, "The naming service does not answer.")) << m_log.Text();
  m_naming = std::make_unique<NamingService>(m_directory);  // It is there again, as the login is.
  StartSession();
}

TEST_F(LoginTest, ATimeOutEndsAWaitForTheNamingService) {
  m_orbArguments = {"-ORBConnectTimeout", "300", "-ORBCallTimeout", "300"};
  m_naming->Stop();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Login(), 55);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(LoginTest, AReplyBeyondTheSizeLimitNamesTheSetting) {
  m_orbArguments = {"-ORBMaxMessageSize", "20000"};
  nlohmann::json site = BaseSite();
  site["parameters"]["general"]["Long"] = std::string(30000, 'x');
  StartSession(site);
  std::string value = "kept";
  EXPECT_FALSE(GetSystemParameter("Long", value, "general", E_GSR));
  EXPECT_EQ(value, "kept");
  EXPECT_NE(m_log.Text().find("larger than the setting -ORBMaxMessageSize allows"),
            std::string::npos)
      << m_log.Text();
}

}  // namespace
}  // namespace vq::test
