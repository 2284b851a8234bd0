#include <support/orb/OmniOrbOptions.h>

#include <gtest/gtest.h>

namespace vq::orb {
namespace {

std::string OptionOf(const OrbSettings& settings, const std::string& name) {
  std::string values;
  for (const auto& [option, value] : OmniOrbOptions(settings)) {
    if (option == name) values += (values.empty() ? "" : " ") + value;
  }
  return values;
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
    EXPECT_EQ(OptionOf(ResolveSettings({}, {}, row.scope), row.option), row.expected) << row.option;
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
