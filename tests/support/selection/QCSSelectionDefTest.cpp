#include <support/selection/QCSSelectionDef.h>

#include <list>
#include <string>

#include <gtest/gtest.h>

#include <tests/support/selection/RandomSelection.h>

namespace {

template <class Definition = QCSSelectionDef>
Definition Parsed(const std::string& text) {
  Definition definition;
  vq::SelectionParseError error;
  EXPECT_TRUE(definition.Parse(text, error)) << text << error.AsString();
  return definition;
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
