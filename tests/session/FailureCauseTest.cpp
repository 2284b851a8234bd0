// The cause of a failed login, one line beside its result and its text.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/Session.h>

namespace vq::test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using FailureCauseTest = SessionFixture;

TEST_F(FailureCauseTest, StandsBesideResultAndText) {
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
       "the naming service has no UsersManager of a server 'no' of the kind GSR"},
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
    SessionOptions options{.server = "central",
                           .user = "alice",
                           .password = SecretString("secret"),
                           .namingService = m_naming->Reference(),
                           .orbArguments = m_orbArguments};
    change(options);
    LoginError error;
    const auto start = Clock::now();
    EXPECT_FALSE(Session::Open(options, error));
    EXPECT_LT(Clock::now() - start, 3s) << cause;
    EXPECT_EQ(error.Code(), code) << error.what();
    EXPECT_TRUE(std::string(error.what()).starts_with(text)) << error.what();
    EXPECT_FALSE(std::string(error.what()).ends_with('\t')) << error.what();
    EXPECT_EQ(error.Cause().substr(0, cause.empty() ? 99 : cause.size()), cause) << m_log.Text();
  }
  EXPECT_EQ(Login("alice", "secret", "no"), 54);
  EXPECT_TRUE(GL_GetFailureCause().starts_with("the naming service has no")) << "as before";
  EXPECT_EQ(Login("locked"), 49);
  EXPECT_EQ(GL_GetFailureCause(), "") << "the message says it all";
}

}  // namespace
}  // namespace vq::test
