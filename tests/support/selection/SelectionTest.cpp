#include <support/selection/QCSSelectionDef.h>
#include <support/selection/SelectionMatching.h>

#include <fnmatch.h>

#include <benchmarks/GrantGenerator.h>
#include <tests/fixture/UnitTest.h>

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

TEST(SelectionParser, SaysWhereAndWhat) {
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
TEST(SelectionParser, TakesLongTexts) {
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

TEST(SelectionMatching, Compares) {
  const auto fits = [](std::string rest) {  // attribute, operator and value
    QCSObject object;
    object.SetAttribute("X", vq::test::Take(rest));
    const std::size_t end = rest.rfind(' ');
    const std::string text = "X " + rest.substr(0, end) + " '" + rest.substr(end + 1) + "'";
    return Parsed(text).DoesItFit(object, false) ? "yes" : "no";
  };
  vq::test::ExpectRows(
      fits,
      {"a = a -> yes",         "b != a -> yes",        "9 < 10 -> yes",    "a < b -> yes",
       "-3 < 2 -> yes",        "-20 < -3 -> yes",      "+ < - -> yes",     "07 <= 7 -> yes",
       "b > a -> yes",         "5 >= 5 -> yes",        "a = b -> no",      "A = a -> no",
       "ab = a* -> no",        "07 = 7 -> no",         "a != a -> no",     "10 < 9 -> no",
       "9x < 10 -> no",        "-0 < 0 -> no",         " <  -> no",        "8 <= 7 -> no",
       "5 > 5 -> no",          " >= 5 -> no",          "a LIKE a? -> no",  "abcd LIKE *b*d -> yes",
       "b NOT LIKE a* -> yes", "ab NOT LIKE a* -> no", "* LIKE \\* -> no", "a LIKE [ab] -> no"});
  vq::test::ExpectRows(fits, {"99999999999999999999 > 99999999999999999998 -> yes"});
}

TEST(Wildcard, AgreesWithTheShell) {
  vq::GrantRandom random(7);
  const auto text = [&](std::string_view letters, std::size_t longest) {
    std::string made(random.Below(longest), ' ');
    for (char& c : made) c = letters[random.Below(letters.size())];
    return made;
  };
  for (int i = 0; i < 200'000 && !HasFailure(); ++i) {
    const std::string pattern = text("ab*?", 9), value = text("ab", 12);
    const bool expected = fnmatch(pattern.c_str(), value.c_str(), FNM_NOESCAPE) == 0;
    EXPECT_EQ(vq::MatchesWildcard(pattern, value), expected) << pattern << " on " << value;
  }
}

// Thirty stars before a letter that does not come: trying every way to divide the text among them
// would not end.
TEST(Wildcard, EndsWithManyStars) {
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

TEST(QCSObject, KeepsLastValue) {
  QCSObject object = Job();
  object.SetAttribute("EMPTY", "");
  EXPECT_EQ(*object.FindAttribute("EMPTY"), "");
  EXPECT_EQ(*object.FindAttribute("OWNER"), "ops");
  EXPECT_TRUE(object.RemoveAttribute("OWNER"));
  EXPECT_FALSE(object.RemoveAttribute("OWNER"));
}

struct LenientDef : QCSSelectionDef {
  bool negated = false;
  void HowToEvaluateMissingAttrsMatches(bool& fits, bool& negatedFits) override {
    fits = !negated;
    negatedFits = negated;
  }
  bool IsValidField(const std::string& field) const override { return field == "NAME"; }
};

// How terms and matchings combine is tested with the index of grants.
TEST(QCSSelectionDef, MissingAttributes) {
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

TEST(QCSSelectionDef, ValidatesFields) {
  const char* text = "B = '1' AND NAME = '2' OR \"\" = '3' OR A = '4' AND B = '5'";
  std::list<std::string> invalid{"from before"};
  EXPECT_EQ(Parsed(text).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, std::list<std::string>{""});
  EXPECT_EQ(Parsed<LenientDef>(text).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, (std::list<std::string>{"B", "", "A"}));
  EXPECT_EQ(Parsed<LenientDef>("NAME = 'x'").ValidateFields(invalid), 1);
  EXPECT_TRUE(invalid.empty());
}

}  // namespace
