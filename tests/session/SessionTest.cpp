// vq::Session: what it makes of a login, and what becomes of it when it is misused.

#include <thread>

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/Session.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct SessionTest : SessionFixture {
  SessionOptions Options(const std::string& user = "alice") {
    return {.server = "central",
            .user = user,
            .password = SecretString("secret"),
            .namingService = m_naming->Reference(),
            .orbArguments = m_orbArguments};
  }
  static std::size_t Sessions(Server& server) {
    return server.Control({{"command", "state"}})["sessions"].size();
  }
  template <class Condition>
  static bool Soon(Condition condition) {
    const auto end = Clock::now() + 20s;
    while (!condition() && Clock::now() < end) std::this_thread::sleep_for(10ms);
    return condition();
  }
};

TEST_F(SessionTest, MakesTheCallsOfTheOldFunctions) {
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

TEST_F(SessionTest, ReportsResultTextAndCause) {
  json site = BaseSite();
  site["users"]["odd"] = {{"password", "secret"}, {"result", 7}, {"message", "Seven.\t"}};
  Server& server = StartServer(site);
  InstallClient("8.0.00");
  const std::string at = "127.0.0.1:" + std::to_string(server.Port());
  const json none = json::array();
  const json late = {{{"operation", "CRB_Register"}, {"action", "delay"}, {"ms", 4000}}};
  const auto refuse = [](std::string&, SecretString&) { return "None.\t"; };
  using O = SessionOptions;
  const std::tuple<std::function<void(O&)>, json, int, const char*, std::string> rows[] = {
      {[](O& o) { o.user = "locked"; }, none, 49, "User account is locked.", ""},
      {[](O& o) { o.user = "expired"; }, none, 48, "Password has expired.", ""},
      {[](O& o) { o.user = "odd"; }, none, 7, "Seven.", ""},
      {[](O& o) { o.password.Text() = "x"; }, none, 0, "This error may be caused", ""},
      {[](O& o) { o.user = ""; }, none, 0, "This error", "the user, the password or the server"},
      {[](O& o) { o.server = "no"; }, none, 54, "This error",
       "the naming service knows no UsersManager of a server 'no' of the kind GSR"},
      {[](O& o) { o.namingService = "corbaloc:iiop:127.0.0.1:1/NameService"; }, none, 55, "CORBA",
       "connection refused at 127.0.0.1:1"},
      {[](O& o) { o.namingService = "corbaloc:iiop:none.invalid:1/NameService"; }, none, 55,
       "CORBA", "the host none.invalid cannot be resolved: "},
      {[](O& o) {
         o.orbArguments = {"-ORBCallTimeout", "soon"};
       },
       none, 55, "CORBA", "the value 'soon' of -ORBCallTimeout (command line) is not "},
      {[&](O& o) { o.credentials = refuse, o.password = {}; }, none, 0, "None.", ""},
      {[](O& o) { o.deadline = 500ms; }, late, 0, "This error", "no answer from " + at},
      {[](O&) {}, Raise("CRB_Register", "TRANSIENT"), 0, "This error", at + ": TRANSIENT"},
      {[](O&) {}, Raise("CRB_VerifyClientServerVersion", "NO_RESOURCES"), 0, "This error",
       at + ": NO_RESOURCES"},
      {[](O&) {}, Raise("CRB_GetMyAuthorizationsFromMemory", "NO_RESOURCES"), 0, "Failed to load",
       "NO_RESOURCES"}};
  for (const auto& [change, faults, code, text, cause] : rows) {
    server.SetFaults(faults);
    SessionOptions options = Options();
    change(options);
    LoginError error;
    const auto start = Clock::now();
    EXPECT_FALSE(Session::Open(options, error));
    EXPECT_LT(Clock::now() - start, 3s) << cause;
    EXPECT_EQ(error.Code(), code) << error.what();
    EXPECT_TRUE(std::string(error.what()).starts_with(text)) << error.what();
    EXPECT_EQ(std::string(error.what()).find('\t'), std::string::npos) << error.what();
    EXPECT_EQ(error.Cause().substr(0, cause.empty() ? 99 : cause.size()), cause) << m_log.Text();
    EXPECT_FALSE(ConnectionSettings::Get()->IsConnected());
  }
}

TEST_F(SessionTest, EndsWhateverTheClientDoes) {
  Server& server = StartServer();
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
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  static SessionTest* test = this;
  const auto exits = [] {
    std::atexit([] {  // after the session's own
      const bool gone = Sessions(*test->m_servers[0]) == 0;
      test->m_servers.clear();
      test->m_naming.reset();
      std::_Exit(gone ? 7 : 1);
    });
    const Session session(test->Options());
    std::exit(1);
  };
  EXPECT_EXIT(exits(), ::testing::ExitedWithCode(7), "");
}

TEST_F(SessionTest, KeepsItselfAliveAndIsUsedFromManyThreads) {
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
    ASSERT_TRUE(Soon([&] { return server->Calls().back()["operation"] == "CRB_ClientKeepAlive"; }));
    const auto start = Clock::now();
    EXPECT_FALSE(session.Authorizations()->IsAdministrator());
    EXPECT_LT(Clock::now() - start, 1s) << "a question waits for no call";
    server->SetFaults(json::array());
    server->Control({{"command", "end-sessions"}});
    EXPECT_TRUE(Soon([&] { return losses == 1; })) << m_log.Text();
    EXPECT_TRUE(session.IsLost());
    EXPECT_TRUE(IsLoggedIn(session.Renew()));
    EXPECT_FALSE(session.IsLost());
  }
  options.renew = true;
  const Session session(options);
  server->Control({{"command", "end-sessions"}});
  EXPECT_TRUE(Soon([&] { return Sessions(*server) == 1; })) << m_log.Text();
  EXPECT_EQ(losses, 1) << "made good at once";
  server->Kill();
  EXPECT_TRUE(Soon([&] { return losses == 2; })) << "reported once";
  server = &StartServer();
  EXPECT_TRUE(Soon([&] { return Sessions(*server) == 1; })) << m_log.Text();
  EXPECT_TRUE(Soon([&] { return !session.IsLost(); }));
  EXPECT_EQ(losses, 2);
}

}  // namespace
}  // namespace vq::test
