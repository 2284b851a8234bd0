#include <support/orb/ListenEndpoint.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/tao/TaoOptions.h>

#include <sstream>

#include <tests/fixture/UnitTest.h>

namespace vq::orb {
namespace {

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

// The values of omniORB's option, with a blank between two of them.
std::string OmniOrbValues(const OrbSettings& settings, const std::string& name) {
  std::string values;
  for (const auto& [option, value] : OmniOrbOptions(settings)) {
    if (option == name) values += (values.empty() ? "" : " ") + std::string(value);
  }
  return values;
}

TEST(ListenEndpointTest, Parses) {
  // Host, port, span, TLS port and published host, or the piece that is refused.
  const auto parsed = [](const std::string& text) {
    std::string error;
    const auto endpoint = ParseListenEndpoint(text, error);
    test::Take(error, '\'');
    if (!endpoint) return "refused " + test::Take(error, '\'');
    return (std::ostringstream() << endpoint->host << ' ' << endpoint->port << ' '
                                 << endpoint->portSpan << ' ' << endpoint->tlsPort << ' '
                                 << endpoint->publishedHost)
        .str();
  };
  test::ExpectRows(parsed,
                   {" ->  0 0 0 ", "iiop:// ->  0 0 0 ", "iiop://:5000 ->  5000 0 0 ",
                    "iiop://[::1]:5000 -> [::1] 5000 0 0 ", "iiop://[::1] -> [::1] 0 0 0 ",
                    "iiop://h:5000/portspan=10&ssl_port=5001 -> h 5000 10 5001 ",
                    "iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0 ->  0 0 0 10.0.0.1",
                    "tcp://h:1 -> refused tcp://h:1", "iiop://h:port -> refused port",
                    "iiop://h:70000 -> refused 70000", "iiop://h:-1 -> refused -1",
                    "iiop://h:1/foo=1 -> refused foo=1", "iiop://h:1/ssl_port -> refused ssl_port",
                    "iiop://h/portspan=3 -> refused iiop://h/portspan=3",
                    "iiop://h:65500/portspan=36 -> refused iiop://h:65500/portspan=36",
                    "iiop://h/hostname_in_ior= -> refused hostname_in_ior="});
}

// The origins are tested with vqclient.
TEST(OrbSettingsTest, FirstSourceWins) {
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
}

TEST(OrbSettingsTest, RefusesMalformedValues) {
  // What the value is not.
  const auto refusal = [](const std::string& setting) -> std::string {
    const std::size_t sign = setting.find('=');
    try {
      ResolveSettings({}, {Scope(setting, "own")});
    } catch (const std::invalid_argument& error) {
      const std::string start = "the value '" + setting.substr(sign + 1) + "' of " +
                                setting.substr(0, sign) + " (own) is not ";
      const std::string text = error.what();
      return text.starts_with(start) ? text.substr(start.size(), 18) : text;
    }
    return "";
  };
  test::ExpectRows(
      refusal,
      {"-ORBCallTimeout=0 -> a number of millis", "-ORBCallTimeout=soon -> a number of millis",
       "-ORBConnectTimeout=-5 -> a number of millis", "-ORBConnectTimeout= -> a number of millis",
       "-ORBTcpKeepAlive=-1 -> a number of millis",
       "-ORBMaxMessageSize=4294967296 -> a number of bytes ",
       "-ORBTcpUserTimeout=86400001 -> a number of millis", "-ORBCallTimeout=86400000 -> ",
       "-BiDirPolicy=yes -> 0 or 1", "-ORBListenEndpoints=iiop://h:x -> a listen endpoint:",
       "-ORBInitRef=NameService -> of the form NAME=R", "-SSLVerifyHost=off -> 0 or 1",
       "-SSLServerNames=a.site,,b.site -> a list of host nam",
       "-SSLServerNames=* -> a list of host nam", "-SSLServerNames=a*.site -> a list of host nam",
       "-SSLServerNames=*..site -> a list of host nam", "-SSLServerNames=*.site,10.0.0.1 -> "});
  for (const char* last : {"-ORBCallTimeout", "-SSLCACertficate", "-SSLCACertificate=ca.pem"}) {
    const char* const argv[] = {"client", last};
    EXPECT_THROW(SplitArguments(2, argv), std::invalid_argument) << last;
  }
  EXPECT_TRUE(SplitArguments(0, nullptr).rest.empty());
}

TEST(OrbSettingsTest, SplitsNamingAddresses) {
  const auto references = [](const std::string& reference) {
    OrbSettings settings;
    settings.initialRefs = {"Other=corbaloc::o:1,:p:2/N", "NameService=" + reference};
    std::string found;
    for (const std::string& one : NamingReferences(settings)) found += one + " ";
    return found;
  };
  test::ExpectRows(references,
                   {"corbaloc::h:1/N -> corbaloc::h:1/N ", "corbaloc:rir:/N -> corbaloc:rir:/N ",
                    "corbaloc:iiop:a:1,iiop:1.2@b:2,:[::1]:3/N%2f -> "
                    "corbaloc:iiop:a:1/N%2f corbaloc:iiop:1.2@b:2/N%2f corbaloc::[::1]:3/N%2f ",
                    "corbaloc::a,:b -> corbaloc::a,:b ", "IOR:01,02/ -> IOR:01,02/ "});
  EXPECT_TRUE(NamingReferences({}).empty());
}

// Each row is the name of an option, the settings and the option's values.
TEST(OmniOrbOptionsTest, Translates) {
  const auto value = [](std::string settings) {
    const std::string option = test::Take(settings);
    return OmniOrbValues(ResolveSettings({}, {Scope(settings)}), option);
  };
  test::ExpectRows(
      value,
      {"endPoint -> giop:tcp::", "endPointPublish -> addr", "InitRef -> ",
       "verifyObjectExistsAndType -> 0", "clientTransportRule -> * unix,tcp,ssl,bidir",
       "clientTransportRule -SSLCACertificate=ca.pem -> * ssl,tcp,bidir",
       "endPoint -ORBListenEndpoints=iiop://h:5000 -> giop:tcp:h:5000",
       "endPoint -ORBListenEndpoints=iiop://h:50/portspan=10 -> giop:tcp:h:50-59",
       "endPoint -ORBListenEndpoints=iiop://h:50/ssl_port=51 -SSLCertificate=o -> giop:ssl:h:51",
       "endPointPublish -ORBListenEndpoints=iiop://[::1]:50/hostname_in_ior=fe80::1 "
       "-SSLCertificate=own.pem -> giop:ssl:[fe80::1]:",
       "endPointPublish -ORBListenEndpoints=iiop:///hostname_in_ior=h.site -> giop:tcp:h.site:"});
  // The last one of a name counts. The table shows those that count.
  const char* const argv[] = {"client",          "-ORBInitRef", "B=corbaloc::c/B", "-ORBInitRef",
                              "A=corbaloc::a/A", "-ORBInitRef", "B=corbaloc::b/B"};
  const OrbSettings settings = ResolveSettings(SplitArguments(7, argv), {});
  const std::string last = "A=corbaloc::a/A B=corbaloc::b/B";
  EXPECT_EQ(OmniOrbValues(settings, "InitRef"), last);
  EXPECT_EQ(std::ranges::find(settings.table, "-ORBInitRef", &ResolvedSetting::name)->value, last);
}

// What the directives do is tested with TAO itself.
TEST(TaoOptionsTest, Translates) {
  const auto value = [](std::string settings) {
    const std::string option = test::Take(settings);
    const auto arguments = TaoArguments(ResolveSettings({}, {Scope(settings)}));
    const auto found = std::find(arguments.begin(), arguments.end(), option);
    return found == arguments.end() ? "none" : found[1];
  };
  const std::string listen = "-ORBListenEndpoints";
  const auto endpoint = [&](const std::string& text) {
    return listen + " " + listen + "=" + text + " -> " + text;
  };
  test::ExpectRows(
      value,
      {listen + " -> iiop://", "-ORBDottedDecimalAddresses -> 1", "-ORBSingleReadOptimization -> 0",
       "-ORBSingleReadOptimization -BiDirPolicy=1 -> none",
       endpoint("iiop://h:50/portspan=10&hostname_in_ior=gui.site"),
       endpoint("iiop://[::1]:50/ssl_port=51"), endpoint("iiop:///hostname_in_ior=fe80::1"),
       "-ORBInitRef -ORBInitRef=Name=corbaloc::h/Name -> Name=corbaloc::h/Name",
       listen + " -SSLCertificate=own.pem " + listen +
           "=iiop://h/ssl_port=51 -> ssliop://h/ssl_port=51",
       // TAO's option of that name is another thing.
       "-ORBMaxMessageSize -ORBMaxMessageSize=8192 -> none"});
}

TEST(TaoOptionsTest, UnitsAndWords) {
  EXPECT_EQ(TaoTime(std::chrono::milliseconds(86'400'000)), 864'000'000'000U);
  test::ExpectRows(
      TaoMinorText,
      {"exception, minor code = 2 (failed to connect; ECONNREFUSED), completed = NO\n -> "
       "failed to connect, ECONNREFUSED",
       "minor code (2), described as 'No usable profile.', completed = NO\n -> No usable profile.",
       "minor code (2), described as '*unknown description*', completed = NO\n -> ",
       "vendor minor code id (0), minor code = 7, completed = NO\n -> ", "minor code = 1 ( -> ",
       " -> "});
}

// References of type IDL:T:1.0 with one profile, its host and the port 0x1388.
const std::string kHead = "IOR:010000000a00000049444c3a543a312e30000000";
const std::string kBig =
    "IOR:000000000000000a49444c3a543a312e30000000000000010000000000000016"
    "000102000000000c7365727665722e73697465001388";
const std::string kLittle =
    kHead + "010000000000000016000000010102000c0000007365727665722e73697465008813";

TEST(ReferenceAddressTest, ReadsBothByteOrders) {
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
