#include <vq_client_common/connectivity/TroubleshootConnection.h>

#include <memory>

#include <gtest/gtest.h>

#include <support/configuration/ConfigAPI.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/Rows.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace vq::test {
namespace {

using Troubleshoot = TroubleshootConnection;
using Scopes = std::map<std::string, std::map<std::string, std::string>>;

class TroubleshootConnectionTest : public ::testing::Test {
 protected:
  TroubleshootConnectionTest() { m_environment.Isolate(m_directory.Path()); }

  std::unique_ptr<ConfigAPI> Domain() const {
    auto domain = ConfigAPIFactoryXML::Create(m_directory / "root/config/", "vq");
    EXPECT_TRUE(domain->Load()) << domain->Error();
    return domain;
  }
  void Write(const Scopes& scopes) const {
    m_directory.Write("root/config/vq.xml", "<domain/>");
    const auto domain = Domain();
    for (const auto& [scope, variables] : scopes) {
      for (const auto& [name, value] : variables) domain->SetVar(scope, name, value);
    }
    EXPECT_TRUE(domain->Save());
  }
  Scopes Read() const {
    Scopes scopes;
    const auto domain = Domain();
    for (const std::string& scope : domain->GetScopes()) {
      for (const char* name :
           {"-ORBListenEndpoints", "-BiDirPolicy", "-PreferIPMask", "-ORBCallTimeout"}) {
        if (const auto value = domain->GetVar(scope, name)) scopes[scope][name] = *value;
      }
    }
    return scopes;
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
              "x a -> x"});  // these two cannot be taken apart
}

TEST_F(TroubleshootConnectionTest, ConfiguresEveryScope) {
  const auto scope = [](const std::string& endpoint, const char* biDir) {
    return Scopes::mapped_type{{"-ORBListenEndpoints", endpoint}, {"-BiDirPolicy", biDir}};
  };
  const std::string own = "iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0";
  // Nothing there: "default" gets all of it.
  Write({});
  EXPECT_TRUE(Troubleshoot::ORBConfigure("10.0.0.1", true, false));
  EXPECT_EQ(Read(), (Scopes{{"default", scope(own, "1")}}));
  Write({});
  EXPECT_TRUE(Troubleshoot::ORBConfigure("10.1.", false, true));
  Scopes masked{{"default", scope("iiop:///hostname_in_ior=$IP&reuse_addr=0", "0")}};
  masked["default"]["-PreferIPMask"] = "10.1.";
  EXPECT_EQ(Read(), masked);
  // A scope keeps an endpoint of its own only where it differs, and no other bidirectional.
  Write({{"default", {{"-ORBListenEndpoints", "iiop://old"}}},
         {"CLI", {{"-BiDirPolicy", "0"}, {"-ORBCallTimeout", "7"}}},
         {"GUI", scope("iiop://gui", "0")},
         {"VCM", {{"-ORBListenEndpoints", "iiop://vcm:5000"}}}});
  EXPECT_TRUE(Troubleshoot::ORBConfigure("10.0.0.1", true, false));
  const std::string ported = "iiop://:5000/hostname_in_ior=10.0.0.1&reuse_addr=0";
  EXPECT_EQ(Read(), (Scopes{{"default", scope(own, "1")},
                            {"CLI", {{"-ORBCallTimeout", "7"}}},
                            {"VCM", {{"-ORBListenEndpoints", ported}}}}));
  // An empty variable is there all the same, and becomes what it stands for.
  Write({{"GUI", {{"-ORBListenEndpoints", ""}}}});
  EXPECT_TRUE(Troubleshoot::ORBConfigure("10.0.0.1", false, false));
  EXPECT_EQ(Read(), (Scopes{{"default", scope(own, "0")}}));
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
