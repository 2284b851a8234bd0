#include <support/selection/GrantIndex.h>

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tests/support/selection/RandomSelection.h>

namespace {

struct Counts {
  int questions = 0;
  int fits = 0;
};

// Asks the index and every grant by itself.
void Compare(const std::vector<vq::Grant>& grants, const std::vector<QCSObject>& objects,
             Counts& counts) {
  std::vector<QCSSelectionDef> definitions;
  for (const vq::Grant& grant : grants) {
    vq::SelectionParseError error;
    ASSERT_TRUE(definitions.emplace_back().Parse(grant.criteria, error)) << error.AsString();
  }
  const vq::GrantIndex index(grants);
  for (const QCSObject& object : objects) {
    int highest = vq::GrantIndex::kNoneFits;
    std::set<std::uint32_t> fitting;
    for (std::uint32_t i = 0; i < grants.size(); ++i) {
      if (!definitions[i].DoesItFit(object, false)) continue;
      highest = std::max<int>(highest, grants[i].level);
      fitting.insert(i);
    }
    ASSERT_EQ(index.HighestFitting(object), highest);
    std::set<std::uint32_t> found;
    ASSERT_FALSE(index.AnyFitting(object, [&found](std::uint32_t grant) {
      found.insert(grant);
      return false;
    }));
    ASSERT_EQ(found, fitting);
    ++counts.questions;
    counts.fits += fitting.empty() ? 0 : 1;
  }
}

TEST(GrantIndex, AnswersAsTheScanDoesOnRandomDefinitions) {
  vq::test::RandomSelection random(3);
  Counts counts;
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::string> texts(random.Below(12));
    for (std::string& text : texts) text = random.Definition().AsString();
    std::vector<vq::Grant> grants;
    for (const std::string& text : texts) {
      const std::size_t level = random.Below(6) == 0 ? 255 * random.Below(2) : random.Below(6);
      grants.push_back({text, static_cast<std::uint8_t>(level)});
    }
    std::vector<QCSObject> objects(10);
    for (QCSObject& object : objects) object = random.Object();
    ASSERT_NO_FATAL_FAILURE(Compare(grants, objects, counts));
  }
  EXPECT_GT(counts.fits, counts.questions / 4);
  EXPECT_LT(counts.fits, counts.questions * 3 / 4);
}

TEST(GrantIndex, AnswersAsTheScanDoesOnTheGrantsOfALargeInstallation) {
  const auto generated = vq::GenerateGrants(3000, 5);
  std::vector<vq::Grant> grants;
  for (const auto& grant : generated) grants.push_back({grant.criteria, grant.level});
  Counts counts;
  ASSERT_NO_FATAL_FAILURE(Compare(grants, vq::GenerateObjects(300, grants.size(), 6), counts));
  EXPECT_GT(counts.fits, counts.questions / 4);
}

TEST(GrantIndex, ManyFieldsAreAsGoodAsFew) {
  std::vector<std::string> texts;
  QCSObject object;
  for (int i = 0; i < 40; ++i) {
    texts.push_back("F" + std::to_string(i) + " LIKE '*" + std::to_string(i) + "*x'");
    object.SetAttribute("F" + std::to_string(i), std::to_string(i) + (i % 3 == 0 ? "-x" : "-y"));
  }
  std::vector<vq::Grant> grants;
  for (const std::string& text : texts) grants.push_back({text, 3});
  Counts counts;
  ASSERT_NO_FATAL_FAILURE(Compare(grants, {object, QCSObject()}, counts));
  EXPECT_EQ(counts.fits, 1);
}

// The builder reads what many texts have in common only once.
TEST(GrantIndex, TextsThatBeginAlikeAreNotTakenForOneAnother) {
  static constexpr const char* kTexts[] = {"A = 'x'",
                                           "A = 'y'",
                                           "A = ''",
                                           "A = ''''",
                                           "A = 'x' ",
                                           "A = 'y' OR *",
                                           "* OR A = 'x'",
                                           "* OR A = 'z'",
                                           "(A = 'x')",
                                           "(A = 'z')",
                                           "A = 'x' AND A = 'y'",
                                           "A LIKE 'x*'",
                                           "A LIKE 'y' OR A = 'z'",
                                           "A LIKE '*z'",
                                           "B = 'x'",
                                           "C = 'x'",
                                           "D = 'x'",
                                           "E = 'x'",
                                           "A = 'z'"};
  std::vector<QCSObject> objects(5);
  for (std::size_t i = 0; i + 1 < objects.size(); ++i) {
    objects[i].SetAttribute("A", std::string(1, "xyz'"[i]));
  }
  Counts counts;
  for (const char* first : kTexts) {
    for (const char* second : kTexts) {
      ASSERT_NO_FATAL_FAILURE(Compare({{first, 1}, {first, 2}, {second, 3}}, objects, counts))
          << first << " before " << second;
    }
  }
  const vq::GrantIndex index({{"A = 'x'", 1}, {"A = 'y", 1}, {"A = 'y'z", 1}, {"A = 'y'''", 1}});
  EXPECT_EQ(index.RefusedGrants().size(), 2U);
}

TEST(GrantIndex, ARefusedTextGrantsNothingAndIsReported) {
  const std::vector<vq::Grant> grants = {
      {"A = 'x'", 2}, {"A = 'x' OR * OR A =", 5}, {"A LIKE 'x", 4}, {"A = 'it''s'", 3}};
  const vq::GrantIndex index(grants);
  QCSObject object;
  object.SetAttribute("A", "x");
  EXPECT_EQ(index.HighestFitting(object), 2);
  EXPECT_EQ(index.HighestFitting(QCSObject()), vq::GrantIndex::kNoneFits);
  object.SetAttribute("A", "it's");
  EXPECT_EQ(index.HighestFitting(object), 3);
  ASSERT_EQ(index.RefusedGrants().size(), 2U);
  EXPECT_EQ(index.RefusedGrants()[0].grant, 1U);
  EXPECT_EQ(index.RefusedGrants()[0].error.position, 19U);
  EXPECT_EQ(index.RefusedGrants()[1].grant, 2U);
  ASSERT_EQ(index.Grants().size(), 4U);
  EXPECT_EQ(index.Grants()[1].criteria, grants[1].criteria);
}

}  // namespace
