#include <support/orb/OrbSettings.h>

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

#include <support/orb/OmniOrbOptions.h>

namespace vq::orb {
namespace {

std::string OptionOf(const OrbSettings& settings, const std::string& name) {
  std::string values;
  for (const auto& [option, value] : OmniOrbOptions(settings)) {
    if (option == name) values += (values.empty() ? "" : " ") + value;
  }
  return values;
}

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

TEST(OmniOrbOptionsTest, TranslatesEverySetting) {
  const struct {
    SettingScope scope;
    const char* option;
    const char* expected;
  } kRows[] = {
      {{}, "endPoint", "giop:tcp::"},
      {{}, "endPointPublish", "addr"},
      {{}, "clientConnectTimeOutPeriod", "10000"},
      {{}, "clientCallTimeOutPeriod", "60000"},
      {{}, "giopMaxMsgSize", "268435456"},
      {{}, "verifyObjectExistsAndType", "0"},
      {{}, "offerBiDirectionalGIOP", "0"},
      {{}, "clientTransportRule", "* unix,tcp,ssl,bidir"},
      {{}, "InitRef", ""},
      {{{"-BiDirPolicy", "1"}}, "offerBiDirectionalGIOP", "1"},
      {{{"-SSLCACertificate", "ca.pem"}}, "clientTransportRule", "* ssl,tcp,bidir"},
      {{{"-ORBInitRef", "NameService=corbaloc::h/NameService"}},
       "InitRef",
       "NameService=corbaloc::h/NameService"},
      {{{"-ORBListenEndpoints", "iiop://h:5000"}}, "endPoint", "giop:tcp:h:5000"},
      {{{"-ORBListenEndpoints", "iiop://h:5000/portspan=10"}}, "endPoint", "giop:tcp:h:5000-5009"},
      {{{"-ORBListenEndpoints", "iiop://h:5000/ssl_port=5001"}, {"-SSLCertificate", "own.pem"}},
       "endPoint",
       "giop:ssl:h:5001"},
      {{{"-ORBListenEndpoints", "iiop://[::1]:5000/hostname_in_ior=fe80::1"},
        {"-SSLCertificate", "own.pem"}},
       "endPointPublish",
       "giop:ssl:[fe80::1]:"},
      {{{"-ORBListenEndpoints", "iiop:///hostname_in_ior=gui.site"}},
       "endPointPublish",
       "giop:tcp:gui.site:"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(OptionOf(FromDefaultScope(row.scope), row.option), row.expected) << row.option;
  }
}

TEST(OmniOrbOptionsTest, SeveralInitialReferencesOfTheCommandLineAllCount) {
  const char* const argv[] = {"client", "-ORBInitRef", "A=corbaloc::a/A", "-ORBInitRef",
                              "B=corbaloc::b/B"};
  const OrbSettings settings = ResolveSettings(SplitArguments(5, argv), {}, {});
  EXPECT_EQ(OptionOf(settings, "InitRef"), "A=corbaloc::a/A B=corbaloc::b/B");
}

}  // namespace
}  // namespace vq::orb
