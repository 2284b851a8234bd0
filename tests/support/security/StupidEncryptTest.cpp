#include <support/security/StupidEncrypt.h>

#include <algorithm>
#include <cstddef>
#include <random>
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
  EXPECT_EQ(Encrypted("T1/T2"), "\xae\x03\x57\xcf\x26");
  EXPECT_EQ(Encrypted(std::string(3, '\0')), "\x5b\x80\xa5");
  EXPECT_EQ(Encrypted("a\na"), "\xbb\x0a\x41");
  EXPECT_EQ(Encrypted(std::string("\0\t\n\v\xff", 5)), "\x5b\x89\x0a\xb8\xdc");
}

// The property that the archive's lines rest on: at every state, a byte becomes a line end exactly
// when it is one. All 255 states occur behind the 255 values of a first byte.
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
  EXPECT_GT(std::count_if(hidden.begin(), hidden.end(), [&](char c) { return c != hidden[0]; }), 5);
}

}  // namespace
