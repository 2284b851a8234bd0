#include <support/selection/SelectionParser.h>

#include <string>

#include <gtest/gtest.h>

#include <support/selection/QCSSelectionDef.h>

namespace {

TEST(SelectionParser, ReadsEveryForm) {
  struct Row {
    const char* text;
    const char* printed;
  };
  static constexpr Row kRows[] = {
      {"", ""},
      {" \t\r\n", ""},
      {"*", "*"},
      {"NAME='x'", "NAME = 'x'"},
      {"a<'1'and b<='2' AND c>'3' And d>='4' and e!='5'",
       "a < '1' AND b <= '2' AND c > '3' AND d >= '4' AND e != '5'"},
      {"a like'x*'or b not\nlike 'y?'", "a LIKE 'x*' OR b NOT LIKE 'y?'"},
      {"(a = '1' AND b = '2') OR (c = '3') or *", "a = '1' AND b = '2' OR c = '3' OR *"},
      {"a = 'it''s'", "a = 'it''s'"},
      {"a = ''", "a = ''"},
      {"a = ''''", "a = ''''"},
      {"\"plain\" = '1' AND \"or\" = '2' AND \"say \"\"x\"\"\" = '3' AND \"\" = '4'",
       "plain = '1' AND \"or\" = '2' AND \"say \"\"x\"\"\" = '3' AND \"\" = '4'"},
      {"orders.x_1 = 'a' AND _AND = 'b' AND android = 'c'",
       "orders.x_1 = 'a' AND _AND = 'b' AND android = 'c'"},
  };
  for (const Row& row : kRows) {
    QCSSelectionDef definition;
    vq::SelectionParseError error;
    ASSERT_TRUE(definition.Parse(row.text, error)) << row.text << ": " << error.AsString();
    EXPECT_EQ(definition.AsString(), row.printed);
  }
}

TEST(SelectionParser, SaysWhereAndWhatItExpected) {
  static constexpr const char* kOperator =
      "expected an operator (=, !=, <, <=, >, >=, LIKE or NOT LIKE), found ";
  static constexpr const char* kValue = "expected a value in single quotes, found ";
  static constexpr const char* kStart = "expected a field name, ( or *, found ";
  struct Row {
    const char* text;
    const char* where;
    std::string what;
  };
  const Row kRows[] = {
      {"NAME", "4", std::string(kOperator) + "the end of the text"},
      {"NAME ~ 'x'", "5", std::string(kOperator) + "~"},
      {"NAME NOT 'x'", "5", std::string(kOperator) + "NOT"},
      {"NAME ! 'x'", "5", std::string(kOperator) + "!"},
      {"NAME LIKELY 'x'", "5", std::string(kOperator) + "LIKELY"},
      {"NAME LIKE PAY*", "10", std::string(kValue) + "PAY*"},
      {"NAME LIKE \"PAY*\"", "10", std::string(kValue) + "\"PAY*\""},
      {"a = 'x' AND", "11", std::string(kStart) + "the end of the text"},
      {"a = 'x' AND and = 'y'", "12", std::string(kStart) + "and"},
      {"OR a = 'x'", "0", std::string(kStart) + "OR"},
      {"7a = 'x'", "0", std::string(kStart) + "7a"},
      {"a = 'x' b = 'y'", "8", "expected AND, OR or the end of the text, found b"},
      {"* AND a = 'x'", "2", "expected OR or the end of the text, found AND"},
      {"(a = 'x'", "8", "expected AND or ), found the end of the text"},
      {"(a = 'x') AND b = 'y'", "10", "expected OR or the end of the text, found AND"},
      {"((a = 'x'))", "1", "expected a field name, found (a"},
      {"a = 'x", "6",
       "expected the closing quote of the text that starts at position 4, found the end of the "
       "text"},
      {"\"a = 'x'", "8",
       "expected the closing quote of the text that starts at position 0, found the end of the "
       "text"},
      {"a = 'x' \x01 aaaaaaaaaaaaaaaaaaaaaaaaaaaa", "8",
       "expected AND, OR or the end of the text, found \x01"},
      {"aaaaaaaaaaaaaaaaaaaa,bbbbbbbbbbbbbbbbbbbbbbb", "20",
       std::string(kOperator) + ",bbbbbbbbbbbbbbbbbbb"},
  };
  for (const Row& row : kRows) {
    QCSSelectionDef definition;
    definition.AddTerm({{"kept", vq::SelectionOperator::Equal, "1"}});
    vq::SelectionParseError error;
    EXPECT_FALSE(definition.Parse(row.text, error)) << row.text;
    EXPECT_EQ(error.AsString(), std::string("at position ") + row.where + ": " + row.what)
        << row.text;
    EXPECT_EQ(definition.AsString(), "kept = '1'") << row.text;
  }
}

// A text of many megabytes: no depth of calls and no time beyond its length.
TEST(SelectionParser, LongTextsAreNoBurden) {
  const std::string unit = "a = 'b' AND c LIKE '*''*' OR ";
  std::string text;
  for (int i = 0; i < 50'000; ++i) text += unit;
  QCSSelectionDef definition;
  vq::SelectionParseError error;
  ASSERT_TRUE(definition.Parse(text + "*", error));
  EXPECT_EQ(definition.Terms().size(), 50'001U);
  EXPECT_FALSE(definition.Parse(text, error));
  EXPECT_EQ(error.position, text.size());
  EXPECT_FALSE(definition.Parse(std::string(10'000'000, '('), error));
  EXPECT_EQ(error.position, 1U);
}

}  // namespace
