#include <support/selection/QCSSelectionDef.h>
#include <support/selection/SelectionMatching.h>

#include <map>

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <tests/support/selection/RandomSelection.h>

namespace {

template <class Definition = QCSSelectionDef>
Definition Parsed(const std::string& text) {
  Definition definition;
  vq::SelectionParseError error;
  EXPECT_TRUE(definition.Parse(text, error)) << text << ": " << error.AsString();
  return definition;
}

TEST(SelectionParser, ReadsEveryForm) {
  static constexpr const char* kTextsAndPrints[][2] = {
      {" \t\r\n", ""},
      {"a<'1'and b<='2' AND c>'3' And d>='4' and e!='5'",
       "a < '1' AND b <= '2' AND c > '3' AND d >= '4' AND e != '5'"},
      {"a like'x*'or b not\nlike 'y?'", "a LIKE 'x*' OR b NOT LIKE 'y?'"},
      {"(a = '1' AND b = '2') OR (c = '3') or *", "a = '1' AND b = '2' OR c = '3' OR *"},
      {"\"plain\" = '''' AND \"say \"\"x\"\"\" = ''", "plain = '''' AND \"say \"\"x\"\"\" = ''"},
      {"o.x_1='a' AND _AND='b' AND android='c'", "o.x_1 = 'a' AND _AND = 'b' AND android = 'c'"}};
  for (const auto& [text, printed] : kTextsAndPrints) EXPECT_EQ(Parsed(text).AsString(), printed);
}

TEST(SelectionParser, SaysWhereAndWhatItExpected) {
  // A ^, which is no part of the text, marks the place.
  const std::map<std::string, std::vector<std::string>> kTexts = {
      {"an operator (=, !=, <, <=, >, >=, LIKE or NOT LIKE)",
       {"NAME^", "NAME ^~ 'x'", "NAME ^NOT 'x'", "NAME ^! 'x'", "NAME ^LIKELY 'x'"}},
      {"a value in single quotes", {"NAME LIKE ^PAY*", "NAME = ^\"P*\""}},
      {"a field name, ( or *", {"a = 'x' AND^", "a = 'x' AND ^and", "^OR a = 'x'", "^7a = 'x'"}},
      {"AND, OR or the end of the text", {"a = 'x' ^b = 'y'", "a = 'x' ^\x01 aaa"}},
      {"OR or the end of the text", {"* ^AND a = 'x'", "(a = 'x') ^AND b"}},
      {"AND or )", {"(a = 'x'^"}},
      {"a field name", {"(^(a = 'x'))"}},
      {"the closing quote of the text that starts at position 4", {"a = 'x^", "(   \"a = 'x'^"}}};
  for (const auto& [expected, texts] : kTexts) {
    for (std::string text : texts) {
      const std::size_t place = text.find('^');
      text.erase(place, 1);
      QCSSelectionDef definition;
      vq::SelectionParseError error;
      EXPECT_FALSE(definition.Parse(text, error)) << text;
      EXPECT_EQ(error.position, place) << text;
      EXPECT_EQ(error.expected, expected) << text;
      const std::string rest = text.substr(place, text.find(' ', place) - place);
      EXPECT_EQ(error.found, rest.empty() ? "the end of the text" : rest);
    }
  }
}

// A text of many megabytes: no depth of calls and no time beyond its length.
TEST(SelectionParser, LongTextsAreNoBurden) {
  std::string text;
  for (int i = 0; i < 50'000; ++i) text += "a = 'b' AND c LIKE '*''*' OR ";
  QCSSelectionDef definition;
  vq::SelectionParseError error;
  ASSERT_TRUE(definition.Parse(text + "*", error));
  EXPECT_FALSE(definition.Parse(text, error));
  EXPECT_EQ(error.position, text.size());
  EXPECT_EQ(definition.Terms().size(), 50'001U);  // as it was
  EXPECT_FALSE(definition.Parse(std::string(10'000'000, '('), error));
  EXPECT_EQ(error.AsString(), "at position 1: expected a field name, found ((((((((((((((((((((");
}

TEST(SelectionMatching, EveryOperatorComparesAsTold) {
  using enum vq::SelectionOperator;
  using Row = std::tuple<vq::SelectionOperator, const char*, const char*>;  // value, attribute
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

QCSObject Job() {
  QCSObject job;
  job.SetAttribute("OWNER", "dev");
  job.SetAttribute("NAME", "PAYROLL");
  job.SetAttribute("OWNER", "ops");
  return job;
}

TEST(QCSObject, TellsAbsentFromEmptyAndKeepsTheLastValue) {
  QCSObject object = Job();
  object.SetAttribute("EMPTY", "");
  EXPECT_EQ(*object.FindAttribute("EMPTY"), "");
  EXPECT_EQ(*object.FindAttribute("OWNER"), "ops");
  EXPECT_TRUE(object.RemoveAttribute("OWNER"));
  EXPECT_FALSE(object.RemoveAttribute("OWNER"));
}

TEST(QCSSelectionDef, TermsAreOredAndMatchingsAnded) {
  for (const char* text : {"*", "NAME = 'PAYROLL'", "NAME = 'x' AND OWNER = 'ops' OR NAME > 'P'"}) {
    EXPECT_TRUE(Parsed(text).DoesItFit(Job(), false)) << text;
  }
  for (const char* text : {"", "NAME = 'PAYROLL' AND OWNER = 'dev'", "name = 'PAYROLL'"}) {
    EXPECT_FALSE(Parsed(text).DoesItFit(Job(), false)) << text;
  }
}

struct LenientDef : QCSSelectionDef {
  bool negated = false;
  void HowToEvaluateMissingAttrsMatches(bool& fits, bool& negatedFits) override {
    fits = !negated;
    negatedFits = negated;
  }
  bool IsValidField(const std::string& field) const override { return field == "NAME"; }
};

TEST(QCSSelectionDef, MissingAttributesFitWhenTheCallerOrTheClassSaysSo) {
  for (const std::string op : {"=", "<", "<=", ">", ">=", "LIKE", "!=", "NOT LIKE"}) {
    const std::string text = "X " + op + " 'a'";
    const bool negated = op == "!=" || op == "NOT LIKE";
    EXPECT_FALSE(Parsed(text).DoesItFit(Job(), false)) << text;
    EXPECT_TRUE(Parsed(text).DoesItFit(Job(), true)) << text;
    auto lenient = Parsed<LenientDef>(text);
    EXPECT_EQ(lenient.DoesItFit(Job(), false), !negated) << text;
    lenient.negated = true;
    EXPECT_EQ(lenient.DoesItFit(Job(), false), negated) << text;
  }
}

TEST(QCSSelectionDef, ValidatesFieldsByItsClass) {
  const char* text = "B = '1' AND NAME = '2' OR \"\" = '3' OR A = '4' AND B = '5'";
  std::list<std::string> invalid{"from before"};
  EXPECT_EQ(Parsed(text).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, std::list<std::string>{""});
  EXPECT_EQ(Parsed<LenientDef>(text).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, (std::list<std::string>{"B", "", "A"}));
  EXPECT_EQ(Parsed<LenientDef>("NAME = 'x'").ValidateFields(invalid), 1);
  EXPECT_TRUE(invalid.empty());
}

TEST(QCSSelectionDef, WhatItPrintsParsesBackToItself) {
  vq::test::RandomSelection random(11);
  for (int i = 0; i < 20'000 && !HasFailure(); ++i) {
    const QCSSelectionDef definition = random.Definition();
    EXPECT_EQ(Parsed(definition.AsString()), definition) << definition.AsString();
  }
}

}  // namespace
