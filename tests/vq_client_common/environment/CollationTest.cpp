#include <vq_client_common/environment/Collation.h>

#include <climits>
#include <clocale>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>

namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// C.UTF-8 orders by code point on every machine; every test puts back what it changed.
class CollationTest : public ::testing::Test {
 protected:
  CollationTest() { EXPECT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr); }
  ~CollationTest() override {
    std::setlocale(LC_ALL, m_former.c_str());
    Osl_UnicodeConfiguration::SetCJKMode(false);
  }
  const std::string m_former = std::setlocale(LC_ALL, nullptr);
};

TEST_F(CollationTest, CaseCountsOnlyInCJKMode) {
  const struct {
    const char *a, *b;
    int folded, exact;
  } cases[] = {{"abc", "ABC", 0, 1},
               {"a", "B", -1, 1},
               {"\xc3\xa9", "\xc3\x89", 0, 1},  // e with acute, small and capital
               {"a", "aa", -1, -1},
               {nullptr, "", 0, 0},
               {"a\xff", "A\xff", 0, 1},
               {"\xc3", "\xc3\xa9", 1, -1}};  // cut in the middle of a character
  for (const auto& [a, b, folded, exact] : cases) {
    for (const bool isCJK : {false, true}) {
      Osl_UnicodeConfiguration::SetCJKMode(isCJK);
      EXPECT_EQ(Sign(stricoll(a, b, false)), isCJK ? exact : folded) << b;
      EXPECT_EQ(Sign(stricoll(a, b, true)), folded) << b;
    }
  }
}

TEST_F(CollationTest, NoMoreThanTheGivenCharactersCount) {
  const struct {
    const char *a, *b;
    unsigned n;
    int result;
  } cases[] = {{"abc", "abd", 2, 0},
               {"abc", "abd", UINT_MAX, -1},
               {"a", "A", 1, 1},
               {"a", "b", 0, 0},
               {"ab", "a", 1, 0},
               {nullptr, "a", 5, -1},
               {"\xc3\xa9x", "\xc3\xa9y", 1, 0},  // a character is more than a byte
               {"\xc3\xa9x", "\xc3\xa9y", 2, -1},
               {"\xffx", "\xffy", 1, 0}};
  for (const auto& [a, b, n, result] : cases) EXPECT_EQ(Sign(strncoll(a, b, n)), result) << b << n;
}

// std::sort is undefined for an order that goes in circles.
TEST_F(CollationTest, TextsOfAnyBytesHaveOneOrder) {
  std::mt19937 random(20240229);
  const std::string bytes = "aA\xff\xc3\xa9\x89\xed\xb2 -";
  std::vector<std::string> texts(60);
  for (std::string& text : texts) {
    for (auto length = random() % 5; length > 0; --length) text += bytes[random() % bytes.size()];
  }
  const auto order = [&](std::size_t a, std::size_t b) {
    return Sign(stricoll(texts[a].c_str(), texts[b].c_str(), true));
  };
  for (std::size_t i = 0; i < texts.size() * texts.size() * texts.size(); ++i) {
    const std::size_t a = i % 60, b = i / 60 % 60, c = i / 3600;
    ASSERT_EQ(order(a, b), -order(b, a));
    ASSERT_TRUE(order(a, b) > 0 || order(b, c) > 0 || order(a, c) <= 0);
  }
}

}  // namespace
