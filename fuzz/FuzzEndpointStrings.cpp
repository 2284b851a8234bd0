// Listen endpoint strings, which administrators write: the class that rewrites them and the parser
// of the ORB's settings take any text, and what they accept they understand again.

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
    if (!endpoint.fromString(written) || endpoint.toString() != written) std::abort();
  } catch (const std::out_of_range& e) {
    if (std::string(e.what()) != "invalid string position") std::abort();
  }
}

void Parse(const std::string& text) {
  std::string error;
  const auto endpoint = vq::orb::ParseListenEndpoint(text, error);
  if (!endpoint) {
    if (error.empty()) std::abort();
    return;
  }
  if (endpoint->port < 0 || endpoint->port > 65535 || endpoint->tlsPort > 65535) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vq::Text(data, size);
  Rewrite(text);
  Parse(text);
  return 0;
}
