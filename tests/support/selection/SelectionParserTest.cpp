#include <support/selection/SelectionParser.h>

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <support/selection/QCSSelectionDef.h>

namespace {

TEST(SelectionParser, ReadsEveryForm) {
  static constexpr const char* kTextsAndPrints[][2] = {
      {" \t\r\n", ""},
      {"a<'1'and b<='2' AND c>'3' And d>='4' and e!='5'",
       "a < '1' AND b <= '2' AND c > '3' AND d >= '4' AND e != '5'"},
      {"a like'x*'or b not\nlike 'y?'", "a LIKE 'x*' OR b NOT LIKE 'y?'"},
      {"(a = '1' AND b = '2') OR (c = '3') or *", "a = '1' AND b = '2' OR c = '3' OR *"},
      {"\"plain\" = '''' AND \"say \"\"x\"\"\" = ''", "plain = '''' AND \"say \"\"x\"\"\" = ''"},
      {"o.x_1='a' AND _AND='b' AND android='c'", "o.x_1 = 'a' AND _AND = 'b' AND android = 'c'"}};
  for (const auto& [text, printed] : kTextsAndPrints) {
    QCSSelectionDef definition;
    vq::SelectionParseError error;
    EXPECT_TRUE(definition.Parse(text, error)) << text << ": " << error.AsString();
    EXPECT_EQ(definition.AsString(), printed);
  }
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

}  // namespace
