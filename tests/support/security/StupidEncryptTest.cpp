#include <support/security/StupidEncrypt.h>

#include <cstddef>
#include <random>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string Encrypted(const std::string& text) {
  std::string out = "left over";
  StupidEncrypt(text, out);
  return out;
}

std::string Decrypted(const std::string& text) {
  std::string out = "left over";
  StupidDecrypt(text, out);
  return out;
}

// Computed by another implementation of the rule in the header.
TEST(StupidEncryptTest, KnownAnswers) {
  EXPECT_EQ(Encrypted(""), "");
  EXPECT_EQ(Encrypted("T1/T2"), "\x18\x2d\xf6\x4c\x32");
  EXPECT_EQ(Encrypted(std::string(3, '\0')), "\xc4\xec\xf4");
  EXPECT_EQ(Encrypted("a\na"), "\x25\x0a\x51");
  EXPECT_EQ(Encrypted(std::string("\0\t\n\v\xff", 5)), "\xc4\xf5\x0a\xe2\xf7");
}

// The property that the archive's lines rest on: at every state, a byte becomes a line end exactly
// when it is one. Every state occurs behind the values of a first byte.
TEST(StupidEncryptTest, LineEndsStayAndNoneIsMade) {
  for (int before = 0; before < 256; ++before) {
    for (int byte = 0; byte < 256; ++byte) {
      const std::string text{static_cast<char>(before), static_cast<char>(byte)};
      const std::string hidden = Encrypted(text);
      ASSERT_EQ(hidden.size(), 2U);
      ASSERT_EQ(hidden[0] == '\n', before == '\n');
      ASSERT_EQ(hidden[1] == '\n', byte == '\n') << before << ' ' << byte;
      ASSERT_EQ(Decrypted(hidden), text);
    }
  }
}

TEST(StupidEncryptTest, EveryTextComesBack) {
  std::mt19937 random(6);
  std::uniform_int_distribution<int> byte(0, 255);
  for (std::size_t length = 0; length < 1100; ++length) {
    std::string text(length, '\0');
    for (char& character : text) character = static_cast<char>(byte(random));
    ASSERT_EQ(Decrypted(Encrypted(text)), text) << length;
    ASSERT_EQ(Encrypted(Decrypted(text)), text) << length;
    std::string inPlace = text;
    StupidEncrypt(inPlace, inPlace);
    ASSERT_EQ(inPlace, Encrypted(text));
    StupidDecrypt(inPlace, inPlace);
    ASSERT_EQ(inPlace, text);
  }
}

TEST(StupidEncryptTest, TheStateIsCarried) {
  const std::string hidden = Encrypted("aaaaaaaa");
  EXPECT_GT(std::set<char>(hidden.begin(), hidden.end()).size(), 2U);
}

}  // namespace
