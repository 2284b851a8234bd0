// Finishing a login, keeping the session alive, registering again and ending it.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaServerPackManager.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace vq::test {
namespace {

struct UpkeepTest : SessionFixture {
  int PostLogin() { return GL_PostLogin(m_message); }
  static ConnectionSettings& Settings() { return *ConnectionSettings::Get(); }
};

TEST_F(UpkeepTest, TheTimeOutOfTheFirstSourceIsToldAndARefusedOneFailsNoLogin) {
  Server& server = StartSession();
  const std::tuple<std::string, nlohmann::json, long> rows[] = {
      {"", nullptr, 600},  {"", "300", 300},    {"", "12 minutes", 12}, {"", "0", 600},
      {"", "-1", 600},     {"", "soon", 600},   {"120", "300", 120},    {"0", "300", 0},
      {"-5", nullptr, -5}, {"soon", "300", 300}};
  for (const auto& [profile, parameter, timeOut] : rows) {
    const std::string setting = profile.empty() ? "" : "RegisterTimeOut = " + profile + "\n";
    m_directory.Write(".config/vq/profile.ini", "[Orb Parameters]\n" + setting);
    server.SetParameter("gui", "RegisterTimeout", parameter);
    server.ForgetCalls();
    m_log.Clear();
    EXPECT_EQ(GL_GetCRBRegisterTimeOut(), timeOut) << profile << parameter;
    EXPECT_EQ(PostLogin(), 1) << m_log.Text();
    const nlohmann::json reset = server.LastCall("CRB_ResetTimeout");
    EXPECT_EQ(reset.is_null(), timeOut <= 0) << profile << parameter;
    if (!reset.is_null()) {
      EXPECT_EQ(reset["arguments"]["timeOut"], timeOut);
      EXPECT_TRUE(m_log.Has(4, "Resetting timeout to: " + std::to_string(timeOut)));
    }
    EXPECT_FALSE(m_log.Has(2, "RegisterTimeOut failed."));
    EXPECT_EQ(m_log.Count(4, "Changed User Id to: DD"), 1) << m_log.Text();
  }
  server.SetFaults(Return("CRB_ResetTimeout", 5));
  EXPECT_EQ(PostLogin(), 1) << "a refused time-out does not fail the login";
  EXPECT_TRUE(m_log.Has(1, "CRB_ResetTimeout failed resulted with code:5"));
  EXPECT_TRUE(m_log.Has(2, "RegisterTimeOut failed."));
  EXPECT_EQ(LoginHandler::GetGlobal()->RegisterTimeOut(0), 1) << "the result of the look-up";
  server.SetFaults(Raise("CRB_ResetTimeout", "NO_RESOURCES"));
  EXPECT_EQ(PostLogin(), 0);
  EXPECT_TRUE(m_log.Has(1, "CORBA::SystemException has cought: 7")) << m_log.Text();
}

TEST_F(UpkeepTest, TheServerSaysWhetherTheOrbIsWaitedFor) {
  Server& server = StartSession();
  const std::tuple<nlohmann::json, bool, bool> rows[] = {
      {"0", true, false}, {nullptr, false, false}, {"1", false, true},
      {"", false, true},  {"00", false, true},     {nullptr, true, true}};
  EXPECT_TRUE(Settings().GetWait4Shutdown());
  for (const auto& [parameter, before, after] : rows) {
    server.SetParameter("gui", "OrbShutdownWait", parameter);
    Settings().SetWait4Shutdown(before);
    EXPECT_EQ(PostLogin(), 1);
    EXPECT_EQ(Settings().GetWait4Shutdown(), after) << parameter;
  }
  // Without waiting, too, the next login finds an ORB that works.
  Settings().SetWait4Shutdown(false);
  EXPECT_EQ(GL_LogOut(true), 1);
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

TEST_F(UpkeepTest, ARegistrationReplacesTheUserIdOfAnyLengthAndTellsTheTimeOut) {
  nlohmann::json site = BaseSite();
  site["userId"] = {{"length", 4096}};
  Server& server = StartSession(site);
  const std::string former = Settings().GetUserID();
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
  EXPECT_TRUE(m_log.Has(4, "send ClientKeepAlive for UserID: '" + former + "'."));
  EXPECT_EQ(server.LastCall("CRB_ClientKeepAlive")["arguments"]["userId"], former);
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
  const std::tuple<const char*, int, bool> rows[] = {{"alice", 1, true},    {"soon", 50, true},
                                                     {"odd", 7, true},      {"locked", 0, false},
                                                     {"expired", 0, false}, {"nobody", 0, false}};
  for (const auto& [user, result, timeOutTold] : rows) {
    Login(user);
    server.ForgetCalls();
    EXPECT_EQ(GL_ReLogin(600), result) << user;
    EXPECT_EQ(!server.LastCall("CRB_ResetTimeout").is_null(), timeOutTold) << user;
    EXPECT_EQ(m_log.Has(2, "RegisterTimeOut failed."), result == 7) << user;
    m_log.Clear();
    GL_LogOut(false);
  }
}

TEST_F(UpkeepTest, ALogoutTidiesUpWhateverTheServerDoes) {
  Server& server = StartSession();
  // The operation declares no exception of its own, so none of them arrives as itself.
  server.SetFaults(Raise("CRB_Unregister", "USER_NOT_AUTHORIZED"));
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(4, "User was connected - must unregister..."));
  EXPECT_TRUE(m_log.Has(2, "CORBA::Exception caught: UNKNOWN"));
  EXPECT_TRUE(m_log.Has(2, "Caught a CORBA System Exception - UNKNOWN"));
  EXPECT_TRUE(m_log.Has(5, "Release CRB object - UsersManager:0"));
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(4, "User was not connected..."));
  ASSERT_EQ(Login(), 1);
  CorbaServerPackManager::Get()->Reset();
  server.Kill();
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(1,
                        "Internal application error - we're supposed to be connected, but "
                        "don't have the servant reference set..."));
}

TEST_F(UpkeepTest, NoCertificateNeedsNoWarning) {
  Server& server = StartSession();
  const std::pair<nlohmann::json, const char*> rows[] = {
      {nullptr, "60"}, {"30", "30"}, {"soon", "0"}};
  for (const auto& [parameter, days] : rows) {
    server.SetParameter("general", "WarningSSLExpirationDays", parameter);
    m_message = "old";
    EXPECT_EQ(GL_CheckSSLCertificateExpiration(m_message), 1);
    EXPECT_EQ(m_message, "");
    EXPECT_TRUE(m_log.Has(4, std::string("Days to warn on certificates: ") + days)) << days;
  }
}

TEST_F(UpkeepTest, ATroubleshooterHearsOfACallbackThatDoesNotArrive) {
  Server& server = StartSession();
  int heard = 0;
  const auto count = [](void* data) { ++*static_cast<int*>(data); };
  const std::string variable = "ENABLE_TEST_CALLBACK environment variable is ";
  EXPECT_EQ(GL_SetCallbackTroubleshooter(count, &heard), nullptr);
  EXPECT_EQ(PostLogin(), 1);
  EXPECT_TRUE(m_log.Has(4, variable + "not set : no test callback performed"));
  m_environment.Set("ENABLE_TEST_CALLBACK", "");
  for (const bool refuse : {false, true}) {
    server.Patch({{"callback", {{"refuse", refuse}}}});
    m_log.Clear();
    EXPECT_EQ(PostLogin(), 1) << "whatever becomes of the test";
    EXPECT_EQ(heard, refuse ? 1 : 0) << m_log.Text();
    EXPECT_TRUE(m_log.Has(4, variable + "set : starting test callback"));
    EXPECT_TRUE(m_log.Has(4, variable + "set : test callback ended"));
  }
  server.SetFaults(Raise("CRB_GetMyAuthorizationsFromMemory", "USER_NOT_FOUND"));
  EXPECT_EQ(PostLogin(), 0);
  EXPECT_EQ(heard, 1) << "a login that is not finished tests nothing";
  EXPECT_EQ(GL_SetCallbackTroubleshooter(nullptr, nullptr), +count);
}

}  // namespace
}  // namespace vq::test
