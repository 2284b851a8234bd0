#include <support/orb/ListenEndpoint.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/tao/TaoOptions.h>

#include <sstream>

#include <gmock/gmock.h>

namespace vq::orb {
namespace {

using ::testing::HasSubstr;

// Of a text such as "-BiDirPolicy=1 -SSLCertificate=own.pem".
SettingScope Scope(const std::string& text, const std::string& origin = "") {
  SettingScope scope{origin, {}};
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const std::size_t sign = word.find('=');
    scope.values[word.substr(0, sign)] = word.substr(sign + 1);
  }
  return scope;
}

// The values of an option among (name, value) pairs, with a blank between two of them.
std::string ValuesOf(const std::vector<std::pair<std::string, std::string>>& options,
                     const std::string& name) {
  std::string values;
  for (const auto& [option, value] : options) {
    if (option == name) values += (values.empty() ? "" : " ") + value;
  }
  return values;
}

std::vector<std::pair<std::string, std::string>> Pairs(const std::vector<std::string>& arguments) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
    pairs.emplace_back(arguments[i], arguments[i + 1]);
  }
  return pairs;
}

struct OptionRow {
  const char *scope, *option, *expected;
};

TEST(ListenEndpointTest, ReadsEveryForm) {
  const struct {
    const char* text;
    ListenEndpoint expected;  // host, port, span, TLS port, published host
  } kRows[] = {{"", {}},
               {"iiop://", {}},
               {"iiop://:5000", {"", 5000, 0, 0, ""}},
               {"iiop://gui.site:5000", {"gui.site", 5000, 0, 0, ""}},
               {"iiop://[::1]:5000", {"[::1]", 5000, 0, 0, ""}},
               {"iiop://[::1]", {"[::1]", 0, 0, 0, ""}},
               {"iiop://h:5000/portspan=10&ssl_port=5001", {"h", 5000, 10, 5001, ""}},
               {"iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0", {"", 0, 0, 0, "10.0.0.1"}}};
  for (const auto& [text, expected] : kRows) {
    std::string error;
    const auto endpoint = ParseListenEndpoint(text, error);
    ASSERT_TRUE(endpoint) << text << ": " << error;
    EXPECT_EQ(*endpoint, expected) << text;
  }
}

TEST(ListenEndpointTest, NamesThePieceThatItRefuses) {
  const char* const kRows[][2] = {
      {"tcp://h:1", "iiop://"},        {"iiop://h:port", "'port'"},
      {"iiop://h:70000", "'70000'"},   {"iiop://h:-1", "'-1'"},
      {"iiop://h:1/foo=1", "'foo=1'"}, {"iiop://h:1/ssl_port", "'ssl_port'"},
      {"iiop://h/portspan=3", "span"}, {"iiop://h:1/hostname_in_ior=", "'hostname_in_ior='"}};
  for (const auto& [text, piece] : kRows) {
    std::string error;
    EXPECT_FALSE(ParseListenEndpoint(text, error)) << text;
    EXPECT_THAT(error, HasSubstr(piece)) << text;
  }
}

TEST(OrbSettingsTest, TheFirstSourceThatHasASettingWins) {
  const char* const argv[] = {"client", "-ORBCallTimeout", "1", "file", "-ORBtraceLevel", "5"};
  const OrbArguments arguments = SplitArguments(6, argv);
  EXPECT_EQ(arguments.rest, (std::vector<std::string>{"client", "file", "-ORBtraceLevel", "5"}));
  const OrbSettings settings = ResolveSettings(
      arguments, {Scope("-ORBCallTimeout=2 -ORBConnectTimeout=3", "own"),
                  Scope("-ORBCallTimeout=4 -ORBConnectTimeout=5 -BiDirPolicy=1", "default")});
  EXPECT_EQ(settings.callTimeout.count(), 1);
  EXPECT_EQ(settings.connectTimeout.count(), 3);
  EXPECT_TRUE(settings.biDirectional);
  EXPECT_EQ(settings.maxMessageSize, 268435456U);
  std::map<std::string, std::string> origins;
  for (const auto& setting : settings.table) origins[setting.name] = setting.origin;
  EXPECT_EQ(origins["-ORBCallTimeout"], "command line");
  EXPECT_EQ(origins["-ORBConnectTimeout"], "own");
  EXPECT_EQ(origins["-BiDirPolicy"], "default");
  EXPECT_EQ(origins["-PreferIPMask"], "built in");
}

TEST(OrbSettingsTest, AMalformedValueIsRefusedWithItsNameAndForm) {
  const char* const kRows[][3] = {{"-ORBCallTimeout", "0", "milliseconds"},
                                  {"-ORBCallTimeout", "soon", "milliseconds"},
                                  {"-ORBConnectTimeout", "-5", "milliseconds"},
                                  {"-ORBConnectTimeout", "", "milliseconds"},
                                  {"-ORBTcpKeepAlive", "-1", "milliseconds"},
                                  {"-ORBTcpUserTimeout", "86400001", "milliseconds"},
                                  {"-ORBMaxMessageSize", "4294967296", "bytes"},
                                  {"-BiDirPolicy", "yes", "0 or 1"},
                                  {"-ORBListenEndpoints", "iiop://h:x", "endpoint"},
                                  {"-ORBInitRef", "NameService", "NAME="},
                                  {"-SSLVerifyHost", "off", "0 or 1"},
                                  {"-SSLServerNames", "a.site,,b.site", "a list of host names"},
                                  {"-SSLServerNames", "a*.site", "a list of host names"},
                                  {"-SSLServerNames", "*", "a list of host names"}};
  for (const auto& [name, value, form] : kRows) {
    EXPECT_THAT(([&, n = name, v = value] {
                  ResolveSettings({}, {{"", {{n, v}}}});
                }),
                ::testing::ThrowsMessage<std::invalid_argument>(
                    ::testing::AllOf(HasSubstr(name), HasSubstr(form))))
        << name << " is " << value;
  }
  const char* const argv[] = {"client", "-ORBCallTimeout"};
  EXPECT_THROW(SplitArguments(2, argv), std::invalid_argument);
  EXPECT_TRUE(SplitArguments(0, nullptr).rest.empty());
}

TEST(OrbSettingsTest, EachAddressOfTheNamingServiceHasItsReference) {
  const std::pair<const char*, std::vector<std::string>> kRows[] = {
      {"corbaloc::h:1/N", {"corbaloc::h:1/N"}},
      {"corbaloc:iiop:a:1,iiop:1.2@b:2,:[::1]:3/N%2f",
       {"corbaloc:iiop:a:1/N%2f", "corbaloc:iiop:1.2@b:2/N%2f", "corbaloc::[::1]:3/N%2f"}},
      {"corbaloc:rir:/N", {"corbaloc:rir:/N"}},
      {"corbaloc::a,:b", {"corbaloc::a,:b"}},
      {"IOR:01,02/", {"IOR:01,02/"}},
  };
  for (const auto& [reference, expected] : kRows) {
    OrbSettings settings;
    settings.initialRefs = {"Other=corbaloc::o:1,:p:2/N", std::string("NameService=") + reference};
    EXPECT_EQ(NamingReferences(settings), expected) << reference;
  }
  EXPECT_TRUE(NamingReferences({}).empty());
}

TEST(OmniOrbOptionsTest, TranslatesEverySetting) {
  const OptionRow kRows[] = {
      {"", "endPoint", "giop:tcp::"},
      {"", "endPointPublish", "addr"},
      {"", "clientConnectTimeOutPeriod", "0"},
      {"", "clientCallTimeOutPeriod", "60000"},
      {"", "giopMaxMsgSize", "268435456"},
      {"", "verifyObjectExistsAndType", "0"},
      {"", "nativeCharCodeSet", "VQ-BYTES"},
      {"", "offerBiDirectionalGIOP", "0"},
      {"", "clientTransportRule", "* unix,tcp,ssl,bidir"},
      {"", "InitRef", ""},
      {"-BiDirPolicy=1", "offerBiDirectionalGIOP", "1"},
      {"-SSLCACertificate=ca.pem", "clientTransportRule", "* ssl,tcp,bidir"},
      {"-ORBInitRef=Name=corbaloc::h/Name", "InitRef", "Name=corbaloc::h/Name"},
      {"-ORBListenEndpoints=iiop://h:5000", "endPoint", "giop:tcp:h:5000"},
      {"-ORBListenEndpoints=iiop://h:50/portspan=10", "endPoint", "giop:tcp:h:50-59"},
      {"-ORBListenEndpoints=iiop://h:50/ssl_port=51 -SSLCertificate=own.pem", "endPoint",
       "giop:ssl:h:51"},
      {"-ORBListenEndpoints=iiop://[::1]:50/hostname_in_ior=fe80::1 -SSLCertificate=own.pem",
       "endPointPublish", "giop:ssl:[fe80::1]:"},
      {"-ORBListenEndpoints=iiop:///hostname_in_ior=h.site", "endPointPublish",
       "giop:tcp:h.site:"}};
  for (const auto& [scope, option, expected] : kRows) {
    const auto options = OmniOrbOptions(ResolveSettings({}, {Scope(scope)}));
    EXPECT_EQ(ValuesOf({options.begin(), options.end()}, option), expected) << scope << option;
  }
  // The last one of a name counts.
  const char* const argv[] = {"client",          "-ORBInitRef", "B=corbaloc::c/B", "-ORBInitRef",
                              "A=corbaloc::a/A", "-ORBInitRef", "B=corbaloc::b/B"};
  const auto several = OmniOrbOptions(ResolveSettings(SplitArguments(7, argv), {}));
  EXPECT_EQ(ValuesOf({several.begin(), several.end()}, "InitRef"),
            "A=corbaloc::a/A B=corbaloc::b/B");
}

TEST(TaoOptionsTest, TranslatesEverySetting) {
  const std::string read =
      "static Client_Strategy_Factory \"-ORBClientConnectionHandler RW "
      "-ORBTransportMuxStrategy EXCLUSIVE\"";
  const auto tls = [&](const std::string& authenticate) {
    return read +
           " static Messaging_Loader \"\" static BiDirGIOP_Loader \"\" "
           "static VQ_SSLIOP_Factory \"-SSLAuthenticate " +
           authenticate + "\" static Resource_Factory \"-ORBProtocolFactory VQ_SSLIOP_Factory\"";
  };
  const std::string verified = tls("SERVER_AND_CLIENT"), taken = tls("NONE");
  const std::string plain =
      "static VQ_IIOP_Factory \"\" static Resource_Factory \"-ORBProtocolFactory VQ_IIOP_Factory\"";
  const std::string unencrypted = read + " " + plain;
  constexpr const char* kListen = "-ORBListenEndpoints";
  const OptionRow kRows[] = {
      {"", kListen, "iiop://"},
      {"", "-ORBDottedDecimalAddresses", "1"},
      {"", "-ORBInitRef", ""},
      {"", "-ORBSvcConfDirective", unencrypted.c_str()},
      {"-BiDirPolicy=1", "-ORBSvcConfDirective", plain.c_str()},
      {"-ORBListenEndpoints=iiop://h:50/portspan=10&hostname_in_ior=gui.site", kListen,
       "iiop://h:50/portspan=10&hostname_in_ior=gui.site"},
      {"-ORBListenEndpoints=iiop://[::1]:50/ssl_port=51", kListen, "iiop://[::1]:50/ssl_port=51"},
      {"-ORBListenEndpoints=iiop:///hostname_in_ior=fe80::1", kListen,
       "iiop:///hostname_in_ior=fe80::1"},
      {"-ORBInitRef=Name=corbaloc::h/Name", "-ORBInitRef", "Name=corbaloc::h/Name"},
      {"-SSLCertificate=own.pem -ORBListenEndpoints=iiop://h/ssl_port=51", kListen,
       "ssliop://h/ssl_port=51"},
      {"-SSLCACertificate=ca.pem", "-ORBSvcConfDirective", verified.c_str()},
      {"-SSLCACertificate=ca.pem -SSLVerifyPeer=0", "-ORBSvcConfDirective", taken.c_str()},
      // The message size has no counterpart, and TAO's option of that name is another thing.
      {"-ORBMaxMessageSize=8192", "-ORBMaxMessageSize", ""}};
  for (const auto& [scope, option, expected] : kRows) {
    const auto options = Pairs(TaoArguments(ResolveSettings({}, {Scope(scope)})));
    EXPECT_EQ(ValuesOf(options, option), expected) << scope << option;
  }
  // No configuration file is read that nobody named.
  EXPECT_EQ(ValuesOf(Pairs(TaoConfigurationArguments({})), "-ORBSvcConf"), "/dev/null");
  EXPECT_EQ(ValuesOf(Pairs(TaoConfigurationArguments({"-ORBSvcConf", "a"})), "-ORBSvcConf"), "");
}

TEST(TaoOptionsTest, TimesAndMinorCodesAreInTaosUnitsAndWords) {
  EXPECT_EQ(TaoTime(std::chrono::milliseconds(86'400'000)), 864'000'000'000U);
  const char* const kRows[][2] = {
      {"system exception, ID 'IDL:omg.org/CORBA/TRANSIENT:1.0'\nTAO exception, minor code = 2 "
       "(failed to connect; ECONNREFUSED), completed = NO\n",
       "failed to connect; ECONNREFUSED"},
      {"OMG minor code (2), described as 'No usable profile in IOR.', completed = NO\n",
       "No usable profile in IOR."},
      {"OMG minor code (2), described as '*unknown description*', completed = NO\n", ""},
      {"Unknown vendor minor code id (0), minor code = 7, completed = NO\n", ""},
      {"minor code = 1 (", ""},
      {"", ""}};
  for (const auto& [information, words] : kRows) EXPECT_EQ(TaoMinorText(information), words);
}

// References of type IDL:T:1.0 with one profile, its host and the port 0x1388.
const std::string kHead = "IOR:010000000a00000049444c3a543a312e30000000";
const std::string kBig =
    "IOR:000000000000000a49444c3a543a312e30000000000000010000000000000016"
    "000102000000000c7365727665722e73697465001388";
const std::string kLittle =
    kHead + "010000000000000016000000010102000c0000007365727665722e73697465008813";

TEST(ReferenceAddressTest, ReadsBothByteOrdersOrSaysWhyThereIsNone) {
  for (const std::string& text : {kBig, kLittle}) {
    ReferenceAddress address;
    ASSERT_EQ(AddressOfText(text, address), AddressFault::kNone);
    EXPECT_EQ(address.host + " " + address.port, "server.site 5000");
  }
  std::string longHost;
  for (int i = 0; i < 251; ++i) longHost += "68";
  const std::pair<std::string, AddressFault> kRows[] = {
      {"IOR:000000000000000100000000000000000000", AddressFault::kNil},
      {"corbaloc::h:1/X", AddressFault::kInvalidStub},
      {"IOR:0z", AddressFault::kInvalidStub},
      {kHead + "01000000010000000c000000010102000200000068008813", AddressFault::kInvalidProfile},
      {kHead + "01000000000000000c000000010102000100000000008813", AddressFault::kNoAddress},
      {kHead + "01000000000000000601000001010200fc000000" + longHost + "008813",
       AddressFault::kNoAddress}};
  ReferenceAddress address{"kept", "1"};
  EXPECT_EQ(AddressOf(CORBA::Object::_nil(), address), AddressFault::kNil);
  for (const auto& [text, fault] : kRows) EXPECT_EQ(AddressOfText(text, address), fault) << text;
  for (std::size_t length = 0; length < kLittle.size(); ++length) {
    EXPECT_NE(AddressOfText(kLittle.substr(0, length), address), AddressFault::kNone) << length;
  }
  EXPECT_EQ(address.host, "kept");
}

}  // namespace
}  // namespace vq::orb
