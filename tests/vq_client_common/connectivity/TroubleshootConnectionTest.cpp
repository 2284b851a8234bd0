#include <vq_client_common/connectivity/TroubleshootConnection.h>

#include <memory>

#include <tests/fixture/UnitTest.h>
#include <vq_client_common/session/StoredSettings.h>

namespace vq::test {
namespace {

using Troubleshoot = TroubleshootConnection;

class TroubleshootConnectionTest : public ::testing::Test {
 protected:
  TroubleshootConnectionTest() { m_environment.Isolate(m_directory.Path()); }

  // The settings after ORBConfigure in a domain with these scopes, one a line.
  std::string Configured(const std::string& scopes, const std::string& address, bool biDir,
                         bool isMask) {
    m_directory.Write("root/config/vq.xml", "<domain>" + scopes + "</domain>");
    EXPECT_TRUE(Troubleshoot::ORBConfigure(address, biDir, isMask));
    std::string text, error;
    for (const StoredSetting& setting : ReadStoredSettings(error)) {
      text += setting.scope + " " + setting.name + "=" + setting.value + "\n";
    }
    return text + error;
  }

  TemporaryDirectory m_directory;
  Environment m_environment;
  LogCapture m_log;
};

TEST_F(TroubleshootConnectionTest, TransformsEndpoint) {
  const auto transformed = [](std::string host) {
    std::string endpoint = Take(host);
    Troubleshoot::TransformEndpoint(endpoint, host);
    return endpoint;
  };
  ExpectRows(transformed,
             {" 10.0.0.1 -> iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0",
              "iiop://h:5000 10.0.0.1 -> iiop://:5000/hostname_in_ior=10.0.0.1&reuse_addr=0",
              "iiop://h:0/foo a -> iiop:///hostname_in_ior=a&reuse_addr=0",
              "iiop://h/hostname_in_ior=b&reuse_addr=1  -> iiop://", "iiop://h; a -> iiop://h;",
              "x a -> x"});  // these two cannot be parsed
}

TEST_F(TroubleshootConnectionTest, ConfiguresEveryScope) {
  const std::string own =
      "default -ORBListenEndpoints=iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0\n";
  // Nothing there: "default" gets all of it.
  EXPECT_EQ(Configured("", "10.0.0.1", true, false), "default -BiDirPolicy=1\n" + own);
  EXPECT_EQ(Configured("", "10.1.", false, true),
            "default -BiDirPolicy=0\n"
            "default -ORBListenEndpoints=iiop:///hostname_in_ior=$IP&reuse_addr=0\n"
            "default -PreferIPMask=10.1.\n");
  // A scope keeps its own endpoint only if it differs, and no bidirectional policy.
  const std::string scopes = R"(
      <scope name="default"><var name="-ORBListenEndpoints">iiop://old</var></scope>
      <scope name="CLI"><var name="-BiDirPolicy">0</var><var name="-ORBCallTimeout">7</var></scope>
      <scope name="GUI"><var name="-ORBListenEndpoints">iiop://gui</var></scope>
      <scope name="VCM"><var name="-ORBListenEndpoints">iiop://vcm:5000</var></scope>)";
  EXPECT_EQ(Configured(scopes, "10.0.0.1", true, false),
            "default -BiDirPolicy=1\n" + own +
                "CLI -ORBCallTimeout=7\n"
                "VCM -ORBListenEndpoints=iiop://:5000/hostname_in_ior=10.0.0.1&reuse_addr=0\n");
  // An empty variable is set, and gets the value of the default endpoint.
  const std::string empty = R"(<scope name="GUI"><var name="-ORBListenEndpoints"/></scope>)";
  EXPECT_EQ(Configured(empty, "10.0.0.1", false, false), "default -BiDirPolicy=0\n" + own);
  EXPECT_TRUE(m_log.Has(4, "Going to publish: 10.1. (IP mask)"));
  EXPECT_TRUE(m_log.Has(4, "Saved configuration domain: vq"));
}

TEST_F(TroubleshootConnectionTest, RefusesMalformedDomain) {
  m_directory.Write("root/config/vq.xml", "<domain");
  EXPECT_FALSE(Troubleshoot::ORBConfigure("10.0.0.1", true, false));
  long roundTrip = -1;
  EXPECT_FALSE(Troubleshoot::ORBInitAndTestCallback(true, "10.0.0.1", roundTrip, false));
  EXPECT_EQ(m_log.Count(1, "Failed to load configuration domain: vq"), 2);
  EXPECT_EQ(m_directory.Read("root/config/vq.xml"), "<domain");
  m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
  EXPECT_TRUE(Troubleshoot::ORBConfigure("10.0.0.1", true, false));
}

TEST_F(TroubleshootConnectionTest, FindsAddresses) {
  IPAddressInfo kept{"kept", "", false, 0};
  std::vector<IPAddressInfo*> list{&kept};
  unsigned int index = 77;
  Troubleshoot::IdentifyIPAddresses(list, index);
  EXPECT_EQ(index, list.size() == 1 ? 77U : 1U);
  for (std::size_t i = 1; i < list.size(); ++i) {
    const std::unique_ptr<IPAddressInfo> info(list[i]);
    EXPECT_TRUE(info->ipAddress != "127.0.0.1" && info->ipAddress != "::1");
    EXPECT_TRUE(!info->hostName.empty() && !info->isTested && info->roundTrip == 0);
  }
}

TEST_F(TroubleshootConnectionTest, RefusesNilReferences) {
  std::string host = "kept", port = "kept";
  EXPECT_FALSE(Troubleshoot::GetNetworkInterface4Server(CORBA::Object::_nil(), host, port, E_GSR));
  EXPECT_TRUE(m_log.Has(1, "Nil"));
  EXPECT_EQ(host + port, "keptkept");
  EXPECT_EQ(Troubleshoot::GetTimeout4TestCallback(), 5000);
}

}  // namespace
}  // namespace vq::test
