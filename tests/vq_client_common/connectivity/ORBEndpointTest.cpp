#include <vq_client_common/connectivity/ORBEndpoint.h>

#include <tests/fixture/UnitTest.h>

namespace {

TEST(ORBEndpointTest, Parses) {
  const auto parsed = [](const std::string& text) {  // "!" for a text that is refused
    ORBEndpoint endpoint;
    const bool accepted = endpoint.fromString(text);
    return (accepted ? "" : "! ") + endpoint.toString();
  };
  vq::test::ExpectRows(
      parsed,
      {" -> iiop:///reuse_addr=0",
       "iiop://host:5000/ssl_port=5001&portspan=10 -> "
       "iiop://host:5000/ssl_port=5001&portspan=10&reuse_addr=0",
       "iiop://host/reuse_addr=1& -> iiop://host",
       "iiop://host/reuse_addr=1&hostname_in_ior=a -> iiop://host/hostname_in_ior=a",
       "iiop://host/hostname_in_ior= -> iiop://host/reuse_addr=0",
       "iiop://host:0 -> ! iiop://host/reuse_addr=0",
       // A range needs a base port.
       "iiop://host:5000/portspan=10&ssl_port=5001 -> ! "
       "iiop://host:5000/ssl_port=5001&reuse_addr=0",
       "iiop://host/ssl_port=5001&portspan=10 -> ! iiop://host/ssl_port=5001&reuse_addr=0",
       "iiop://host:5000/ssl_port=5001&portspan=0 -> ! iiop://host:5000/ssl_port=5001&reuse_addr=0",
       "iiop://host/ssl_port=x&reuse_addr=1 -> ! iiop://host",
       "iiop://host/&reuse_addr=1 -> ! iiop://host",
       // The first seven characters are removed, whatever they are.
       "corba://host:5000 -> ! iiop:///reuse_addr=0",
       "iiop://:99999999999 -> iiop://:2147483647/reuse_addr=0"});
}

// The text after a ";" is cut by positions counted on the whole text.
TEST(ORBEndpointTest, CutsAtSemicolon) {
  ORBEndpoint endpoint;
  EXPECT_TRUE(endpoint.fromString("iiop://h;1234567"));  // the body is "h;123456"
  EXPECT_EQ(endpoint.getHostname(), "h;123456");
  EXPECT_TRUE(endpoint.fromString("iiop://h/hostname_in_ior=a;123456"));
  for (const char* text : {"iiop://h;12345", "iiop://h;", "iiop://;", ";", "iiop:/", "x"}) {
    EXPECT_THAT([&] { endpoint.fromString(text); },
                ::testing::ThrowsMessage<std::out_of_range>("invalid string position"))
        << text;
  }
  EXPECT_EQ(endpoint.getHostInIOR(), "a;123456");
}

TEST(ORBEndpointTest, ConstructorFindsProtocolAnywhere) {
  // The first seven characters are removed wherever the protocol is.
  EXPECT_EQ(ORBEndpoint("host/iiop://x").getHostname(), "op");
  EXPECT_EQ(ORBEndpoint("host:5000").getHostname(), "");
}

TEST(ORBEndpointTest, KnowsTheDefault) {
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
