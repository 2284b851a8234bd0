// Completing a login, keeping the session alive, registering again and logging out.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>

namespace vq::test {
namespace {

struct UpkeepTest : SessionFixture {
  int PostLogin() { return GL_PostLogin(m_message); }
  static ConnectionSettings& Settings() { return *ConnectionSettings::Get(); }
};

TEST_F(UpkeepTest, SendsTheFirstConfiguredTimeOut) {
  Server& server = StartSession();
  const std::tuple<std::string, nlohmann::json, long> rows[] = {
      {"", nullptr, 600}, {"", "300", 300},    {"", "12 minutes", 12},
      {"", "0", 600},     {"", "soon", 600},   {"120", "300", 120},
      {"0", "300", 0},    {"-5", nullptr, -5}, {"soon", "300", 300}};
  for (const auto& [profile, parameter, timeOut] : rows) {
    const std::string setting = profile.empty() ? "" : "RegisterTimeOut = " + profile + "\n";
    m_directory.Write(".config/vq/profile.ini", "[Orb Parameters]\n" + setting);
    server.SetParameter("gui", "RegisterTimeout", parameter);
    server.ForgetCalls();
    EXPECT_EQ(GL_GetCRBRegisterTimeOut(), timeOut) << profile << parameter;
    EXPECT_EQ(PostLogin(), 1) << m_log.Text();
    const nlohmann::json reset = server.LastCall("CRB_ResetTimeout");
    EXPECT_EQ(reset.is_null() ? 0 : reset["arguments"]["timeOut"].get<long>(),
              std::max(0L, timeOut))
        << profile << parameter;
  }
  server.SetFaults(Return("CRB_ResetTimeout", 5));
  EXPECT_EQ(PostLogin(), 1) << "a refused time-out does not fail the login";
  EXPECT_EQ(LoginHandler::GetGlobal()->RegisterTimeOut(0), 1) << "the result of the look-up";
}

TEST_F(UpkeepTest, WaitsForTheOrbIfTheParameterIsSet) {
  Server& server = StartSession();
  const std::tuple<nlohmann::json, bool, bool> rows[] = {
      {"0", true, false}, {nullptr, false, false}, {"00", false, true}, {nullptr, true, true}};
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

TEST_F(UpkeepTest, RegistersAgainAndLogsOut) {
  nlohmann::json site = BaseSite();
  site["userId"] = {{"length", 4096}};
  Server& server = StartSession(site);
  const std::string former = Settings().GetUserID();
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
  EXPECT_EQ(server.LastCall("CRB_ClientKeepAlive")["arguments"]["userId"], former);
  EXPECT_EQ(GL_ReLogin(60), 1);
  EXPECT_NE(Settings().GetUserID(), former);
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
  EXPECT_EQ(GL_CheckSSLCertificateExpiration(m_message), 1);
  EXPECT_EQ(m_message, "") << "there is none";
  CorbaServerPackManager::Get()->Reset();
  server.Kill();
  EXPECT_EQ(GL_LogOut(false), 1);
  EXPECT_TRUE(m_log.Has(1, "Internal application error - we're supposed to be connected, but"));
  EXPECT_FALSE(LoginHandler::GetGlobal()->IsConnected());
}

TEST_F(UpkeepTest, CallsTheTroubleshooterAfterALostCallback) {
  Server& server = StartSession();
  int heard = 0;
  const auto count = [](void* data) { ++*static_cast<int*>(data); };
  EXPECT_EQ(GL_SetCallbackTroubleshooter(count, &heard), nullptr);
  EXPECT_EQ(PostLogin(), 1);
  m_environment.Set("ENABLE_TEST_CALLBACK", "");
  for (const bool refuse : {false, true}) {
    server.Patch({{"callback", {{"refuse", refuse}}}});
    EXPECT_EQ(PostLogin(), 1) << "whatever becomes of the test";
    EXPECT_EQ(heard, refuse ? 1 : 0) << m_log.Text();
  }
  server.SetFaults(Raise("CRB_GetMyAuthorizationsFromMemory", "USER_NOT_FOUND"));
  EXPECT_EQ(PostLogin(), 0);
  EXPECT_EQ(heard, 1) << "a login that is not finished tests nothing";
  EXPECT_EQ(GL_SetCallbackTroubleshooter(nullptr, nullptr), +count);
}

}  // namespace
}  // namespace vq::test
