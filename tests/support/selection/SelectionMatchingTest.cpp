#include <support/selection/SelectionMatching.h>

#include <string>

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <support/selection/Wildcard.h>
#include <tests/support/selection/RandomSelection.h>

namespace {

struct Row {
  vq::SelectionOperator op;
  const char *value, *attribute;
};

TEST(SelectionMatching, EveryOperatorComparesAsTold) {
  using enum vq::SelectionOperator;
  static constexpr Row kFits[] = {
      {Equal, "a", "a"},          {NotEqual, "a", "b"},     {Less, "10", "9"},
      {Less, "b", "a"},           {Less, "2", "-3"},        {Less, "-3", "-20"},
      {Less, "-", "+"},           {LessOrEqual, "7", "07"}, {Greater, "a", "b"},
      {GreaterOrEqual, "5", "5"}, {Like, "*b*d", "abcd"},   {NotLike, "a*", "b"}};
  static constexpr Row kFitsNot[] = {
      {Equal, "a", "A"},       {Equal, "a*", "ab"}, {Equal, "7", "07"},        {NotEqual, "a", "a"},
      {Less, "9", "10"},       {Less, "10", "9x"},  {Less, "0", "-0"},         {Less, "", ""},
      {LessOrEqual, "7", "8"}, {Greater, "5", "5"}, {GreaterOrEqual, "5", ""}, {Like, "a?", "a"},
      {NotLike, "a*", "ab"},   {Like, "\\*", "*"},  {Like, "[ab]", "a"}};
  for (const auto& [op, value, attribute] : kFits) {
    EXPECT_TRUE(vq::MatchesValue(op, value, attribute)) << attribute << AsText(op) << value;
  }
  for (const auto& [op, value, attribute] : kFitsNot) {
    EXPECT_FALSE(vq::MatchesValue(op, value, attribute)) << attribute << AsText(op) << value;
  }
  EXPECT_TRUE(vq::MatchesValue(Greater, "99999999999999999998", "99999999999999999999"));
}

TEST(Wildcard, AgreesWithTheShellsMatcher) {
  vq::test::RandomSelection random(7);
  for (int i = 0; i < 200'000 && !HasFailure(); ++i) {
    const std::string pattern = random.Text("ab*?", 9);
    const std::string value = random.Text("ab", 12);
    const bool expected = fnmatch(pattern.c_str(), value.c_str(), FNM_NOESCAPE) == 0;
    EXPECT_EQ(vq::MatchesWildcard(pattern, value), expected) << pattern << " on " << value;
  }
}

// Thirty stars before a letter that does not come: trying every way to divide the text among them
// would not end.
TEST(Wildcard, ManyStarsEndAsSoon) {
  std::string pattern;
  for (int i = 0; i < 30; ++i) pattern += "*a";
  EXPECT_FALSE(vq::MatchesWildcard(pattern + "*b", std::string(100'000, 'a')));
}

}  // namespace
