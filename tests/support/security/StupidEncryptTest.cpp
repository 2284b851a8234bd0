#include <support/security/StupidEncrypt.h>

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

// Computed by another implementation of the rule in the header.
TEST(StupidEncryptTest, KnownAnswers) {
  EXPECT_EQ(Encrypted("T1/T2"), "\x18\x2d\xf6\x4c\x32");
  EXPECT_EQ(Encrypted({"\0\t\n\v\xff", 5}), "\xc4\xf5\x0a\xe2\xf7");
}

// A byte becomes a line end exactly when it is one: the archive's lines rest on that.
TEST(StupidEncryptTest, EveryTextComesBackAndKeepsItsLines) {
  std::mt19937 random(6);
  for (std::size_t length = 0; length < 1100; ++length) {
    std::string text(length, '\0');
    for (char& character : text) character = static_cast<char>(random());
    const std::string hidden = Encrypted(text);
    for (std::size_t i = 0; i < length; ++i) ASSERT_EQ(hidden[i] == '\n', text[i] == '\n');
    std::string shown = "left over";
    StupidDecrypt(hidden, shown);
    ASSERT_EQ(shown, text);
    StupidEncrypt(shown, shown);
    ASSERT_EQ(shown, hidden);
    StupidDecrypt(shown, shown);
    ASSERT_EQ(shown, text);
  }
}

}  // namespace
