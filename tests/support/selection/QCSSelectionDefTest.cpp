#include <support/selection/QCSSelectionDef.h>

#include <list>
#include <string>

#include <gtest/gtest.h>

#include <tests/support/selection/RandomSelection.h>

namespace {

QCSSelectionDef Parsed(const char* text) {
  QCSSelectionDef definition;
  vq::SelectionParseError error;
  EXPECT_TRUE(definition.Parse(text, error)) << error.AsString();
  return definition;
}

QCSObject Job() {
  QCSObject job;
  job.SetAttribute("NAME", "PAYROLL");
  job.SetAttribute("OWNER", "ops");
  return job;
}

TEST(QCSObject, TellsAbsentFromEmptyAndKeepsTheLastValue) {
  QCSObject object;
  object.SetAttribute("b", "1");
  object.SetAttribute("a", "");
  object.SetAttribute("b", "2");
  ASSERT_NE(object.FindAttribute("a"), nullptr);
  EXPECT_EQ(*object.FindAttribute("a"), "");
  EXPECT_EQ(*object.FindAttribute("b"), "2");
  EXPECT_EQ(object.FindAttribute("B"), nullptr);
  EXPECT_TRUE(object.RemoveAttribute("b"));
  EXPECT_FALSE(object.RemoveAttribute("b"));
  EXPECT_EQ(object.size(), 1U);
}

TEST(QCSSelectionDef, TermsAreOredAndMatchingsAnded) {
  struct Row {
    const char* text;
    bool fits;
  };
  static constexpr Row kRows[] = {
      {"", false},
      {"*", true},
      {"NAME = 'PAYROLL'", true},
      {"NAME = 'PAYROLL' AND OWNER = 'dev'", false},
      {"NAME = 'x' AND OWNER = 'ops' OR NAME LIKE 'PAY*'", true},
      {"NAME = 'x' OR OWNER = 'dev'", false},
      {"name = 'PAYROLL'", false},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(Parsed(row.text).DoesItFit(Job(), false), row.fits) << row.text;
  }
}

class LenientDef : public QCSSelectionDef {
 public:
  LenientDef(const char* text, bool fits, bool negatedFits)
      : QCSSelectionDef(Parsed(text)), m_fits(fits), m_negatedFits(negatedFits) {}
  void HowToEvaluateMissingAttrsMatches(bool& fits, bool& negatedFits) override {
    fits = m_fits;
    negatedFits = m_negatedFits;
  }
  bool IsValidField(const std::string& field) const override { return field == "NAME"; }

 private:
  bool m_fits;
  bool m_negatedFits;
};

TEST(QCSSelectionDef, MissingAttributesFitWhenTheCallerOrTheClassSaysSo) {
  static constexpr const char* kIs[] = {"X = 'a'", "X < 'a'",  "X <= 'a'",
                                        "X > 'a'", "X >= 'a'", "X LIKE '*'"};
  static constexpr const char* kIsNot[] = {"X != 'a'", "X NOT LIKE 'a'"};
  const auto check = [](const char* text, bool negated) {
    EXPECT_FALSE(Parsed(text).DoesItFit(Job(), false)) << text;
    EXPECT_TRUE(Parsed(text).DoesItFit(Job(), true)) << text;
    EXPECT_EQ(LenientDef(text, true, false).DoesItFit(Job(), false), !negated) << text;
    EXPECT_EQ(LenientDef(text, false, true).DoesItFit(Job(), false), negated) << text;
  };
  for (const char* text : kIs) check(text, false);
  for (const char* text : kIsNot) check(text, true);
  bool fits = true;
  bool negatedFits = true;
  Parsed("X = 'a'").HowToEvaluateMissingAttrsMatches(fits, negatedFits);
  EXPECT_FALSE(fits);
  EXPECT_FALSE(negatedFits);
}

TEST(QCSSelectionDef, ValidatesFieldsByItsClass) {
  static constexpr const char* kText =
      "B = '1' AND NAME = '2' OR \"\" = '3' OR A = '4' AND B = '5'";
  std::list<std::string> invalid{"from before"};
  EXPECT_EQ(Parsed(kText).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, std::list<std::string>{""});
  EXPECT_EQ(LenientDef(kText, false, false).ValidateFields(invalid), 0);
  EXPECT_EQ(invalid, (std::list<std::string>{"B", "", "A"}));
  EXPECT_EQ(LenientDef("NAME = 'x'", false, false).ValidateFields(invalid), 1);
  EXPECT_TRUE(invalid.empty());
}

TEST(QCSSelectionDef, WhatItPrintsParsesBackToItself) {
  vq::test::RandomSelection random(11);
  for (int i = 0; i < 20'000; ++i) {
    const QCSSelectionDef definition = random.Definition();
    const std::string text = definition.AsString();
    QCSSelectionDef again;
    vq::SelectionParseError error;
    ASSERT_TRUE(again.Parse(text, error)) << text << ": " << error.AsString();
    ASSERT_EQ(again, definition) << text;
  }
}

}  // namespace
