#include <vq_client_common/environment/Collation.h>

#include <clocale>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>

namespace {

constexpr unsigned kAll = std::numeric_limits<unsigned>::max();

int Sign(int value) {
  return (value > 0) - (value < 0);
}

// C.UTF-8 orders by code point on every machine; every test puts back what it changed.
class CollationTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr); }
  void TearDown() override {
    std::setlocale(LC_ALL, m_former.c_str());
    Osl_UnicodeConfiguration::SetCJKMode(false);
  }
  const std::string m_former = std::setlocale(LC_ALL, nullptr);
};

TEST_F(CollationTest, CaseCountsOnlyInCJKMode) {
  const struct {
    const char* a;
    const char* b;
    int folded;
    int exact;
  } cases[] = {
      {"abc", "ABC", 0, 1},
      {"a", "B", -1, 1},
      {"\xc3\xa9", "\xc3\x89", 0, 1},  // e with acute, small and capital
      {"\xc3\xa9", "f", 1, 1},
      {"a", "aa", -1, -1},
      {"", "", 0, 0},
      {"", "a", -1, -1},
      {"\xff", "\xff", 0, 0},
      {"a\xff", "A\xff", 0, 1},
      {"\xc3", "\xc3\xa9", 1, -1},  // cut in the middle of a character
      {"\xff", "z", 1, 1},
  };
  for (const auto& [a, b, folded, exact] : cases) {
    SCOPED_TRACE(std::string(a) + " and " + b);
    Osl_UnicodeConfiguration::SetCJKMode(false);
    EXPECT_EQ(Sign(stricoll(a, b, false)), folded);
    EXPECT_EQ(Sign(stricoll(a, b, true)), folded);
    Osl_UnicodeConfiguration::SetCJKMode(true);
    EXPECT_EQ(Sign(stricoll(a, b, false)), exact);
    EXPECT_EQ(Sign(stricoll(a, b, true)), folded);
  }
  EXPECT_EQ(stricoll(nullptr, "", false), 0);
}

TEST_F(CollationTest, NoMoreThanTheGivenCharactersCount) {
  const struct {
    const char* a;
    const char* b;
    unsigned n;
    int result;
  } cases[] = {
      {"abc", "abd", 2, 0},
      {"abc", "abd", 3, -1},
      {"abc", "abd", kAll, -1},
      {"a", "A", 1, 1},
      {"a", "b", 0, 0},
      {"ab", "a", 1, 0},
      {"ab", "a", 2, 1},
      {"", "", kAll, 0},
      {nullptr, "a", 5, -1},
      {"\xc3\xa9x", "\xc3\xa9y", 1, 0},  // a character is more than a byte
      {"\xc3\xa9x", "\xc3\xa9y", 2, -1},
      {"\xffx", "\xffy", 1, 0},
  };
  for (const auto& [a, b, n, result] : cases) {
    EXPECT_EQ(Sign(strncoll(a, b, n)), result) << (a != nullptr ? a : "null") << ' ' << n;
  }
}

// std::sort is undefined for an order that goes in circles.
TEST_F(CollationTest, TextsOfAnyBytesHaveOneOrder) {
  std::mt19937 random(20240229);
  const std::string bytes = "aA\xff\xc3\xa9\x89\xed\xb2 -";
  for (const char* locale : {"C", "C.UTF-8"}) {
    std::setlocale(LC_ALL, locale);
    std::vector<std::string> texts(60);
    for (std::string& text : texts) {
      for (auto length = random() % 5; length > 0; --length) text += bytes[random() % bytes.size()];
    }
    for (const std::string& a : texts) {
      for (const std::string& b : texts) {
        const int order = Sign(stricoll(a.c_str(), b.c_str(), true));
        ASSERT_EQ(order, -Sign(stricoll(b.c_str(), a.c_str(), true)));
        for (const std::string& c : texts) {
          if (order > 0 || stricoll(b.c_str(), c.c_str(), true) > 0) continue;
          ASSERT_LE(stricoll(a.c_str(), c.c_str(), true), 0);
        }
      }
    }
  }
}

}  // namespace
