#include <support/orb/TaoOptions.h>

#include <gtest/gtest.h>

namespace vq::orb {
namespace {

// The values of an option, with a line between two of them.
std::string ValuesOf(const std::vector<std::string>& arguments, const std::string& name) {
  std::string values;
  for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
    if (arguments[i] == name) values += (values.empty() ? "" : "\n") + arguments[i + 1];
  }
  return values;
}

TEST(TaoOptionsTest, TranslatesEverySetting) {
  const std::string load =
      "static Messaging_Loader \"\"\nstatic BiDirGIOP_Loader \"\"\n"
      "static VQ_SSLIOP_Factory ";
  const std::string use = "\nstatic Resource_Factory \"-ORBProtocolFactory VQ_SSLIOP_Factory\"";
  const struct {
    SettingScope scope;
    const char* option;
    std::string expected;
  } kRows[] = {
      {{}, "-ORBListenEndpoints", "iiop://"},
      {{}, "-ORBDottedDecimalAddresses", "1"},
      {{}, "-ORBInitRef", ""},
      {{}, "-ORBSvcConfDirective", ""},
      {{{"-ORBListenEndpoints", "iiop://h:5000/portspan=10&hostname_in_ior=gui.site"}},
       "-ORBListenEndpoints",
       "iiop://h:5000/portspan=10&hostname_in_ior=gui.site"},
      {{{"-ORBListenEndpoints", "iiop://[::1]:5000/ssl_port=5001"}},
       "-ORBListenEndpoints",
       "iiop://[::1]:5000/ssl_port=5001"},
      {{{"-ORBListenEndpoints", "iiop:///hostname_in_ior=fe80::1"}},
       "-ORBListenEndpoints",
       "iiop:///hostname_in_ior=fe80::1"},
      {{{"-ORBInitRef", "NameService=corbaloc::h/NameService"}},
       "-ORBInitRef",
       "NameService=corbaloc::h/NameService"},
      {{{"-SSLCertificate", "own.pem"}, {"-ORBListenEndpoints", "iiop://h/ssl_port=5001"}},
       "-ORBListenEndpoints",
       "ssliop://h/ssl_port=5001"},
      {{{"-SSLCACertificate", "ca.pem"}},
       "-ORBSvcConfDirective",
       load + "\"-SSLAuthenticate SERVER_AND_CLIENT\"" + use},
      {{{"-SSLCACertificate", "ca.pem"}, {"-SSLVerifyPeer", "0"}},
       "-ORBSvcConfDirective",
       load + "\"-SSLAuthenticate NONE\"" + use},
      // The message size has no counterpart, and TAO's option of that name is another thing.
      {{{"-ORBMaxMessageSize", "8192"}}, "-ORBMaxMessageSize", ""},
  };
  for (const auto& row : kRows) {
    const OrbSettings settings = ResolveSettings({}, {}, row.scope);
    EXPECT_EQ(ValuesOf(TaoArguments(settings), row.option), row.expected) << row.option;
  }
}

TEST(TaoOptionsTest, NoConfigurationFileIsReadThatNobodyNamed) {
  EXPECT_EQ(ValuesOf(TaoConfigurationArguments({}), "-ORBSvcConf"), "/dev/null");
  EXPECT_EQ(ValuesOf(TaoConfigurationArguments({"-ORBSvcConf", "own.conf"}), "-ORBSvcConf"), "");
}

TEST(TaoOptionsTest, TimesAndMinorCodesAreInTaosUnitsAndWords) {
  EXPECT_EQ(TaoTime(std::chrono::milliseconds(86'400'000)), 864'000'000'000U);
  const struct {
    const char* information;
    const char* words;
  } kRows[] = {
      {"system exception, ID 'IDL:omg.org/CORBA/TRANSIENT:1.0'\nTAO exception, minor code = 2 "
       "(failed to connect; ECONNREFUSED), completed = NO\n",
       "failed to connect; ECONNREFUSED"},
      {"OMG minor code (2), described as 'No usable profile in IOR.', completed = NO\n",
       "No usable profile in IOR."},
      {"OMG minor code (2), described as '*unknown description*', completed = NO\n", ""},
      {"Unknown vendor minor code id (0), minor code = 7, completed = NO\n", ""},
      {"minor code = 1 (", ""},
      {"", ""},
  };
  for (const auto& row : kRows) EXPECT_EQ(TaoMinorText(row.information), row.words);
}

}  // namespace
}  // namespace vq::orb
