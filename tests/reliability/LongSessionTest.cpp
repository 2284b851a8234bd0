// What a session sends over the wire, and one that lasts for a day.

#include <tests/reliability/ProxiedFixture.h>

#include <support/orb/CallDeadline.h>
#include <tests/fixture/Product.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using Operations = std::vector<std::string>;

using LongSessionTest = ProxiedFixture;

// That the first one probes either object as well, the matrix of faults pins.
TEST_F(LongSessionTest, LoginMakesTheseCallsAlone) {
  ASSERT_EQ(Login(), 1) << m_log.Text();
  // The naming service is reached for once when the ORB starts, and asked once for each of the two.
  Operations names{kProbe, "resolve", "resolve"};
  if (ThisProduct().forwardsNaming) names.insert(names.begin(), kProbe);
  EXPECT_EQ(m_namingProxy->TakeOperations(), names);
  m_proxy->TakeOperations();
  ASSERT_EQ(Login(), 1);
  EXPECT_EQ(m_proxy->TakeOperations(),
            (Operations{kParameter, kParameter, kVersion, kChallenge, kRegister}));
  EXPECT_EQ(m_namingProxy->TakeOperations(), Operations());
}

TEST_F(LongSessionTest, ReportsEachLossOnce) {
  ASSERT_EQ(Login(), 1) << m_log.Text();
  for (int hour = 0; hour < 24; ++hour) {
    const bool restarted = hour % 8 == 7;
    if (restarted) Restart();
    for (int minute = 0; minute < 60; minute += 5) {
      m_server->Advance(std::chrono::minutes(5));
      m_log.Clear();
      if (minute == 30) m_proxy->Refuse(false);
      if (restarted && minute == 0) {
        EXPECT_THROW(GL_ClientKeepAlive(), ServerTypeEx);
        EXPECT_EQ(m_log.Count(1, ""), 1) << m_log.Text();
        GL_LogOut(false);
        EXPECT_EQ(Login(), 1) << m_log.Text();
      }
      m_log.Clear();
      EXPECT_EQ(GL_ClientKeepAlive(), 1) << hour << ':' << minute << '\n' << m_log.Text();
      EXPECT_EQ(m_log.Count(1, "") + m_log.Count(2, ""), 0) << m_log.Text();
    }
  }
  // A session that was forgotten is no failure of the server's, and registering again is enough.
  m_server->Advance(std::chrono::minutes(11));
  EXPECT_EQ(GL_ClientKeepAlive(), 0);
  EXPECT_EQ(GL_ReLogin(600), 1);
  EXPECT_EQ(GL_ClientKeepAlive(), 1);
}

TEST_F(LongSessionTest, LoginEndsByItsDeadline) {
  ASSERT_EQ(Login(), 1) << m_log.Text();
  GL_LogOut(false);
  m_proxy->TakeOperations();
  m_proxy->ChangeNext([](const std::string&) { return FaultProxy::Changed{}; });  // no reply
  const auto start = std::chrono::steady_clock::now();
  {
    const vq::CallDeadline deadline(std::chrono::milliseconds(300));
    const vq::CallDeadline later(std::chrono::minutes(1));
    EXPECT_EQ(Login(), 54);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(m_proxy->TakeOperations().size(), 1) << "nothing is sent after the deadline";
  }
  EXPECT_EQ(Login(), 1) << m_log.Text();
}

// Whatever code set the server's ORB has, and whether they are of any.
TEST_F(LongSessionTest, TakesTextsAsTheirBytes) {
  std::vector<std::vector<std::string>> servers{{}};
  if (vq::orb::ProductName() == "omniORB") servers.push_back({"-ORBnativeCharCodeSet", "UTF-8"});
  for (const auto& arguments : servers) {
    Restart(arguments);
    ASSERT_EQ(Login(), 1) << m_log.Text();
    for (const std::string bytes : {"\xC5\x82\xC3\xA9 ok", "\xE9\xFF\x80\xC3 ok"}) {
      m_proxy->ChangeNext([&](std::string reply) -> FaultProxy::Changed {
        if (const auto at = reply.find("english"); at != reply.npos) reply.replace(at, 7, bytes);
        return {reply};
      });
      std::string value;
      EXPECT_TRUE(GetSystemParameter("Language", value, "general", E_GSR));
      EXPECT_EQ(value, bytes);
    }
    GL_LogOut(true);
  }
}

}  // namespace
}  // namespace vq::test
