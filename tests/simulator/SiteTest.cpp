// The site reader: what it refuses, and what it makes of a site that it takes.

#include <string>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <simulator/Control.h>
#include <simulator/Site.h>
#include <simulator/World.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <nlohmann/json.hpp>

namespace vq::sim {
namespace {

std::string ErrorOf(const std::string& text) {
  try {
    ReadSite(ParseSite(text, "s"), "s");
    return "none";
  } catch (const SiteError& error) {
    return error.what();
  }
}

TEST(Site, RefusesWhatItDoesNotMeanAndTellsThePlace) {
  const struct {
    const char* text;
    const char* error;  // begins so
  } cases[] = {
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
  for (const auto& [text, error] : cases) {
    EXPECT_EQ(ErrorOf(text).rfind(error, 0), 0U) << text << "\n" << ErrorOf(text);
  }
  EXPECT_THROW(ParseSiteFile("/"), SiteError);
  EXPECT_THROW(ParseSiteFile("/no/such"), SiteError);
  EXPECT_EQ(ErrorOf(std::string(100'000, '[') + std::string(100'000, ']'))
                .rfind("s: nested too deeply", 0),
            0U);
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
    EXPECT_EQ(control.Execute(line).rfind(R"({"ok":false,"error":")", 0), 0U) << line;
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
  while (send(client, line.data(), line.size(), MSG_NOSIGNAL) > 0) {
  }
  control.Stop();
  close(client);
}

}  // namespace
}  // namespace vq::sim
