// Finishing a login, keeping the session alive, registering again and ending it.

#include <tests/fixture/SessionFixture.h>

#include <support/orb/Corba.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaServerPackManager.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>

namespace vq::test {
namespace {

using Operations = std::vector<std::string>;

constexpr const char* kWentDown =
    "This error may be caused by any of the following:\n - Server 'central' has incorrect or old "
    "version.\n - Server 'central' went down during login process.\t";

class UpkeepTest : public SessionFixture {
 protected:
  int PostLogin() { return GL_PostLogin(m_message); }
  static ConnectionSettings& Settings() { return *ConnectionSettings::Get(); }
};

TEST_F(UpkeepTest, PostLoginAsksTheServerInThisOrder) {
  Server& server = StartSession();
  server.ForgetCalls();
  m_log.Clear();
  EXPECT_EQ(PostLogin(), 1);
  Operations asked;
  bool authorizationsLoaded = false;
  for (const nlohmann::json& call : server.Calls()) {
    const std::string operation = call["operation"];
    authorizationsLoaded |= asked.empty() && operation.find("Authorizations") != std::string::npos;
    if (operation == "CRB_ResetTimeout") asked.push_back(operation);
    if (operation != "CRB_GetSystemParameterValue") continue;
    const std::string section = call["arguments"]["section"];
    asked.push_back(section + "/" + call["arguments"]["name"].get<std::string>());
  }
  ASSERT_GE(asked.size(), 4U);
  asked.erase(asked.begin(), asked.end() - 4);  // what the authorizations ask comes first
  EXPECT_EQ(asked, (Operations{"gui/RegisterTimeout", "CRB_ResetTimeout", "general/Language",
                               "gui/OrbShutdownWait"}));
  EXPECT_TRUE(authorizationsLoaded);
  EXPECT_EQ(m_log.Count(4, "Changed User Id to: DD"), 1) << m_log.Text();
}

TEST_F(UpkeepTest, TheTimeOutIsThatOfTheFirstSourceThatHasOne) {
  Server& server = StartSession();
  const struct {
    const char* profile;
    nlohmann::json parameter;
    long timeOut;
  } kRows[] = {
      {"", nullptr, 600},  {"", "300", 300},     {"", "12 minutes", 12}, {"", "0", 600},
      {"", "-1", 600},     {"", "soon", 600},    {"120", "300", 120},    {"0", "300", 0},
      {"-5", nullptr, -5}, {"soon", "300", 300},
  };
  for (const auto& row : kRows) {
    const std::string setting = std::string("RegisterTimeOut = ") + row.profile + "\n";
    m_directory.Write(".config/vq/profile.ini",
                      "[Orb Parameters]\n" + (*row.profile != '\0' ? setting : ""));
    server.SetParameter("gui", "RegisterTimeout", row.parameter);
    server.ForgetCalls();
    m_log.Clear();
    EXPECT_EQ(GL_GetCRBRegisterTimeOut(), row.timeOut) << row.profile << row.parameter;
    EXPECT_EQ(PostLogin(), 1) << m_log.Text();
    const nlohmann::json reset = server.LastCall("CRB_ResetTimeout");
    EXPECT_EQ(reset.is_null(), row.timeOut <= 0) << row.profile << row.parameter;
    if (!reset.is_null()) {
      EXPECT_EQ(reset["arguments"]["timeOut"], row.timeOut);
      EXPECT_TRUE(m_log.Has(4, "Resetting timeout to: " + std::to_string(row.timeOut)));
    }
    EXPECT_FALSE(m_log.Has(2, "RegisterTimeOut failed."));
  }
}

TEST_F(UpkeepTest, ATimeOutThatTheServerRefusesDoesNotFailTheLogin) {
  Server& server = StartSession();
  server.SetFaults(Return("CRB_ResetTimeout", 5));
  EXPECT_EQ(PostLogin(), 1);
  EXPECT_TRUE(m_log.Has(1, "CRB_ResetTimeout failed resulted with code:5"));
  EXPECT_TRUE(m_log.Has(2, "RegisterTimeOut failed."));
  EXPECT_EQ(LoginHandler::GetGlobal()->RegisterTimeOut(0), 1) << "the result of the look-up";

  server.SetFaults(Raise("CRB_ResetTimeout", "NO_RESOURCES"));
  EXPECT_EQ(PostLogin(), 0);
  EXPECT_EQ(m_message, kWentDown);
  EXPECT_TRUE(m_log.Has(1, "CORBA::SystemException has cought: 7")) << m_log.Text();
}

TEST_F(UpkeepTest, TheServerSaysWhetherTheOrbIsWaitedFor) {
  Server& server = StartSession();
  const struct {
    nlohmann::json parameter;
    bool before, after;
  } kRows[] = {{"0", true, false}, {nullptr, false, false}, {"1", false, true},
               {"", false, true},  {"00", false, true},     {nullptr, true, true}};
  EXPECT_TRUE(Settings().GetWait4Shutdown());
  for (const auto& row : kRows) {
    server.SetParameter("gui", "OrbShutdownWait", row.parameter);
    Settings().SetWait4Shutdown(row.before);
    EXPECT_EQ(PostLogin(), 1);
    EXPECT_EQ(Settings().GetWait4Shutdown(), row.after) << row.parameter;
  }
  // Without waiting, too, the next login finds an ORB that works.
  Settings().SetWait4Shutdown(false);
  EXPECT_EQ(GL_LogOut(true), 1);
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

TEST_F(UpkeepTest, AKeptSessionLivesAndOneThatIsNotKeptTimesOut) {
  nlohmann::json site = BaseSite();
  site["userId"] = {{"length", 4096}};  // no length is too long
  Server& server = StartSession(site);
  for (int minute = 0; minute < 60; ++minute) {
    server.Advance(std::chrono::seconds(599));
    ASSERT_EQ(GL_ClientKeepAlive(), 1) << minute;
  }
  EXPECT_TRUE(m_log.Has(4, "send ClientKeepAlive for UserID: '" + Settings().GetUserID() + "'."));
  EXPECT_EQ(server.LastCall("CRB_ClientKeepAlive")["arguments"]["userId"], Settings().GetUserID());
  server.Advance(std::chrono::seconds(601));
  EXPECT_EQ(GL_ClientKeepAlive(), 0);

  // The next registration replaces the user ID and tells the time-out.
  const std::string former = Settings().GetUserID();
  server.ForgetCalls();
  EXPECT_EQ(GL_ReLogin(60), 1);
  EXPECT_NE(Settings().GetUserID(), former);
  EXPECT_EQ(server.LastCall("CRB_Register")["arguments"]["timeOut"], 60);
  EXPECT_EQ(server.LastCall("CRB_ResetTimeout")["arguments"]["timeOut"], 600);
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

TEST_F(UpkeepTest, ARegistrationThatFailsAgainIsANumberOnly) {
  EXPECT_EQ(GL_ReLogin(600), 0);
  EXPECT_TRUE(m_log.Has(1, "CORBA communication is down"));
  nlohmann::json site = BaseSite();
  site["users"]["odd"] = {{"password", "secret"}, {"result", 7}};
  Server& server = StartServer(site);
  const struct {
    const char* user;
    int result;
    bool timeOutTold;
  } kRows[] = {{"alice", 1, true},   {"soon", 50, true},    {"odd", 7, true},
               {"locked", 0, false}, {"expired", 0, false}, {"nobody", 0, false}};
  for (const auto& row : kRows) {
    Login(row.user);
    server.ForgetCalls();
    EXPECT_EQ(GL_ReLogin(600), row.result) << row.user;
    EXPECT_EQ(!server.LastCall("CRB_ResetTimeout").is_null(), row.timeOutTold) << row.user;
    EXPECT_EQ(m_log.Has(2, "RegisterTimeOut failed."), row.result == 7) << row.user;
    m_log.Clear();
    GL_LogOut(false);
  }
}

TEST_F(UpkeepTest, ALogoutTidiesUpWhateverTheServerDoes) {
  Server& server = StartSession();
  // The operation declares no exception of its own, so none of them arrives as itself.
  server.SetFaults(Raise("CRB_Unregister", "USER_NOT_AUTHORIZED"));
  EXPECT_THROW(LoginHandler::GetGlobal()->Logout(), CORBA::UNKNOWN);
  EXPECT_TRUE(LoginHandler::GetGlobal()->IsConnected());
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
  EXPECT_TRUE(m_log.Has(4, "User was connected - must unregister..."));
  EXPECT_EQ(m_log.Count(2, "CORBA::Exception caught: UNKNOWN"), 2) << m_log.Text();
  EXPECT_TRUE(m_log.Has(2, "Caught a CORBA System Exception - UNKNOWN"));
  EXPECT_TRUE(m_log.Has(5, "Release CRB object - UsersManager:0"));
  server.SetFaults(Return("CRB_Unregister", 0));  // nobody looks at the result
  ASSERT_EQ(Login(), 1);
  LoginHandler::GetGlobal()->Logout();
  EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(4, "User was not connected..."));

  ASSERT_EQ(Login(), 1);
  CorbaServerPackManager::Get()->Reset();
  server.Kill();
  EXPECT_THROW(GL_ClientKeepAlive(), NoServerEx);
  CorbaServerPackManager::Get()->Reset();  // the diagnosis finds what is still registered
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(1,
                        "Internal application error - we're supposed to be connected, but "
                        "don't have the servant reference set..."));
}

TEST_F(UpkeepTest, NoCertificateNeedsNoWarning) {
  Server& server = StartSession();
  const struct {
    nlohmann::json parameter;
    const char* line;
  } kRows[] = {{nullptr, "Days to warn on certificates: 60"},
               {"30", "Days to warn on certificates: 30"},
               {"soon", "Days to warn on certificates: 0"}};
  for (const auto& row : kRows) {
    server.SetParameter("general", "WarningSSLExpirationDays", row.parameter);
    m_message = "old";
    EXPECT_EQ(GL_CheckSSLCertificateExpiration(m_message), 1);
    EXPECT_EQ(m_message, "");
    EXPECT_TRUE(m_log.Has(4, row.line)) << row.line;
  }
}

TEST_F(UpkeepTest, ATroubleshooterHearsOfACallbackThatDoesNotArrive) {
  Server& server = StartSession();
  int heard = 0;
  const auto count = [](void* data) { ++*static_cast<int*>(data); };
  EXPECT_EQ(GL_SetCallbackTroubleshooter(count, &heard), nullptr);
  EXPECT_EQ(PostLogin(), 1);
  EXPECT_TRUE(m_log.Has(4,
                        "ENABLE_TEST_CALLBACK environment variable is not set : no test "
                        "callback performed"));
  m_environment.Set("ENABLE_TEST_CALLBACK", "");
  for (const bool refuse : {false, true}) {
    server.Patch({{"callback", {{"refuse", refuse}}}});
    m_log.Clear();
    EXPECT_EQ(PostLogin(), 1) << "whatever becomes of the test";
    EXPECT_EQ(heard, refuse ? 1 : 0) << m_log.Text();
    EXPECT_TRUE(m_log.Has(4,
                          "ENABLE_TEST_CALLBACK environment variable is set : starting test "
                          "callback"));
    EXPECT_TRUE(
        m_log.Has(4, "ENABLE_TEST_CALLBACK environment variable is set : test callback ended"));
  }
  server.SetFaults(Raise("CRB_GetMyAuthorizationsFromMemory", "USER_NOT_FOUND"));
  server.ForgetCalls();
  EXPECT_EQ(PostLogin(), 0);
  EXPECT_EQ(m_message, "Failed to load user authorizations");
  EXPECT_TRUE(server.LastCall("CRB_ResetTimeout").is_null());
  EXPECT_EQ(heard, 1) << "a login that is not finished tests nothing";
  EXPECT_EQ(GL_SetCallbackTroubleshooter(nullptr, nullptr), +count);
}

}  // namespace
}  // namespace vq::test
