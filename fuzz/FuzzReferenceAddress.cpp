// Object references, which come from the naming service: any bytes are read or refused.

#include <fuzz/Require.h>
#include <support/orb/ReferenceAddress.h>
#include <support/security/ChallengeResponse.h>

namespace {

void Read(const std::string& text) {
  constexpr std::size_t kLongest = 255;
  vq::orb::ReferenceAddress address{"kept", "kept"};
  const auto fault = vq::orb::AddressOfText(text, address);
  vq::Require(fault == vq::orb::AddressFault::kNone
                  ? !address.host.empty() &&
                        address.host.size() + 1 + address.port.size() <= kLongest
                  : address.host == "kept" && address.port == "kept");
  for (const auto& endpoint : vq::orb::EndpointsOfText(text)) {
    vq::Require(endpoint.port > 0 && endpoint.port <= 65535);
  }
}

}  // namespace

// The bytes as the reference's string, and as the content of such a string.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read(vq::Text(data, size));
  std::string text = "IOR:";
  vq::AppendHex({data, size}, text);
  Read(text);
  return 0;
}
