#include <support/security/SecretString.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace {

// Whether the bytes of the object itself show the secret: short strings live there.
template <typename T>
bool Shows(const T& object) {
  const std::string_view bytes(reinterpret_cast<const char*>(&object), sizeof(object));
  return bytes.find("ecret7") != std::string_view::npos;
}

TEST(WipeTest, OverwritesTheWholeBuffer) {
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

TEST(SecretStringTest, WipesWhenDestroyedAssignedAndMovedFrom) {
  vq::SecretString source("secret7");
  ASSERT_TRUE(Shows(source));
  vq::SecretString target(std::move(source));
  EXPECT_FALSE(Shows(source));  // NOLINT(bugprone-use-after-move)
  vq::SecretString third("another");
  third = std::move(target);
  EXPECT_EQ(third.Text(), "secret7");
  EXPECT_FALSE(Shows(target));  // NOLINT(bugprone-use-after-move)

  vq::SecretString& same = third;
  third = same;
  third = std::move(same);
  EXPECT_EQ(third.Text(), "secret7");
  const vq::SecretString fourth("another");
  third = fourth;
  EXPECT_EQ(third.Text(), fourth.Text());
  EXPECT_FALSE(Shows(third));

  alignas(vq::SecretString) unsigned char storage[sizeof(vq::SecretString)];
  auto* const object = std::construct_at(reinterpret_cast<vq::SecretString*>(storage), "secret7");
  std::destroy_at(object);
  EXPECT_FALSE(Shows(storage));
}

}  // namespace
