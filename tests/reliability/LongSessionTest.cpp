// What a session sends over the wire, and one that lasts for a day.

#include <tests/reliability/ProxiedFixture.h>

#include <array>
#include <span>

#include <support/orb/CallDeadline.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
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
  for (int hour = 0, minute = 0; hour < 24; minute += 5, hour += minute / 60, minute %= 60) {
    const bool restarted = hour % 8 == 7 && minute == 0;
    if (restarted) Restart();
    m_server->Advance(std::chrono::minutes(5));
    m_log.Clear();
    if (minute == 30) m_proxy->Refuse(false);
    if (restarted) {
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

// It tries to connect, here to a listener whose queue is full.
TEST_F(LongSessionTest, ExplainsAFailureWithinTheDeadline) {
  ASSERT_EQ(Login(), 1) << m_log.Text();
  m_namingProxy.reset();
  const sockaddr_in address = Loopback(m_naming->Port(), 1);
  const auto* const place = reinterpret_cast<const sockaddr*>(&address);
  std::array<int, 4> sockets{};
  for (int& one : sockets) one = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  const int on = 1;
  ::setsockopt(sockets[0], SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  ASSERT_EQ(::bind(sockets[0], place, sizeof address) + ::listen(sockets[0], 0), 0);
  for (int& one : std::span(sockets).subspan(1)) ::connect(one, place, sizeof address);
  const auto start = std::chrono::steady_clock::now();
  const vq::CallDeadline deadline(std::chrono::milliseconds(100));
  const vq::CallDeadline later(vq::CallDeadline::Clock::duration::max());
  vq::orb::NoteFailedCall(CORBA::TRANSIENT(), ORBCommon<1>::Get()->GetNamingRoot());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(700));
  EXPECT_THAT(GL_GetFailureCause(), ::testing::HasSubstr("TRANSIENT"));
  for (const int one : sockets) ::close(one);
}

// As a firewall does that forgets its connections, and may reset them.
TEST_F(LongSessionTest, OneCallPaysForAllLostConnections) {
  if (vq::orb::ProductName() == "TAO") GTEST_SKIP() << "it uses each one that looks intact";
  SetTimeOut(std::chrono::seconds(2));
  ASSERT_EQ(Login(), 1) << m_log.Text();
  m_server->SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "delay"}, {"ms", 300}}});
  for (const bool ends : {false, true}) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back([] { EXPECT_EQ(GL_ClientKeepAlive(), 1); });
    threads.clear();
    EXPECT_GT(m_proxy->Mute(ends), 1U);
    EXPECT_THROW(GL_ClientKeepAlive(), ServerTypeEx);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(GL_ClientKeepAlive(), 1) << m_log.Text();
  }
}

TEST_F(LongSessionTest, ASessionIsRenewedAtOnceAfterARestart) {
  SessionOptions options = Options();
  options.keepAlive = std::chrono::milliseconds(50), options.renew = true;
  Session session(options);
  Restart();
  EXPECT_TRUE(WaitUntil([&] { return session.KeepAlive() == LoginResult::kSuccess; }));
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
