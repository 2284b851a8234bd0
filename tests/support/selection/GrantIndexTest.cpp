#include <support/selection/GrantIndex.h>

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tests/support/selection/RandomSelection.h>

namespace {

// Asks the index and every grant by itself. Returns how many of the objects some grant fits.
int Compare(const std::vector<vq::GeneratedGrant>& given, const std::vector<QCSObject>& objects) {
  std::vector<vq::Grant> grants;
  for (const auto& grant : given) grants.push_back({grant.criteria, grant.level});
  const vq::GrantIndex index(grants);
  std::vector<QCSSelectionDef> definitions(grants.size());
  std::size_t refused = 0;
  for (std::uint32_t i = 0; i < grants.size(); ++i) {
    EXPECT_EQ(index.Grants()[i].criteria, grants[i].criteria);
    vq::SelectionParseError error;
    if (definitions[i].Parse(grants[i].criteria, error)) continue;  // else it fits nothing
    const auto& found = index.RefusedGrants().at(refused++);
    EXPECT_EQ(found.grant, i);
    EXPECT_EQ(found.error.AsString(), error.AsString());
  }
  EXPECT_EQ(index.RefusedGrants().size(), refused);
  int fits = 0;
  for (const QCSObject& object : objects) {
    int highest = vq::GrantIndex::kNoneFits;
    std::set<std::uint32_t> fitting;
    for (std::uint32_t i = 0; i < grants.size(); ++i) {
      if (!definitions[i].DoesItFit(object, false)) continue;
      highest = std::max<int>(highest, grants[i].level);
      fitting.insert(i);
    }
    EXPECT_EQ(index.HighestFitting(object), highest);
    std::set<std::uint32_t> found;
    const auto refuse = [&found](std::uint32_t grant) { return found.insert(grant), false; };
    EXPECT_FALSE(index.AnyFitting(object, refuse));
    EXPECT_EQ(found, fitting);
    fits += fitting.empty() ? 0 : 1;
  }
  return fits;
}

TEST(GrantIndex, AnswersAsTheScanDoesOnRandomDefinitions) {
  vq::test::RandomSelection random(3);
  int fits = 0;
  for (int round = 0; round < 3000 && !HasFailure(); ++round) {
    std::vector<vq::GeneratedGrant> grants(random.Below(12));
    for (vq::GeneratedGrant& grant : grants) {
      const std::size_t level = random.Below(6) == 0 ? 255 * random.Below(2) : random.Below(6);
      grant = {random.Definition().AsString(), static_cast<std::uint8_t>(level)};
    }
    std::vector<QCSObject> objects(10);
    for (QCSObject& object : objects) object = random.Object();
    fits += Compare(grants, objects);
  }
  EXPECT_NEAR(fits, 15'000, 7'500);
}

TEST(GrantIndex, AnswersAsTheScanDoesOnTheGrantsOfALargeInstallation) {
  EXPECT_GT(Compare(vq::GenerateGrants(3000, 5), vq::GenerateObjects(300, 3000, 6)), 300 / 4);
}

// The builder reads what many texts have in common only once.
TEST(GrantIndex, TextsThatBeginAlikeAreNotTakenForOneAnother) {
  std::vector<vq::GeneratedGrant> all;
  for (const std::string head : {"A = '", "A LIKE '", "* OR A = '", "(A = '", "B = '", "C = '"}) {
    for (const char* tail : {"x'", "y'", "'", "'''", "it''s'", "*z'", "x' ", "y' OR *", "z')",
                             "y' OR A = 'z'", "x' AND A = 'y'", "y'z", "y"}) {
      all.push_back({head + tail, static_cast<std::uint8_t>(all.size() % 5)});
    }
  }
  std::vector<QCSObject> objects(1);
  for (const char* a : {"x", "y", "z", "'", "it's"}) objects.emplace_back().SetAttribute("A", a);
  for (const auto& first : all) {
    for (const auto& second : all) Compare({first, {first.criteria, 3}, second}, objects);
  }
  for (char field = 'A'; field < 'T'; ++field) {
    all.push_back({field + std::string(" LIKE '?'"), 4});
    objects.emplace_back().SetAttribute({field}, field < 'K' ? "x" : "xx");
  }
  Compare(all, objects);
}

TEST(GrantIndex, APieceThatIsRepeatedIsTriedOnce) {
  QCSObject object;
  object.SetAttribute("A", std::string(100'000, 'a'));
  int tried = 0;
  const auto count = [&tried](std::uint32_t) { return ++tried, false; };
  EXPECT_FALSE(vq::GrantIndex({{"A LIKE '*a*'", 1}}).AnyFitting(object, count));
  EXPECT_EQ(tried, 1);
}

}  // namespace
