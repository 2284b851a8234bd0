// Listen endpoint strings, which administrators write: the class that rewrites them and the parser
// of the ORB's settings accept or refuse any text, and what the class writes it reads as the same.

#include <stdexcept>

#include <fuzz/Require.h>
#include <support/orb/ListenEndpoint.h>
#include <vq_client_common/connectivity/ORBEndpoint.h>

namespace {

void Rewrite(const std::string& text) {
  try {
    ORBEndpoint endpoint;
    const bool accepted = endpoint.fromString(text);
    const std::string written = endpoint.toString();
    if (!accepted || text.empty() || text.find(';') != std::string::npos) return;
    vq::Require(endpoint.fromString(written) && endpoint.toString() == written);
  } catch (const std::out_of_range& e) {
    vq::Require(e.what() == std::string("invalid string position"));
  }
}

void Parse(const std::string& text) {
  std::string error;
  const auto endpoint = vq::orb::ParseListenEndpoint(text, error);
  vq::Require(endpoint
                  ? endpoint->port >= 0 && endpoint->port <= 65535 && endpoint->tlsPort <= 65535
                  : !error.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vq::Text(data, size);
  Rewrite(text);
  Parse(text);
  return 0;
}
