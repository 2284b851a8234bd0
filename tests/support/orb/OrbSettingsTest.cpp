#include <support/orb/OrbSettings.h>

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

namespace vq::orb {
namespace {

OrbSettings FromDefaultScope(const SettingScope& scope) {
  return ResolveSettings({}, {}, scope);
}

TEST(OrbSettingsTest, TheFirstSourceThatHasASettingWins) {
  const char* const argv[] = {"client", "-ORBCallTimeout", "1", "file", "-ORBtraceLevel", "5"};
  const OrbArguments arguments = SplitArguments(6, argv);
  EXPECT_EQ(arguments.rest, (std::vector<std::string>{"client", "file", "-ORBtraceLevel", "5"}));

  const SettingScope own{{"-ORBCallTimeout", "2"}, {"-ORBConnectTimeout", "3"}};
  const SettingScope common{
      {"-ORBCallTimeout", "4"}, {"-ORBConnectTimeout", "5"}, {"-BiDirPolicy", "1"}};
  const OrbSettings settings = ResolveSettings(arguments, own, common);
  EXPECT_EQ(settings.callTimeout.count(), 1);
  EXPECT_EQ(settings.connectTimeout.count(), 3);
  EXPECT_TRUE(settings.biDirectional);
  EXPECT_EQ(settings.maxMessageSize, 268435456U);

  const auto originOf = [&](const std::string& name) {
    const auto found = std::find_if(settings.table.begin(), settings.table.end(),
                                    [&](const auto& setting) { return setting.name == name; });
    return std::string(SettingOriginText(found->origin));
  };
  EXPECT_EQ(originOf("-ORBCallTimeout"), "command line");
  EXPECT_EQ(originOf("-ORBConnectTimeout"), "configuration domain, own scope");
  EXPECT_EQ(originOf("-BiDirPolicy"), "configuration domain, scope default");
  EXPECT_EQ(originOf("-PreferIPMask"), "built in");
}

TEST(OrbSettingsTest, TimeOutsAreFiniteWithoutAnySetting) {
  const OrbSettings settings = FromDefaultScope({});
  EXPECT_EQ(settings.connectTimeout.count(), 10'000);
  EXPECT_EQ(settings.callTimeout.count(), 60'000);
}

TEST(OrbSettingsTest, AMalformedValueIsRefusedWithItsNameAndForm) {
  const struct {
    const char* name;
    const char* value;
    const char* form;
  } kRows[] = {
      {"-ORBCallTimeout", "0", "milliseconds"},
      {"-ORBCallTimeout", "soon", "milliseconds"},
      {"-ORBConnectTimeout", "-5", "milliseconds"},
      {"-ORBConnectTimeout", "", "milliseconds"},
      {"-ORBMaxMessageSize", "4294967296", "bytes"},
      {"-BiDirPolicy", "yes", "0 or 1"},
      {"-ORBListenEndpoints", "iiop://h:x", "endpoint"},
      {"-ORBInitRef", "NameService", "NAME="},
      {"-SSLVerifyHost", "off", "0 or 1"},
  };
  for (const auto& row : kRows) {
    try {
      FromDefaultScope({{row.name, row.value}});
      ADD_FAILURE() << row.name << " took " << row.value;
    } catch (const std::invalid_argument& e) {
      const std::string text = e.what();
      EXPECT_NE(text.find(row.name), std::string::npos) << text;
      EXPECT_NE(text.find(row.form), std::string::npos) << text;
    }
  }
  const char* const argv[] = {"client", "-ORBCallTimeout"};
  EXPECT_THROW(SplitArguments(2, argv), std::invalid_argument);
  EXPECT_TRUE(SplitArguments(0, nullptr).rest.empty());
}

}  // namespace
}  // namespace vq::orb
