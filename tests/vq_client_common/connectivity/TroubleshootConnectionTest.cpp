#include <vq_client_common/connectivity/TroubleshootConnection.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <ifaddrs.h>

#include <gtest/gtest.h>

#include <support/configuration/ConfigAPIFactoryXML.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace vq::test {
namespace {

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

TEST_F(TroubleshootConnectionTest, AnEndpointPublishesAndListensEverywhere) {
  const struct {
    const char *before, *host, *after;
  } kRows[] = {
      {"", "10.0.0.1", "iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0"},
      {"iiop://h:5000", "10.0.0.1", "iiop://:5000/hostname_in_ior=10.0.0.1&reuse_addr=0"},
      {"iiop://h:0/foo", "a", "iiop:///hostname_in_ior=a&reuse_addr=0"},
      {"iiop://h/hostname_in_ior=b&reuse_addr=1", "", "iiop://"},
      {"iiop://h;", "a", "iiop://h;"},  // cannot be taken apart
      {"x", "a", "x"},
  };
  for (const auto& row : kRows) {
    std::string endpoint = row.before;
    TroubleshootConnection::TransformEndpoint(endpoint, row.host);
    EXPECT_EQ(endpoint, row.after) << row.before;
  }
}

TEST_F(TroubleshootConnectionTest, TheChoiceIsWrittenForEveryScope) {
  const std::string own = "iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0";
  const std::string masked = "iiop:///hostname_in_ior=$IP&reuse_addr=0";
  const struct {
    Scopes before;
    const char* address;
    bool biDir, isMask;
    Scopes after;
  } kRows[] = {
      // Nothing there: "default" gets all of it.
      {{},
       "10.0.0.1",
       true,
       false,
       {{"default", {{"-ORBListenEndpoints", own}, {"-BiDirPolicy", "1"}}}}},
      {{},
       "10.1.",
       false,
       true,
       {{"default",
         {{"-ORBListenEndpoints", masked}, {"-BiDirPolicy", "0"}, {"-PreferIPMask", "10.1."}}}}},
      // A scope keeps an endpoint of its own only where it differs, and no other bidirectional.
      {{{"default", {{"-ORBListenEndpoints", "iiop://old"}}},
        {"CLI", {{"-BiDirPolicy", "0"}, {"-ORBCallTimeout", "7"}}},
        {"GUI", {{"-ORBListenEndpoints", "iiop://gui"}, {"-BiDirPolicy", "0"}}},
        {"VCM", {{"-ORBListenEndpoints", "iiop://vcm:5000"}}}},
       "10.0.0.1",
       true,
       false,
       {{"default", {{"-ORBListenEndpoints", own}, {"-BiDirPolicy", "1"}}},
        {"CLI", {{"-ORBCallTimeout", "7"}}},
        {"VCM", {{"-ORBListenEndpoints", "iiop://:5000/hostname_in_ior=10.0.0.1&reuse_addr=0"}}}}},
      // An empty variable is there all the same, and becomes what it stands for.
      {{{"GUI", {{"-ORBListenEndpoints", ""}}}},
       "10.0.0.1",
       false,
       false,
       {{"default", {{"-ORBListenEndpoints", own}, {"-BiDirPolicy", "0"}}}}},
  };
  for (const auto& row : kRows) {
    Write(row.before);
    EXPECT_TRUE(TroubleshootConnection::ORBConfigure(row.address, row.biDir, row.isMask));
    EXPECT_EQ(Read(), row.after) << row.address;
  }
  EXPECT_TRUE(m_log.Has(4, "Going to publish: 10.1. (IP mask)"));
  EXPECT_TRUE(m_log.Has(4, "Saved configuration domain: vq"));
}

TEST_F(TroubleshootConnectionTest, AMalformedDomainIsRefusedAndKept) {
  m_directory.Write("root/config/vq.xml", "<domain");
  EXPECT_FALSE(TroubleshootConnection::ORBConfigure("10.0.0.1", true, false));
  long roundTrip = -1;
  EXPECT_FALSE(TroubleshootConnection::ORBInitAndTestCallback(true, "10.0.0.1", roundTrip, false));
  EXPECT_EQ(m_log.Count(1, "Failed to load configuration domain: vq"), 2);
  EXPECT_EQ(ReadFile(m_directory / "root/config/vq.xml"), "<domain");
}

TEST_F(TroubleshootConnectionTest, AChoiceThatCannotBeSavedGoesUnnoticed) {
  m_environment.Set("VQ_CONFIG_DOMAINS", "/proc/no-such-directory");
  EXPECT_TRUE(TroubleshootConnection::ORBConfigure("10.0.0.1", true, false));
}

TEST_F(TroubleshootConnectionTest, FindsTheAddressesThatTheSystemHas) {
  std::set<std::string> expected;
  ifaddrs* found = nullptr;
  ASSERT_EQ(::getifaddrs(&found), 0);
  for (const ifaddrs* one = found; one != nullptr; one = one->ifa_next) {
    if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET) continue;
    char text[INET_ADDRSTRLEN];
    ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(one->ifa_addr)->sin_addr, text,
                sizeof text);
    if (std::string(text) != "127.0.0.1") expected.insert(text);
  }
  ::freeifaddrs(found);

  IPAddressInfo kept{"kept", "", false, 0};
  std::vector<IPAddressInfo*> list{&kept};
  unsigned int index = 77;
  TroubleshootConnection::IdentifyIPAddresses(list, index);
  EXPECT_EQ(index, expected.empty() ? 77U : 1U);
  std::set<std::string> addresses;
  for (std::size_t i = 1; i < list.size(); ++i) {
    const std::unique_ptr<IPAddressInfo> info(list[i]);
    if (info->ipAddress.find(':') == std::string::npos) addresses.insert(info->ipAddress);
    EXPECT_FALSE(info->hostName.empty());
    EXPECT_FALSE(info->isTested);
    EXPECT_EQ(info->roundTrip, 0);
  }
  EXPECT_EQ(addresses, expected);
}

TEST_F(TroubleshootConnectionTest, TheTimeoutIsFiveSecondsUntilItIsSet) {
  EXPECT_EQ(TroubleshootConnection::GetTimeout4TestCallback(), 5000);
  TroubleshootConnection::SetTimeout4TestCallback(1);
  EXPECT_EQ(TroubleshootConnection::GetTimeout4TestCallback(), 1);
  TroubleshootConnection::SetTimeout4TestCallback(5000);
}

TEST_F(TroubleshootConnectionTest, AReferenceThatLeadsNowhereSaysWhy) {
  std::string host = "kept";
  std::string port = "kept";
  EXPECT_FALSE(
      TroubleshootConnection::GetNetworkInterface4Server(CORBA::Object::_nil(), host, port, E_GSR));
  EXPECT_FALSE(TroubleshootConnection::GetNetworkInterface4Server(nullptr, host, port, E_GSR));
  EXPECT_EQ(m_log.Count(1, "Nil"), 2);
  EXPECT_EQ(host + port, "keptkept");
}

}  // namespace
}  // namespace vq::test
