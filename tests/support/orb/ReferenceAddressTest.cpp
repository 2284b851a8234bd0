#include <support/orb/ReferenceAddress.h>

#include <string>

#include <gtest/gtest.h>

namespace vq::orb {
namespace {

// A reference of type IDL:T:1.0 in both byte orders, with the profile's host and port 0x1388
// (5000).
std::string Ior(bool little, const std::string& host, unsigned tag = 0) {
  std::string bytes;
  const auto pad = [](std::string& to, std::size_t size) {
    while (to.size() % size != 0) to += '\0';
  };
  const auto number = [&](std::string& to, unsigned value, unsigned size) {
    pad(to, size);
    for (unsigned i = 0; i < size; ++i) {
      const unsigned place = little ? i : size - 1 - i;
      to += static_cast<char>((value >> (8 * place)) & 0xFFU);
    }
  };
  const auto text = [&](std::string& to, const std::string& value) {
    number(to, static_cast<unsigned>(value.size()) + 1, 4);
    to += value + '\0';
  };
  std::string profile(1, little ? '\1' : '\0');
  profile += "\1\2";
  text(profile, host);
  number(profile, 5000, 2);

  bytes += little ? '\1' : '\0';
  text(bytes, "IDL:T:1.0");
  number(bytes, 1, 4);
  number(bytes, tag, 4);
  number(bytes, static_cast<unsigned>(profile.size()), 4);
  bytes += profile;

  std::string ior = "IOR:";
  constexpr char kDigits[] = "0123456789abcdef";
  for (const char c : bytes) {
    const auto value = static_cast<unsigned char>(c);
    ior += kDigits[value >> 4U];
    ior += kDigits[value & 0xFU];
  }
  return ior;
}

TEST(ReferenceAddressTest, ReadsBothByteOrders) {
  for (const bool little : {false, true}) {
    ReferenceAddress address;
    ASSERT_EQ(AddressOfText(Ior(little, "server.site"), address), AddressFault::kNone);
    EXPECT_EQ(address.host, "server.site");
    EXPECT_EQ(address.port, "5000");
  }
}

TEST(ReferenceAddressTest, SaysWhyThereIsNone) {
  ReferenceAddress address{"kept", "1"};
  EXPECT_EQ(AddressOf(CORBA::Object::_nil(), address), AddressFault::kNil);
  EXPECT_EQ(AddressOfText("IOR:000000000000000100000000000000000000", address), AddressFault::kNil);
  EXPECT_EQ(AddressOfText("corbaloc::h:1/X", address), AddressFault::kInvalidStub);
  EXPECT_EQ(AddressOfText("IOR:0z", address), AddressFault::kInvalidStub);
  EXPECT_EQ(AddressOfText(Ior(true, "h", 1), address), AddressFault::kInvalidProfile);
  EXPECT_EQ(AddressOfText(Ior(true, ""), address), AddressFault::kNoAddress);
  EXPECT_EQ(AddressOfText(Ior(true, std::string(251, 'h')), address), AddressFault::kNoAddress);
  EXPECT_EQ(address.host, "kept");
}

TEST(ReferenceAddressTest, EveryTruncationIsAFaultAndNoCrash) {
  const std::string whole = Ior(true, "server.site");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    ReferenceAddress address;
    EXPECT_NE(AddressOfText(whole.substr(0, length), address), AddressFault::kNone) << length;
  }
}

}  // namespace
}  // namespace vq::orb
