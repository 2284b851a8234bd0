#include <support/selection/SelectionMatching.h>

#include <chrono>
#include <string>

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <benchmarks/authorizations/GrantGenerator.h>
#include <support/selection/Wildcard.h>

namespace {

using vq::SelectionOperator;

struct Row {
  SelectionOperator op;
  const char* value;
  const char* attribute;
  bool fits;
};

TEST(SelectionMatching, EveryOperatorComparesAsTold) {
  using enum SelectionOperator;
  static constexpr Row kRows[] = {
      {Equal, "a", "a", true},
      {Equal, "a", "A", false},
      {Equal, "a*", "ab", false},
      {Equal, "", "", true},
      {Equal, "7", "07", false},
      {NotEqual, "a", "b", true},
      {NotEqual, "a", "a", false},
      {Less, "10", "9", true},
      {Less, "9", "10", false},
      {Less, "b", "a", true},
      {Less, "10", "9x", false},
      {Less, "2", "-3", true},
      {Less, "-3", "-20", true},
      {Less, "0", "-0", false},
      {Less, "", "", false},
      {Less, "-", "+", true},
      {LessOrEqual, "7", "007", true},
      {LessOrEqual, "7", "8", false},
      {Greater, "a", "b", true},
      {Greater, "99999999999999999998", "99999999999999999999", true},
      {Greater, "5", "5", false},
      {GreaterOrEqual, "5", "5", true},
      {GreaterOrEqual, "5", "", false},
      {Like, "a*", "a", true},
      {Like, "a?", "a", false},
      {Like, "*b*d", "abcd", true},
      {Like, "*", "", true},
      {Like, "", "a", false},
      {NotLike, "a*", "b", true},
      {NotLike, "a*", "ab", false},
      {Like, "\\*", "*", false},
      {Like, "[ab]", "a", false},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(vq::MatchesValue(row.op, row.value, row.attribute), row.fits)
        << row.attribute << ' ' << vq::AsText(row.op) << ' ' << row.value;
  }
}

TEST(Wildcard, AgreesWithTheShellsMatcher) {
  vq::GrantRandom random(7);
  const auto text = [&random](std::string_view letters, std::size_t longest) {
    std::string made(random.Below(longest), ' ');
    for (char& c : made) c = letters[random.Below(letters.size())];
    return made;
  };
  int matches = 0;
  for (int i = 0; i < 200'000; ++i) {
    const std::string pattern = text("ab*?", 9);
    const std::string value = text("ab", 12);
    const bool expected = fnmatch(pattern.c_str(), value.c_str(), FNM_NOESCAPE) == 0;
    matches += expected ? 1 : 0;
    ASSERT_EQ(vq::MatchesWildcard(pattern, value), expected) << pattern << " on " << value;
  }
  EXPECT_GT(matches, 10'000);
}

// Thirty stars before a letter that does not come: trying every way to divide the text among them
// would not end.
TEST(Wildcard, ManyStarsTakeNoLonger) {
  std::string pattern;
  for (int i = 0; i < 30; ++i) pattern += "*a";
  pattern += "*b";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(vq::MatchesWildcard(pattern, std::string(100'000, 'a')));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
