// Object references, which come from the naming service: the address is read from any bytes, or
// none is.

#include <fuzz/Require.h>
#include <support/orb/ReferenceAddress.h>

namespace {

void Read(const std::string& text) {
  constexpr std::size_t kLongest = 255;
  vq::orb::ReferenceAddress address{"kept", "kept"};
  const auto fault = vq::orb::AddressOfText(text, address);
  if (fault == vq::orb::AddressFault::kNone) {
    if (address.host.empty() || address.host.size() + 1 + address.port.size() > kLongest) {
      std::abort();
    }
  } else if (address.host != "kept" || address.port != "kept") {
    std::abort();
  }
}

}  // namespace

// The bytes as the reference's string, and as the content of such a string.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read(vq::Text(data, size));
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "IOR:";
  for (std::size_t i = 0; i < size; ++i) {
    text += kDigits[data[i] >> 4U];
    text += kDigits[data[i] & 0xFU];
  }
  Read(text);
  return 0;
}
