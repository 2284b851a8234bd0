// Challenges, locks, sessions and faults, by a clock that the test moves.

#include <string>

#include <gtest/gtest.h>
#include <simulator/World.h>
#include <nlohmann/json.hpp>

namespace vq::sim {
namespace {

using std::chrono::hours;
using std::chrono::seconds;
using Verdict = Accounts::Verdict;

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
  EXPECT_EQ(LogIn("nobody", "x"), Verdict::UnknownUser);
  EXPECT_EQ(LogIn("shut", Respond(Acquire(), key)), Verdict::Locked);
  EXPECT_EQ(LogIn("ann", "x"), Verdict::Wrong);
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::Right);  // and counts from 0 again
  EXPECT_EQ(LogIn("ann", "x"), Verdict::Wrong);
  EXPECT_EQ(LogIn("ann", "secret"), Verdict::Wrong);  // plain, while passwords are encoded
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::Locked);

  world.Patch(nlohmann::json::parse(R"({"users": {"bob": {"fullName": "Bob"}}})"));
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::Locked);
  world.Patch(nlohmann::json::parse(R"({"users": {"ann": {"fullName": "Ann"}}})"));
  EXPECT_EQ(LogIn("ann", Respond(Acquire(), key)), Verdict::Right);
}

TEST_F(Logic, AChangedPasswordHoldsInBothForms) {
  world.accounts.ChangePassword(*world.GetSite(), "bob", Encode("fresh"));
  EXPECT_EQ(world.accounts.ExpiryOf(*world.GetSite(), "bob"), Expiry::Never);
  EXPECT_EQ(LogIn("bob", Respond(Acquire(), Encode("other"))), Verdict::Wrong);
  EXPECT_EQ(LogIn("bob", Respond(Acquire(), Encode("fresh"))), Verdict::Right);
  world.Patch(nlohmann::json::parse(R"({"parameters": {"general": {"PasswordEncode": "0"}}})"));
  EXPECT_EQ(LogIn("bob", "fresh"), Verdict::Right);
  EXPECT_EQ(LogIn("bob", Encode("fresh")), Verdict::Wrong);
  world.Reset();
  EXPECT_EQ(LogIn("bob", "other"), Verdict::Right);
  EXPECT_EQ(world.accounts.ExpiryOf(*world.GetSite(), "bob"), Expiry::Expired);
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
