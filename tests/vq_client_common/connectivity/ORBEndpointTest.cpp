#include <vq_client_common/connectivity/ORBEndpoint.h>

#include <stdexcept>

#include <gmock/gmock.h>

#include <tests/fixture/LogCapture.h>

namespace {

using ::testing::ElementsAre;

struct ORBEndpointTest : ::testing::Test {
  vq::test::LogCapture m_log{4};
};

TEST_F(ORBEndpointTest, ParsesAndLogsRefusals) {
  // A text, the result of toString, and the log line when it is refused.
  const char* const cases[][3] = {
      {"", "iiop:///reuse_addr=0", ""},
      {"iiop://host:5000/ssl_port=5001&portspan=10",
       "iiop://host:5000/ssl_port=5001&portspan=10&reuse_addr=0", ""},
      {"iiop://host/reuse_addr=1&", "iiop://host", ""},
      {"iiop://host/reuse_addr=1&hostname_in_ior=a", "iiop://host/hostname_in_ior=a", ""},
      {"iiop://host/hostname_in_ior=", "iiop://host/reuse_addr=0", ""},
      {"iiop://host:0", "iiop://host/reuse_addr=0", "2 0 is not a valid port number."},
      {"iiop://host:5000/portspan=10&ssl_port=5001", "iiop://host:5000/ssl_port=5001&reuse_addr=0",
       "2 It's impossible to use a port range with no base port..."},
      {"iiop://host/ssl_port=5001&portspan=10", "iiop://host/ssl_port=5001&reuse_addr=0",
       "2 It's impossible to use a port range with no base port..."},
      {"iiop://host:5000/ssl_port=5001&portspan=0", "iiop://host:5000/ssl_port=5001&reuse_addr=0",
       "2 portspan=0 is not a valid port span."},
      {"iiop://host/ssl_port=x&reuse_addr=1", "iiop://host",
       "2 ssl_port=x is not a valid SSL port number."},
      {"iiop://host/&reuse_addr=1", "iiop://host",
       "2 Ignoring invalid/unidentified Endpoint option: "},
      // The first seven characters are removed, whatever they are.
      {"corba://host:5000", "iiop:///reuse_addr=0",
       "2 Ignoring invalid/unidentified Endpoint option: host:5000"},
      {"iiop://:99999999999", "iiop://:2147483647/reuse_addr=0", ""}};
  for (const auto& [text, written, message] : cases) {
    ORBEndpoint endpoint;
    EXPECT_EQ(endpoint.fromString(text), *message == '\0') << text;
    EXPECT_EQ(endpoint.toString(), written);
    std::vector<std::string> logged(*message != '\0' ? 1 : 0, message);
    EXPECT_EQ(m_log.Take(), logged) << text;
  }
}

// The text after a ";" is cut by positions counted on the whole text.
TEST_F(ORBEndpointTest, CutsAtSemicolon) {
  ORBEndpoint endpoint;
  EXPECT_TRUE(endpoint.fromString("iiop://h;1234567"));  // the body is "h;123456"
  EXPECT_EQ(endpoint.getHostname(), "h;123456");
  EXPECT_THAT(m_log.Take(), ElementsAre("4 Ignoring extra unidentified Endpoint information: "));
  EXPECT_TRUE(endpoint.fromString("iiop://h/hostname_in_ior=a;123456"));
  for (const char* text : {"iiop://h;12345", "iiop://h;", "iiop://;", ";", "iiop:/", "x"}) {
    EXPECT_THAT([&] { endpoint.fromString(text); },
                ::testing::ThrowsMessage<std::out_of_range>("invalid string position"))
        << text;
  }
  EXPECT_EQ(endpoint.getHostInIOR(), "a;123456");
}

TEST_F(ORBEndpointTest, ConstructorFindsProtocolAnywhere) {
  // The first seven characters are removed wherever the protocol is.
  EXPECT_EQ(ORBEndpoint("12iiop://host").toString(), "iiop:///reuse_addr=0");
  EXPECT_THAT(m_log.Take(), ElementsAre("2 Ignoring invalid/unidentified Endpoint option: /host"));
  EXPECT_EQ(ORBEndpoint("host:5000").getHostname(), "");
  EXPECT_THAT(m_log.Take(), ElementsAre("2 Failed to identify ORBEndpoint from: host:5000"));
}

TEST_F(ORBEndpointTest, KnowsTheDefault) {
  ORBEndpoint endpoint;
  EXPECT_FALSE(endpoint.isDefault());
  endpoint.setReuseAddr(1);
  endpoint.setPortOptions({0, 0, 7});
  EXPECT_TRUE(endpoint.isDefault());
  for (const ORBEndpoint::PortOptions& options :
       {ORBEndpoint::PortOptions{0, 5001, 0}, {5000, 0, 0}}) {
    endpoint.setPortOptions(options);
    EXPECT_FALSE(endpoint.isDefault());
  }
}

}  // namespace
