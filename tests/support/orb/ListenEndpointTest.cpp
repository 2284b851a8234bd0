#include <support/orb/ListenEndpoint.h>

#include <gtest/gtest.h>

namespace vq::orb {
namespace {

TEST(ListenEndpointTest, ReadsEveryForm) {
  const struct {
    const char* text;
    ListenEndpoint expected;  // host, port, span, TLS port, published host
  } kRows[] = {
      {"", {}},
      {"iiop://", {}},
      {"iiop://:5000", {"", 5000, 0, 0, ""}},
      {"iiop://gui.site:5000", {"gui.site", 5000, 0, 0, ""}},
      {"iiop://[::1]:5000", {"[::1]", 5000, 0, 0, ""}},
      {"iiop://[::1]", {"[::1]", 0, 0, 0, ""}},
      {"iiop://h:5000/portspan=10&ssl_port=5001", {"h", 5000, 10, 5001, ""}},
      {"iiop:///hostname_in_ior=10.0.0.1&reuse_addr=0", {"", 0, 0, 0, "10.0.0.1"}},
  };
  for (const auto& row : kRows) {
    std::string error;
    const auto endpoint = ParseListenEndpoint(row.text, error);
    ASSERT_TRUE(endpoint) << row.text << ": " << error;
    EXPECT_EQ(*endpoint, row.expected) << row.text;
  }
}

TEST(ListenEndpointTest, NamesThePieceThatItRefuses) {
  const struct {
    const char *text, *piece;
  } kRows[] = {
      {"tcp://h:1", "iiop://"},        {"iiop://h:port", "'port'"},
      {"iiop://h:70000", "'70000'"},   {"iiop://h:-1", "'-1'"},
      {"iiop://h:1/foo=1", "'foo=1'"}, {"iiop://h:1/ssl_port", "'ssl_port'"},
      {"iiop://h/portspan=3", "span"}, {"iiop://h:1/hostname_in_ior=", "'hostname_in_ior='"},
  };
  for (const auto& row : kRows) {
    std::string error;
    EXPECT_FALSE(ParseListenEndpoint(row.text, error)) << row.text;
    EXPECT_NE(error.find(row.piece), std::string::npos) << row.text << ": " << error;
  }
}

}  // namespace
}  // namespace vq::orb
