// What the server knows and decides, without an ORB: the site reader, and challenges, locks,
// sessions and faults by a clock that the test moves; and the control channel.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <simulator/Control.h>
#include <simulator/Site.h>
#include <simulator/World.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <nlohmann/json.hpp>

namespace vq::sim {
namespace {

using std::chrono::hours;
using std::chrono::seconds;
using ::testing::StartsWith;
using Verdict = Accounts::Verdict;

std::string ErrorOf(const std::string& text) {
  try {
    ReadSite(ParseSite(text, "s"), "s");
    return "none";
  } catch (const SiteError& error) {
    return error.what();
  }
}

TEST(Site, RefusesWhatItDoesNotMeanAndTellsThePlace) {
  const char* const cases[][2] = {
      // the error begins so
      {"", "s:1:1: not JSON"},
      {"{\n  \"server\": oops}", "s:2:13: not JSON"},
      {"[]", "s: /: must be an object"},
      {R"({"servers": {}})", "s: /servers: unknown key"},
      {R"({"server": {"version": 8}})", "s: /server/version: must be a string"},
      {"{\"server\": {\"version\": \"a\\u0000b\"}}", "s: /server/version: must not hold a zero"},
      {R"({"lockout": {"tries": -1}})", "s: /lockout/tries: must be a whole number from 0 to 1000"},
      {R"({"lockout": {"tries": 1.5}})", "s: /lockout/tries: must be a whole number"},
      {R"({"lockout": {"tries": 18446744073709551615}})", "s: /lockout/tries: must be a whole"},
      {R"({"userId": {"length": 0}})", "s: /userId/length: must be a whole number from 1"},
      {R"({"parameters": {"gui": {"X": 1}}})", "s: /parameters/gui/X: must be a string, "},
      {R"({"parameters": {"gui": {"X": {"fail": 1, "userNotFound": ""}}}})",
       "s: /parameters/gui/X"},
      {R"({"users": {"ann": {"expiry": "soo"}}})",
       "s: /users/ann/expiry: 'soo' is not one of never, soon, expired"},
      {R"({"users": {"ann": {"groups": ["x"]}}})", "s: /users/ann/groups: no group 'x'"},
      {R"({"users": {"ann": {"privileges": {"X": "FULL_ACCESS"}}}})",
       "s: /users/ann/privileges: 'X' is not one of COLLECTIONDEF_PRIV_TYPE"},
      {R"({"users": {"ann": {"privileges": {"CLI_PRIV_TYPE": "ALL"}}}})",
       "s: /users/ann/privileges/CLI_PRIV_TYPE: 'ALL' is not one of DEFAULT_ACCESS"},
      {R"({"users": {"ann": {"grants": {"tables": [{"level": "FULL_ACCESS"}]}}}})",
       "s: /users/ann/grants/tables/0: needs criteria and level"},
      {R"({"users": {"ann": {"grants": {"tables": [{"actions": []}]}}}})",
       "s: /users/ann/grants/tables/0/actions: unknown key"},
      {R"({"faults": [{"action": "drop"}]})", "s: /faults/0: needs an operation"},
      {R"({"faults": [{"operation": "CRB_Regster"}]})",
       "s: /faults/0/operation: 'CRB_Regster' is no operation"},
      {R"({"faults": [{"operation": "*"}]})", "s: /faults/0: needs an action"},
      {R"({"faults": [{"operation": "*", "action": "raise"}]})",
       "s: /faults/0: needs an exception"},
      {R"({"faults": [{"operation": "*", "action": "raise", "exception": "X"}]})",
       "s: /faults/0/exception: 'X' is not one of UNKNOWN"},
      {R"({"faults": [{"operation": "*", "action": "delay", "nth": "never"}]})",
       "s: /faults/0/nth: must be a whole number"},
  };
  for (const auto& [text, error] : cases) EXPECT_THAT(ErrorOf(text), StartsWith(error)) << text;
  EXPECT_THROW(ParseSiteFile("/"), SiteError);
  EXPECT_THROW(ParseSiteFile("/no/such"), SiteError);
  EXPECT_THAT(ErrorOf(std::string(100'000, '[') + std::string(100'000, ']')),
              StartsWith("s: nested too deeply"));
}

TEST(Site, ThePrivilegeOfAUserStandsBeforeTheGroups) {
  const Site site =
      ReadSite(ParseSite(R"({"groups": {"a": {"privileges": {"CLI_PRIV_TYPE": "BROWSE_ACCESS"}},
                               "b": {"privileges": {"CLI_PRIV_TYPE": "FULL_ACCESS"}}},
                    "users": {"own": {"groups": ["a", "b"],
                                      "privileges": {"CLI_PRIV_TYPE": "ACCESS_NONE"}},
                              "by group": {"groups": ["a", "b"]}, "bare": {}}})",
                         "s"),
               "s");
  constexpr int kCli = 6;
  EXPECT_EQ(site.PrivilegeLevel(*site.FindUser("own"), kCli), 1);
  EXPECT_EQ(site.PrivilegeLevel(*site.FindUser("by group"), kCli), 4);
  EXPECT_EQ(site.PrivilegeLevel(*site.FindUser("bare"), kCli), 0);
  EXPECT_EQ(site.FindUser("nobody"), nullptr);
}

TEST(Site, PasswordsAreEncodedUnlessTheParameterIsZero) {
  const auto encodes = [](const std::string& parameter) {
    const std::string text = R"({"parameters": {"general": {)" + parameter + "}}}";
    return ReadSite(ParseSite(text, "s"), "s").EncodesPasswords();
  };
  EXPECT_FALSE(encodes(R"("PasswordEncode": "0")"));
  EXPECT_TRUE(encodes(R"("PasswordEncode": "00")"));
  EXPECT_TRUE(encodes(R"("PasswordEncode": "")"));
  EXPECT_TRUE(encodes(R"("PasswordEncode": {"fail": 1})"));
  EXPECT_TRUE(encodes(""));
}

TEST(Control, CommandsTakeEffectOrSayWhyNot) {
  World world;
  Control control(world, VQ_SAMPLE_SITE);
  EXPECT_EQ(control.Execute(R"({"command":"reload"})"), R"({"ok":true})");
  ASSERT_NE(world.GetSite()->FindUser("ann"), nullptr);

  // A patch that cannot be used changes nothing.
  EXPECT_EQ(control.Execute(R"({"command":"patch","site":{"server":{"version":"9"},"x":1}})"),
            R"({"ok":false,"error":"patch: /x: unknown key"})");
  EXPECT_EQ(world.GetSite()->serverVersion, "8.0.05");
  EXPECT_EQ(control.Execute(R"({"command":"patch","site":{"users":{"ann":null}}})"),
            R"({"ok":true})");
  EXPECT_EQ(world.GetSite()->FindUser("ann"), nullptr);

  // The same faults set twice count calls anew.
  const std::string faults =
      R"({"command":"faults","faults":[{"operation":"CRB_PinItemInCategory","nth":2,)"
      R"("action":"refuse"}]})";
  const auto hits = [&] { return world.faults.Hit("CRB_PinItemInCategory", "GSR").size(); };
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(control.Execute(faults), R"({"ok":true})");
    EXPECT_EQ(hits(), 0U);
    EXPECT_EQ(hits(), 1U);
    EXPECT_EQ(hits(), 0U);
  }
  EXPECT_EQ(control.Execute(faults), R"({"ok":true})");
  for (const char* line : {"", "[]", "{}", R"({"command":7})", R"({"command":"x"})",
                           R"({"command":"advance","ms":-1})", R"({"command":"patch","site":[]})",
                           R"({"command":"faults","faults":"all"})"}) {
    EXPECT_THAT(control.Execute(line), StartsWith(R"({"ok":false,"error":")")) << line;
  }
  hits();
  EXPECT_EQ(hits(), 1U);  // Faults that cannot be used leave those that are there.
}

// A client that asks and never takes its answers does not keep the channel from ending.
TEST(Control, StopsWhileAClientDoesNotRead) {
  World world;
  const vq::test::TemporaryDirectory directory;
  sockaddr_un address{AF_UNIX, {}};
  (directory / "control").copy(address.sun_path, sizeof(address.sun_path) - 1);
  Control control(world, VQ_SAMPLE_SITE);
  control.Start(address.sun_path);
  const int client = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  timeval patience{0, 200'000};
  setsockopt(client, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
  const std::string line = "{\"command\":\"ping\"}\n";
  char answer = 0;
  EXPECT_GT(send(client, line.data(), line.size(), MSG_NOSIGNAL), 0);
  EXPECT_EQ(recv(client, &answer, 1, 0), 1);
  while (send(client, line.data(), line.size(), MSG_NOSIGNAL) > 0) {
  }
  control.Stop();
  close(client);
}

class Logic : public ::testing::Test {
 protected:
  Logic() {
    world.Load(nlohmann::json::parse(R"({"lockout": {"tries": 2},
        "challenge": {"lifetimeSeconds": 10, "pending": 2},
        "users": {"ann": {"password": "secret"}, "bob": {"password": "other", "expiry": "expired"},
                  "shut": {"password": "secret", "locked": true}}})"),
               "test");
  }
  Challenge Acquire() { return world.challenges.Acquire(2, seconds(10)); }
  Verdict LogIn(const std::string& user, const std::string& shown) {
    return world.accounts.LogIn(*world.GetSite(), user, shown);
  }
  World world;
};

// Values that were computed with other tools:
//   printf secret | openssl dgst -sha256 -binary | base64
//   HMAC over 00..01 "a" 00..02 "bc" with the key "K7gNU3sd"
TEST(Credentials, AreWhatTheirDescriptionSays) {
  EXPECT_EQ(Encode("secret"), "K7gNU3sd");
  EXPECT_EQ(Encode(""), "47DEQpj8");
  EXPECT_EQ(Respond({"a", "bc"}, "K7gNU3sd"),
            "5b3034ee10dfd57001dd1392962c7df919a4e577ff43e5b9017eacde4b9d6a27");
  EXPECT_NE(Respond({"ab", "c"}, "K7gNU3sd"), Respond({"a", "bc"}, "K7gNU3sd"));
  EXPECT_EQ(RandomHex(5).size(), 5U);
  EXPECT_NE(RandomHex(32), RandomHex(32));
}

TEST(Credentials, TheFormOfAPasswordIsToldWithoutThePassword) {
  const std::string right = Encode("secret");
  EXPECT_EQ(FormOf("", right), "empty");
  EXPECT_EQ(FormOf("secret", right), "plain");
  EXPECT_EQ(FormOf(right, right), "encoded");
  EXPECT_EQ(FormOf(std::string(64, 'a'), right), "response");
  EXPECT_EQ(FormOf(std::string(63, 'a'), right), "unknown");
  EXPECT_EQ(FormOf(std::string(64, 'a'), ""), "response");
}

TEST_F(Logic, AChallengeIsAnsweredOnceAndInTime) {
  const std::string key = Encode("secret");
  const Challenge first = Acquire();
  const Challenge second = Acquire();
  EXPECT_FALSE(world.challenges.Spend(Respond(first, "wrong"), key));
  EXPECT_TRUE(world.challenges.Spend(Respond(second, key), key));
  EXPECT_FALSE(world.challenges.Spend(Respond(second, key), key));
  EXPECT_TRUE(world.challenges.Spend(Respond(first, key), key));

  const Challenge late = Acquire();
  world.clock.Advance(seconds(10));
  EXPECT_FALSE(world.challenges.Spend(Respond(late, key), key));

  const Challenge forgotten = Acquire();
  Acquire();
  Acquire();
  EXPECT_FALSE(world.challenges.Spend(Respond(forgotten, key), key));
}

TEST_F(Logic, WrongPasswordsLockTheAccount) {
  const std::string key = Encode("secret");
  EXPECT_EQ(LogIn("nobody", "x"), Verdict::kUnknownUser);
  EXPECT_EQ(LogIn("shut", Respond(Acquire(), key)), Verdict::kLocked);
  EXPECT_EQ(LogIn("ann", "x"), Verdict::kWrong);
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::kRight);  // and counts from 0 again
  EXPECT_EQ(LogIn("ann", "x"), Verdict::kWrong);
  EXPECT_EQ(LogIn("ann", "secret"), Verdict::kWrong);  // plain, while passwords are encoded
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::kLocked);

  world.Patch(nlohmann::json::parse(R"({"users": {"bob": {"fullName": "Bob"}}})"));
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::kLocked);
  world.Patch(nlohmann::json::parse(R"({"users": {"ann": {"fullName": "Ann"}}})"));
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::kRight);
}

TEST_F(Logic, AChangedPasswordHoldsInBothForms) {
  world.accounts.ChangePassword(*world.GetSite(), "bob", Encode("fresh"));
  EXPECT_EQ(world.accounts.ExpiryOf(*world.GetSite(), "bob"), Expiry::kNever);
  EXPECT_EQ(LogIn("bob", Respond(Acquire(), Encode("other"))), Verdict::kWrong);
  EXPECT_EQ(LogIn("bob", Respond(Acquire(), Encode("fresh"))), Verdict::kRight);
  world.Patch(nlohmann::json::parse(R"({"parameters": {"general": {"PasswordEncode": "0"}}})"));
  EXPECT_EQ(LogIn("bob", "fresh"), Verdict::kRight);
  EXPECT_EQ(LogIn("bob", Encode("fresh")), Verdict::kWrong);
  world.Reset();
  EXPECT_EQ(LogIn("bob", "other"), Verdict::kRight);
  EXPECT_EQ(world.accounts.ExpiryOf(*world.GetSite(), "bob"), Expiry::kExpired);
}

TEST_F(Logic, ASessionEndsUnlessItIsKeptAlive) {
  Sessions& sessions = world.sessions;
  sessions.Open("a", "ann", seconds(10));
  sessions.Open("for ever", "ann", seconds(0));
  world.clock.Advance(seconds(9));
  EXPECT_TRUE(sessions.KeepAlive("a"));
  world.clock.Advance(seconds(9));
  EXPECT_EQ(sessions.UserOf("a"), "ann");
  EXPECT_TRUE(sessions.ResetTimeOut("a", seconds(20)));
  world.clock.Advance(seconds(19));
  EXPECT_EQ(sessions.List().size(), 2U);
  world.clock.Advance(seconds(1));
  EXPECT_FALSE(sessions.KeepAlive("a"));
  EXPECT_FALSE(sessions.ResetTimeOut("a", seconds(20)));
  EXPECT_FALSE(sessions.Close("a"));
  world.clock.Advance(hours(1000));
  EXPECT_TRUE(sessions.Close("for ever"));

  // The longest time-out that the wire carries is no trap.
  sessions.Open("long", "ann", seconds(0xFFFFFFFFU));
  world.clock.Advance(hours(24 * 366));
  EXPECT_TRUE(sessions.KeepAlive("long"));
}

TEST_F(Logic, AFaultHitsTheCallsThatItIsSetFor) {
  world.Patch(nlohmann::json::parse(R"({"faults": [
      {"operation": "CRB_Register", "nth": 2, "times": 2, "action": "drop"},
      {"operation": "*", "kind": "GAS", "action": "die"}]})"));
  const auto hits = [&](const char* operation, const char* kind) {
    return world.faults.Hit(operation, kind).size();
  };
  EXPECT_EQ(hits("CRB_Register", "GSR"), 0U);
  EXPECT_EQ(hits("B", "GSR"), 0U);
  EXPECT_EQ(hits("CRB_Register", "GSR"), 1U);
  EXPECT_EQ(hits("CRB_Register", "GAS"), 2U);
  EXPECT_EQ(hits("CRB_Register", "GSR"), 0U);
  EXPECT_EQ(hits("B", "GAS"), 1U);
}

}  // namespace
}  // namespace vq::sim
