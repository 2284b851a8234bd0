// vq::Session: its calls, its end, and its keep-alives.

#include <tests/fixture/Product.h>
#include <tests/fixture/SessionFixture.h>

#include <support/orb/CallDeadline.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct SessionTest : SessionFixture {
  using SessionFixture::m_naming;
  using SessionFixture::m_servers;
  using SessionFixture::Options;
  static std::size_t Sessions(Server& server) {
    return server.Control({{"command", "state"}})["sessions"].size();
  }
  using SessionFixture::Login;
  using SessionFixture::m_orbArguments;
};

SessionTest* test = nullptr;  // in the process of a death test

void ExitIfGone() {
  const bool gone = SessionTest::Sessions(*test->m_servers[0]) == 0;
  test->m_servers.clear();
  test->m_naming.reset();
  std::_Exit(gone ? 7 : 1);
}

TEST_F(SessionTest, CallsWhatTheFunctionsCall) {
  Server& server = StartServer();
  ASSERT_EQ(Login(), 1);
  ASSERT_EQ(GL_PostLogin(m_message), 1);
  GL_LogOut(true);
  const std::vector<std::string> before = server.Operations();
  server.ForgetCalls();
  const auto kept = Session(Options()).Authorizations();
  EXPECT_EQ(server.Operations(), before);
  EXPECT_EQ(ConnectionSettings::Get()->GetPassword(ENC_PLAIN), "");
  for (const char* user : {"soon", "bob"}) {
    const bool soon = *user == 's';
    Session session(Options(user));
    EXPECT_EQ(session.Result(), LoginResult(soon ? 50 : 1));
    EXPECT_EQ(session.Message(), soon ? "Your password is about to expire." : "");
    EXPECT_EQ(session.Parameter("Language"), "english");
    EXPECT_EQ(session.Parameter("Nothing"), std::nullopt);
    EXPECT_EQ(session.Authorizations()->IsAdministrator(), !soon);
    EXPECT_EQ(session.CertificateWarning(), std::nullopt);
    const std::string userId = ConnectionSettings::Get()->GetUserID();
    const auto users = session.Servant<QCSCorbaUsersManager>("UsersManager");
    EXPECT_EQ(users->CRB_ClientKeepAlive(userId.c_str()), 1);
    EXPECT_EQ(session.ChangePassword(SecretString("abc")), LoginResult::kPasswordRefusedByPolicy);
    EXPECT_TRUE(session.Message().starts_with("New password is too short."));
  }
  EXPECT_FALSE(kept->IsAdministrator()) << "a copy outlives its session";
}

TEST_F(SessionTest, AlwaysEnds) {
  Server& server = StartServer();
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  test = this;
  const auto exits = [] {
    std::atexit(ExitIfGone);  // runs after the session's own, which is registered later
    const Session session(test->Options());
    std::exit(1);
  };
  const auto logsOut = [] {
    test->m_orbArguments.insert(test->m_orbArguments.end(), {"-BiDirPolicy", "1"});
    std::atexit([] {
      if (GL_ClientKeepAlive() == 1) GL_LogOut(true);
      ExitIfGone();
    });
    test->Login();
    std::exit(1);
  };
  EXPECT_EXIT(exits(), ::testing::ExitedWithCode(7), "");
  if (ThisProduct().callsAtExit) {
    EXPECT_EXIT(logsOut(), ::testing::ExitedWithCode(7), "");
  }
  m_orbArguments = {"-ORBCallTimeout", "1000"};
  LoginError error;
  try {
    Session first(Options());
    EXPECT_FALSE(Session::Open(Options(), error)) << "a second one";
    EXPECT_STREQ(error.what(), "This process is logged in already.");
    const Session moved(std::move(first));
    EXPECT_THROW(first.KeepAlive(), std::logic_error);
    EXPECT_EQ(Sessions(server), 1U);
    throw std::runtime_error("in mid session");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(Sessions(server), 0U);
  }
  server.SetFaults({{{"operation", "CRB_Unregister"}, {"action", "delay"}, {"ms", 8000}}});
  const auto start = Clock::now();
  EXPECT_TRUE(Session::Open(Options(), error));
  EXPECT_LT(Clock::now() - start, 4s) << "a logout without an answer ends by the call's time-out";
}

// The end of omniORB waits for the call, and would wait for the new reference, too.
TEST_F(SessionTest, EndsWhileAnotherThreadGetsAReference) {
  if (!ThisProduct().endsBesideCalls) GTEST_SKIP() << "the end of TAO's ORB frees what a call uses";
  StartServer().SetFaults(
      {{{"operation", "CRB_ClientKeepAlive"}, {"action", "delay"}, {"ms", 400}}});
  std::optional<Session> session(std::in_place, Options());
  const auto users = session->Servant<QCSCorbaUsersManager>("UsersManager");
  int none = 0;
  const CORBA::ORB_var orb = CORBA::ORB_init(none, nullptr);  // the same one
  CORBA::Object_var kept;
  const auto unlessEnded = [](const std::function<void()>& action) {  // on a slow host
    try {
      action();
    } catch (const CORBA::BAD_INV_ORDER&) {
    }
  };
  const std::jthread caller(unlessEnded, [&] { users->CRB_ClientKeepAlive("nobody"); });
  const std::jthread other(unlessEnded, [&] {
    std::this_thread::sleep_for(250ms);
    kept = orb->string_to_object("corbaloc::127.0.0.1:1/UsersManager");
  });
  std::this_thread::sleep_for(100ms);
  const auto start = Clock::now();
  session.reset();
  EXPECT_LT(Clock::now() - start, 5s);
}

// The server closes the connection in place of each reply, so that a call opens the next one.
TEST_F(SessionTest, EndsWhileAnotherThreadConnects) {
  if (!ThisProduct().endsBesideCalls) GTEST_SKIP() << "the end of TAO's ORB frees what a call uses";
  StartServer().SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "drop"}}});
  m_orbArguments.insert(m_orbArguments.end(), {"-BiDirPolicy", "1"});
  for (int round = 0; round < 15; ++round) {
    std::optional<Session> session(std::in_place, Options());
    const auto users = session->Servant<QCSCorbaUsersManager>("UsersManager");
    const std::jthread caller([&users](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        EXPECT_THROW(users->CRB_ClientKeepAlive("nobody"), CORBA::SystemException);
      }
    });
    std::this_thread::sleep_for(50ms);
    const auto start = Clock::now();
    session.reset();
    EXPECT_LT(Clock::now() - start, 5s);
  }
}

TEST_F(SessionTest, KeepsItselfAlive) {
  Server* server = &StartServer();
  std::atomic<int> losses = 0;
  SessionOptions options = Options();
  options.timeOut = 1s, options.keepAlive = 50ms, options.onLost = [&] { ++losses; };
  {
    Session session(options);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&session] {
        for (int time = 0; time < 20; ++time) {
          EXPECT_EQ(session.Parameter("Language"), "english");
          EXPECT_FALSE(session.Authorizations()->IsAdministrator() || session.IsLost());
          EXPECT_TRUE(IsLoggedIn(time % 5 == 0 ? session.Renew() : session.KeepAlive()));
        }
      });
    }
    threads.clear();
    server->SetFaults({{{"operation", "CRB_ClientKeepAlive"}, {"action", "delay"}, {"ms", 3000}}});
    ASSERT_TRUE(
        WaitUntil([&] { return server->Calls().back()["operation"] == "CRB_ClientKeepAlive"; }));
    const auto start = Clock::now();
    EXPECT_FALSE(session.Authorizations()->IsAdministrator());
    EXPECT_LT(Clock::now() - start, 1s) << "a question waits for no call";
    EXPECT_TRUE(WaitUntil([&] {
      const CallDeadline deadline(100ms);  // which passes beside the thread's call
      return !session.Parameter("Language");
    }));
    EXPECT_EQ(GL_GetFailureCause(), "the time for the calls was over");
    server->SetFaults(json::array());
    server->Control({{"command", "end-sessions"}});
    EXPECT_TRUE(WaitUntil([&] { return losses == 1; })) << m_log.Text();
    EXPECT_TRUE(session.IsLost());
    EXPECT_TRUE(IsLoggedIn(session.Renew()));
    EXPECT_FALSE(session.IsLost());
  }
  {
    options.keepAlive = 0ms;
    Session session(options);
    server->Kill();
    server = &StartServer();
    EXPECT_EQ(session.Renew(), LoginResult::kNoServer) << "at the place of the killed server";
    EXPECT_TRUE(IsLoggedIn(session.Renew())) << m_log.Text();
    server->SetFaults({Return("CRB_AquireChallenge", 77)});
    EXPECT_FALSE(IsLoggedIn(session.Renew()));
    EXPECT_EQ(GL_GetFailureCause(), "the server gave no challenge for the password");
    EXPECT_EQ(session.Message(), "The login failed with code 0.");
    server->SetFaults(json::array());
  }
  options.renew = true, options.keepAlive = 50ms;
  const Session session(options);
  server->Control({{"command", "end-sessions"}});
  EXPECT_TRUE(WaitUntil([&] { return Sessions(*server) == 1; })) << m_log.Text();
  EXPECT_EQ(losses, 1) << "made good at once";
  server->Kill();
  EXPECT_TRUE(WaitUntil([&] { return losses == 2; })) << "reported once";
  server = &StartServer();
  EXPECT_TRUE(WaitUntil([&] { return Sessions(*server) == 1; })) << m_log.Text();
  EXPECT_TRUE(WaitUntil([&] { return !session.IsLost(); }));
  EXPECT_EQ(losses, 2);
}

}  // namespace
}  // namespace vq::test
