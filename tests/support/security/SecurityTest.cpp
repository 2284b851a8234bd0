#include <support/security/ChallengeResponse.h>
#include <support/security/SecretString.h>
#include <support/security/StupidEncrypt.h>

#include <memory>
#include <random>

#include <tests/fixture/UnitTest.h>

namespace {

// The known answers were computed by another implementation of SHA-256, HMAC and base64url, and of
// the rule in StupidEncrypt's header.
const std::string kBytes = std::string("\0\xff", 2) + std::string(100, 'x');

TEST(ChallengeResponseTest, KnownAnswers) {
  const auto sum = [](std::string text) {
    ChkSum(text, text);  // An argument may be the result.
    return text;
  };
  vq::test::ExpectRows(sum, {" -> 47DEQpj8HBSa-_TImW-5JCeuQeRkm5NMpJWZG3hSuFU",
                             "secret -> K7gNU3sdo-OL0wNhqoVWhr3g6s1xYv72ol_pe_Unols",
                             kBytes + " -> _-LTu1wZ5My8uVxj-J34w9xXkk8cnwmcVQScpobj_NM"});
  const auto response = [](std::string password) {
    const std::string first = vq::test::Take(password), second = vq::test::Take(password);
    MakeChallengeResponse(first, second, password, password);
    return password;
  };
  vq::test::ExpectRows(
      response,
      {"   -> 853c7403937d8b6239569b184eb7993fc5f751aefcea28f2c863858e2d29c50b",
       "4711 0815 K7gNU3sd -> ee11e07bcf19ad85d730cfc0887f61dc3ed7d033958a4e63190adc57b0de1b8e",
       "ab c pw -> 27b328dc13a7329b70013fb1b8f588e8bb5793e324d09c9a2c5c672382be0d19",
       "a bc pw -> 13871503031044f6945a4591a989bd3babd985b9f7a0c12cd03df5d933fd22b0",
       kBytes + "  " + kBytes +
           " -> bac86ced13b567c3f2d0b43c58af16bf0d2f1c24151564ea5176ef802a1ee140"});
}

std::string Encrypted(const std::string& text) {
  std::string out = "left over";
  StupidEncrypt(text, out);
  return out;
}

// A byte becomes a line end exactly when it is one: the archive's lines rest on that.
TEST(StupidEncryptTest, EveryTextComesBack) {
  EXPECT_EQ(Encrypted("T1/T2"), "\x18\x2d\xf6\x4c\x32");
  EXPECT_EQ(Encrypted({"\0\t\n\v\xff", 5}), "\xc4\xf5\x0a\xe2\xf7");
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

TEST(WipeTest, WholeBuffer) {
  for (const std::size_t length : {0U, 5U, 15U, 16U, 1000U}) {
    std::string text(length, 's');
    text.resize(length / 2);  // The rest of the buffer still holds the secret.
    const char* const before = text.data();
    vq::Wipe(text);
    EXPECT_TRUE(text.empty());
    ASSERT_EQ(text.data(), before) << length;
    EXPECT_EQ(std::count(before, before + text.capacity(), 's'), 0) << length;
  }
}

// Whether the bytes of the object itself show the secret: short strings live there.
template <typename T>
bool Shows(const T& object) {
  const std::string_view bytes(reinterpret_cast<const char*>(&object), sizeof(object));
  return bytes.find("ecret7") != std::string_view::npos;
}

TEST(SecretStringTest, Wipes) {
  vq::SecretString source("secret7");
  ASSERT_TRUE(Shows(source));
  vq::SecretString target(std::move(source));
  EXPECT_FALSE(Shows(source));  // NOLINT(bugprone-use-after-move)
  std::string given = "secret7";
  EXPECT_EQ(vq::SecretString(std::move(given)).Text(), "secret7");
  EXPECT_FALSE(Shows(given));  // NOLINT(bugprone-use-after-move)
  vq::SecretString third("another");
  third = std::move(target);
  EXPECT_EQ(third.Text(), "secret7");
  EXPECT_FALSE(Shows(target));  // NOLINT(bugprone-use-after-move)

  vq::SecretString& same = third;
  third = same;
  third = std::move(same);
  EXPECT_EQ(third.Text(), "secret7");
  // A shorter one leaves the end of a longer one in its place, one on the heap the whole.
  for (const std::string text : {"ab", "a text that does not fit into the object"}) {
    const vq::SecretString other(text);
    third = vq::SecretString("-- --- -secret7");
    third = other;
    EXPECT_EQ(third.Text(), text);
    EXPECT_FALSE(Shows(third));
  }

  alignas(vq::SecretString) unsigned char storage[sizeof(vq::SecretString)];
  std::destroy_at(std::construct_at(reinterpret_cast<vq::SecretString*>(storage), "secret7"));
  EXPECT_FALSE(Shows(storage));
}

}  // namespace
