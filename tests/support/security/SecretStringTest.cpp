#include <support/security/SecretString.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

// Whether the bytes of the object itself show `text`: short strings live there.
template <typename T>
bool Shows(const T& object, const std::string& text) {
  const auto* bytes = reinterpret_cast<const char*>(&object);
  return std::search(bytes, bytes + sizeof(object), text.begin(), text.end()) !=
         bytes + sizeof(object);
}

TEST(WipeTest, OverwritesTheWholeBuffer) {
  for (const std::size_t length : {0U, 5U, 15U, 16U, 1000U}) {
    std::string text(length, 's');
    text.resize(length / 2);  // The rest of the buffer still holds the secret.
    const char* const before = text.data();
    vq::Wipe(text);
    EXPECT_TRUE(text.empty());
    ASSERT_EQ(text.data(), before) << length;
    EXPECT_EQ(std::find(before, before + text.capacity(), 's'), before + text.capacity()) << length;
  }
}

TEST(WipeTest, LeavesNothingInTheObject) {
  std::string text = "secret7";
  ASSERT_TRUE(Shows(text, "secret7"));
  vq::Wipe(text);
  EXPECT_FALSE(Shows(text, "ecret7"));
}

TEST(SecretStringTest, WipesWhenDestroyedAssignedAndMovedFrom) {
  vq::SecretString source("secret7");
  vq::SecretString target(std::move(source));
  EXPECT_EQ(target.Text(), "secret7");
  EXPECT_FALSE(Shows(source, "ecret7"));  // NOLINT(bugprone-use-after-move)

  vq::SecretString third("another");
  third = std::move(target);
  EXPECT_EQ(third.Text(), "secret7");
  EXPECT_FALSE(Shows(target, "ecret7"));  // NOLINT(bugprone-use-after-move)

  const vq::SecretString fourth("another");
  third = fourth;
  EXPECT_EQ(third.Text(), fourth.Text());
  EXPECT_FALSE(Shows(third, "ecret7"));

  alignas(vq::SecretString) unsigned char storage[sizeof(vq::SecretString)];
  auto* const object = new (storage) vq::SecretString("secret7");
  ASSERT_TRUE(Shows(storage, "secret7"));
  object->~SecretString();
  EXPECT_FALSE(Shows(storage, "ecret7"));
}

TEST(SecretStringTest, AssigningToItselfKeepsTheText) {
  vq::SecretString secret("secret7");
  vq::SecretString& same = secret;
  secret = same;
  EXPECT_EQ(secret.Text(), "secret7");
  secret = std::move(same);
  EXPECT_EQ(secret.Text(), "secret7");
}

}  // namespace
