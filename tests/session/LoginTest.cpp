// A login against a real server through a real naming service, and what becomes of it when the
// server refuses.

#include <tests/fixture/SessionFixture.h>

#include <csignal>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using Operations = std::vector<std::string>;

class LoginTest : public SessionFixture {};

TEST_F(LoginTest, RefusalsReachTheCallerAsCodeAndText) {
  nlohmann::json site = BaseSite();
  site["users"]["said"] = {{"password", "secret"}, {"locked", true}, {"message", "Ask Bob."}};
  site["users"]["odd"] = {{"password", "secret"}, {"result", 7}, {"message", "Seven."}};
  site["users"]["late"] = {{"password", "secret"}, {"expiry", "soon"}, {"message", "Two days."}};
  Server& server = StartServer(site);
  const std::string refused =
      "This error may be caused by any of the following:\n - User 'alice' is not defined "
      "properly.\n - The specified password is incorrect.\n\nFor more information, refer to the "
      "VELTRA-M/Quorum Manager documentation.";
  const struct {
    const char *user, *password;
    int code;
    std::string message;
    bool connected;
  } kRows[] = {
      {"alice", "wrong", 0, refused, false},
      {"locked", "secret", 49, "User account is locked.\t", false},
      {"said", "secret", 49, "Ask Bob.", false},
      {"expired", "secret", 48, "Password has expired.\t", false},
      {"odd", "secret", 7, "Seven.", false},
      {"soon", "secret", 50, "Your password is about to expire.\t", true},
      {"late", "secret", 50, "Two days.", true},
      {"alice", "secret", 1, "", true},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(Login(row.user, row.password), row.code) << row.user;
    EXPECT_EQ(m_message, row.message) << row.user;
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), row.connected) << row.user;
    GL_LogOut(false);
  }
  EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], "response");
}

TEST_F(LoginTest, AnEmptyValueIsRefusedHereAfterTheServerWasAskedForItsPasswords) {
  Server& server = StartServer();
  const struct {
    const char *user, *password, *server;
  } kRows[] = {{"", "secret", "central"}, {"alice", "", "central"}, {"alice", "secret", ""}};
  for (const auto& row : kRows) {
    server.ForgetCalls();
    EXPECT_EQ(Login(row.user, row.password, row.server), 0);
    EXPECT_NE(m_message.find("User '" + std::string(row.user) + "' is not defined properly."),
              std::string::npos)
        << m_message;
    EXPECT_EQ(ConnectionSettings::Get()->getUserName(), row.user);
    // Under an empty server name there is nobody to ask.
    const Operations asked =
        *row.server != '\0' ? Operations{"CRB_GetSystemParameterValue"} : Operations{};
    EXPECT_EQ(server.Operations(), asked);
    GL_LogOut(false);
  }
}

TEST_F(LoginTest, TheServerIsToldWhoLogsIn) {
  InstallClient("8.0.00", "P1,P2");
  Server& server = StartServer();
  const struct {
    CLIENT_ID client;
    const char *name, *version;
    nlohmann::json verified;  // null for a client outside the version gate
  } kRows[] = {{CLIENT_GUI, "vq_gui", "8.0.00::P1,P2", "8.0.00"},
               {CLIENT_QIMC, "vq_qimc", "0", nullptr},
               {CLIENT_UNKNOWN, "Unkown_Client", "0", nullptr}};
  for (const auto& row : kRows) {
    server.ForgetCalls();
    m_log.Clear();
    ASSERT_EQ(Login("alice", "secret", "central", row.client), 1) << m_log.Text();
    const nlohmann::json arguments = server.LastCall("CRB_Register")["arguments"];
    EXPECT_EQ(arguments["userName"], "alice");
    EXPECT_EQ(arguments["clientName"], row.name);
    EXPECT_EQ(arguments["clientVersion"], row.version);
    EXPECT_EQ(arguments["timeOut"], 600);
    const nlohmann::json verified = server.LastCall("CRB_VerifyClientServerVersion");
    EXPECT_EQ(verified.is_null() ? verified : verified["arguments"]["clientVersion"], row.verified);
    EXPECT_EQ(ConnectionSettings::Get()->GetDBUserName(), "vqdb");
    EXPECT_EQ(ConnectionSettings::Get()->GetUserID().size(), 32U);
    // A later login in the same process finds its references.
    const bool first = row.client == CLIENT_GUI;
    EXPECT_EQ(m_log.Has(4, "UsersManager: CRB servant is about to be bound."), first);
    EXPECT_EQ(m_log.Has(5, "UsersManager: CRB servant is already bound."), !first);
  }
}

TEST_F(LoginTest, TheServerDecidesHowPasswordsTravel) {
  const struct {
    nlohmann::json parameter;
    const char* form;
  } kRows[] = {
      {"1", "response"},           {"0", "plain"},
      {"00", "response"},          {"", "response"},
      {{{"fail", 5}}, "response"}, {{{"userNotFound", "?"}}, "response"},
  };
  nlohmann::json site = BaseSite();
  Server& server = StartServer(site);
  for (const auto& row : kRows) {
    server.SetParameter("general", "PasswordEncode", row.parameter);
    server.ForgetCalls();
    EXPECT_EQ(Login(), 1) << row.parameter << '\n' << m_log.Text();
    EXPECT_EQ(server.LastCall("CRB_Register")["passwordForm"], row.form) << row.parameter;
    GL_LogOut(true);
    exit_vqclient_common();  // an unreadable parameter leaves what the last login learned
  }
}

TEST_F(LoginTest, TheReferenceOfTheFirstServerStaysUntilLogout) {
  Server& server = StartServer();
  const Server& other = StartServer(BaseSite(), {"GSR"}, {}, "other");
  ASSERT_EQ(Login("alice", "secret", "central"), 1);
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

TEST_F(LoginTest, LogoutUnregistersAndMayEndTheOrb) {
  Server& server = StartSession();
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  server.ForgetCalls();
  EXPECT_EQ(GL_LogOut(true), 1);
  EXPECT_EQ(server.Operations(), (Operations{"CRB_Unregister"}));
  EXPECT_EQ(server.LastCall("CRB_Unregister")["arguments"]["userId"], userId);

  // A new ORB in the same process works like the first.
  ASSERT_EQ(Login(), 1) << m_log.Text();
  EXPECT_EQ(GL_LogOut(false), 1);
  server.ForgetCalls();
  EXPECT_EQ(GL_LogOut(false), 1) << "not connected";
  EXPECT_TRUE(server.Operations().empty());
}

TEST_F(LoginTest, WithoutANamingServiceTheOrbIsNotUp) {
  m_naming->Kill();
  EXPECT_EQ(Login(), 55);
  EXPECT_TRUE(m_message.starts_with("CORBA initialization failed\nThis error can occur"));
  EXPECT_TRUE(
      m_message.ends_with("[Edit and save the file. Restart the application to apply the "
                          "new settings].\t"));
  EXPECT_TRUE(m_log.Has(1, "The naming service does not answer.")) << m_log.Text();

  // It is there again, and so is the login.
  m_naming = std::make_unique<NamingService>(m_directory);
  StartServer();
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

TEST_F(LoginTest, AMalformedTimeOutIsNamedAndAnotherEndsAWaitForTheNamingService) {
  m_orbArguments = {"-ORBCallTimeout", "soon"};
  EXPECT_EQ(Login(), 55);
  EXPECT_NE(m_log.Text().find("'soon' of -ORBCallTimeout (command line)"), std::string::npos);
  m_orbArguments = {"-ORBConnectTimeout", "300", "-ORBCallTimeout", "300"};
  m_naming->Stop();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Login(), 55);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(LoginTest, AServerThatIsNotThereIsDiagnosed) {
  EXPECT_EQ(Login(), 54);
  EXPECT_EQ(m_message,
            "This error may be caused by any of the following:\n - Server 'central' is not "
            "running.\t\n - The Server listening port is blocked by the firewall.\t\n - The "
            "outgoing ports are blocked in this computer.\t");

  // A dead server is still registered, and its reference tells where it listened.
  Server& server = StartServer();
  const std::string port = std::to_string(server.Port());
  server.Kill();
  EXPECT_EQ(Login(), 54);
  EXPECT_EQ(m_message,
            "This error may be caused by any of the following:\n - Server 'central' is not running "
            "on '127.0.0.1'.\t\n - The Server listening port of " +
                port +
                " is blocked by the firewall.\t\n - The outgoing ports are blocked in this "
                "computer.\t");
}

TEST_F(LoginTest, AMissingChallengeGivesUpWithoutAText) {
  Server& server = StartServer();
  server.SetFaults(
      {{{"operation", "CRB_AquireChallenge"}, {"nth", 1}, {"action", "return"}, {"result", 0}}});
  EXPECT_EQ(Login(), 0);
  EXPECT_EQ(m_message, "untouched");
  EXPECT_TRUE(m_log.Has(1, "Couldn't get Challenge"));
  EXPECT_TRUE(server.LastCall("CRB_Register").is_null());
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
