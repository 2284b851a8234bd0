#include <support/grants/GrantIndex.h>

#include <set>

#include <benchmarks/GrantGenerator.h>
#include <tests/fixture/UnitTest.h>

namespace {

using vq::GeneratedGrant;

TDiagRegister diagModule("GrantIndexTest");

// Definitions and objects over a few short texts, so that fits, near misses and equal keys are all
// common.
struct RandomSelection : vq::GrantRandom {
  using GrantRandom::GrantRandom;

  QCSSelectionDef Definition() {
    QCSSelectionDef definition;
    for (std::size_t terms = Below(4); terms > 0; --terms) {
      QCSSelectionDef::Term term;
      for (std::size_t i = Below(8) == 0 ? 0 : 1 + Below(3); i > 0; --i) {
        term.push_back({Field(), static_cast<vq::SelectionOperator>(Below(8)), Letters(12)});
      }
      definition.AddTerm(term);
    }
    return definition;
  }
  QCSObject Object() {
    QCSObject object;
    for (std::size_t i = Below(4); i > 0; --i) object.SetAttribute(Field(), Letters(20));
    return object;
  }
  std::string Field() {
    constexpr const char* kFields[] = {"A", "B", "long.name_1", "or", "with \"quotes\"", ""};
    return kFields[Below(std::size(kFields))];
  }
  std::string Letters(std::size_t longest) {
    const std::size_t kinds = 2 + Below(11);
    std::string text(Below(longest), ' ');
    for (char& c : text) c = "aaabb**?'\"1 "[Below(kinds)];
    return text;
  }
};

// Asks the index and every grant by itself. Returns how many of the objects some grant fits.
int Compare(const std::vector<GeneratedGrant>& grants, const std::vector<QCSObject>& objects) {
  const TDiagFunc diag(diagModule, "Compare");
  vq::GrantIndex index;
  std::vector<QCSSelectionDef> definitions;
  for (const GeneratedGrant& grant : grants) {
    vq::SelectionParseError error;
    const bool parses = definitions.emplace_back().Parse(grant.criteria, error);
    EXPECT_EQ(index.Add(grant.criteria, static_cast<QCSAuthLevelEnum>(grant.level), diag), parses);
  }
  EXPECT_EQ(index.size(), grants.size());
  int fits = 0;
  for (const QCSObject& object : objects) {
    std::optional<int> highest;
    std::set<std::uint32_t> fitting, found;
    std::size_t calls = 0, most = 0;  // one for each term at most, however often a part repeats
    for (std::uint32_t i = 0; i < grants.size(); ++i) {
      if (!definitions[i].DoesItFit(object, false)) continue;
      highest = std::max<int>(highest.value_or(-1), grants[i].level);
      fitting.insert(i);
      most += definitions[i].Terms().size();
    }
    EXPECT_EQ(index.HighestFitting(object), highest);
    const auto refuse = [&](std::uint32_t grant) { return ++calls, found.insert(grant), false; };
    EXPECT_FALSE(index.AnyFitting(object, refuse));
    EXPECT_EQ(found, fitting);
    EXPECT_LE(calls, most);
    const auto accept = [](std::uint32_t) { return true; };
    EXPECT_EQ(index.AnyFitting(object, accept), !fitting.empty());
    fits += fitting.empty() ? 0 : 1;
  }
  return fits;
}

TEST(GrantIndex, AgreesWithScanOnRandomGrants) {
  RandomSelection random(3);
  int fits = 0;
  for (int round = 0; round < 3000 && !HasFailure(); ++round) {
    std::vector<GeneratedGrant> grants(random.Below(12));
    for (GeneratedGrant& grant : grants) {
      grant = {random.Definition().AsString(), static_cast<std::uint8_t>(random.Below(6))};
      if (random.Below(10) == 0) grant.criteria += " OR";  // does not parse
    }
    std::vector<QCSObject> objects(10);
    for (QCSObject& object : objects) object = random.Object();
    fits += Compare(grants, objects);
  }
  EXPECT_NEAR(fits, 15'000, 7'500);
}

TEST(GrantIndex, AgreesWithScanOnManyGrants) {
  EXPECT_GT(Compare(vq::GenerateGrants(3000, 5), vq::GenerateObjects(300, 3000, 6)), 300 / 4);
}

TEST(GrantIndex, LimitsItsLog) {
  const TDiagFunc diag(diagModule, "LimitsItsLog");
  vq::test::LogCapture log(1);
  vq::GrantIndex index;
  for (int i = 0; i < 1000; ++i) EXPECT_FALSE(index.Add("?", FULL_ACCESS, diag));
  ASSERT_EQ(log.Lines().size(), 21U);
  EXPECT_THAT(log.Lines().front().text, ::testing::EndsWith("found ?. Criteria: ?"));
  EXPECT_THAT(log.Lines().back().text, ::testing::StartsWith("Further grants"));
}

}  // namespace
