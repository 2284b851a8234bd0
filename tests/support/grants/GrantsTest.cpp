#include <support/grants/AuthLevelBySelection.h>
#include <support/grants/GrantIndex.h>
#include <support/grants/VQServiceUserAuth.h>

#include <set>

#include <benchmarks/GrantGenerator.h>
#include <tests/fixture/UnitTest.h>
#include <tests/support/grants/Asking.h>

namespace {

using ::testing::ElementsAre;
using vq::GeneratedGrant;
using vq::test::Highest;
using vq::test::Named;
using Pair = std::pair<const char*, QCSAuthLevelEnum>;

QCSCorbaAuth2LvlSeq Wire(const std::vector<Pair>& grants) {
  QCSCorbaAuth2LvlSeq wire;
  wire.length(static_cast<CORBA::ULong>(grants.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    wire[i].m_sCriteria = grants[i].first;
    wire[i].m_eLevel = grants[i].second;
  }
  return wire;
}

int Given(const AuthLevelBySelection& holder, const std::string& name) {
  return Highest([&](QCSAuthLevelEnum level) { return holder.IsAuthorized(Named(name), level); });
}

TEST(AuthLevelBySelection, UsersGrantsGoBeforeGroups) {
  AuthLevelBySelection holder;
  EXPECT_TRUE(holder.UserAuthFromCORBA(Wire({{"NAME LIKE 'A*'", BROWSE_ACCESS},
                                             {"NAME LIKE 'AB*'", UPDATE_ACCESS},
                                             {"NAME = 'AN'", ACCESS_NONE},
                                             {"NAME = 'Z'", ACCESS_NONE},
                                             {"NAME = 'D'", DEFAULT_ACCESS},
                                             {"NAME = 'M'", MAX_ACCESS}}),
                                       true));
  holder.GroupAuthFromCORBA(Wire({{"*", BROWSE_ACCESS}, {"NAME LIKE '?'", FULL_ACCESS}}), true);
  static constexpr Pair kRows[] = {
      {"A", BROWSE_ACCESS},    // an own grant fits, so the groups' FULL_ACCESS does not count
      {"ABC", UPDATE_ACCESS},  // the highest of two own grants
      {"AN", BROWSE_ACCESS},   // the highest, whatever the order
      {"Z", ACCESS_NONE},      // an own grant may take away
      {"D", DEFAULT_ACCESS},   // even all
      {"M", MAX_ACCESS},      {"B", FULL_ACCESS},  // no own grant fits: the highest of the groups'
      {"BC", BROWSE_ACCESS},
  };
  for (const auto& [name, given] : kRows) EXPECT_EQ(Given(holder, name), given) << name;
}

TEST(AuthLevelBySelection, LoadReplacesOrAdds) {
  AuthLevelBySelection holder;
  const auto load = [&](const char* criteria, QCSAuthLevelEnum level, bool replaces) {
    return holder.UserAuthFromCORBA(Wire({{criteria, level}}), replaces);
  };
  const auto given = [&] { return std::vector{Given(holder, "A"), Given(holder, "B")}; };
  EXPECT_TRUE(holder.IsEmpty());
  EXPECT_THAT(given(), ElementsAre(DEFAULT_ACCESS, DEFAULT_ACCESS));
  EXPECT_TRUE(load("NAME = 'A'", FULL_ACCESS, true));
  const AuthLevelBySelection copy = holder;
  load("NAME = 'B'", UPDATE_ACCESS, false);
  EXPECT_THAT(given(), ElementsAre(FULL_ACCESS, UPDATE_ACCESS));
  load("NAME = 'B'", BROWSE_ACCESS, true);
  EXPECT_THAT(given(), ElementsAre(DEFAULT_ACCESS, BROWSE_ACCESS));
  holder = copy;
  EXPECT_THAT(given(), ElementsAre(FULL_ACCESS, DEFAULT_ACCESS));
  // One that does not parse fits nothing, and counts.
  EXPECT_FALSE(load("NAME LIKE A*", FULL_ACCESS, true));
  EXPECT_FALSE(holder.IsEmpty() || VQServiceUserAuth({{"NAME =", FULL_ACCESS, {1}}}).IsEmpty());
  EXPECT_THAT(given(), ElementsAre(DEFAULT_ACCESS, DEFAULT_ACCESS));
  holder.UserAuthFromCORBA(Wire({}), true);
  EXPECT_TRUE(holder.IsEmpty());
  holder.GroupAuthFromCORBA(Wire({{"NAME = 'B'", FULL_ACCESS}}), true);
  EXPECT_FALSE(holder.IsEmpty() || holder.IsAuthorized(QCSObject(), ACCESS_NONE));
}

using ServiceGrant = std::tuple<const char*, QCSAuthLevelEnum, std::vector<int>>;

// As they come over the wire.
std::list<VQServiceAuth> Received(const std::vector<ServiceGrant>& grants) {
  QCSCorbaAuth2LvlSeq2 wire;
  wire.length(static_cast<CORBA::ULong>(grants.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const auto& [criteria, level, actions] = grants[i];
    wire[i].Criteria = criteria;
    wire[i].Level = level;
    wire[i].Actions.length(static_cast<CORBA::ULong>(actions.size()));
    std::copy(actions.begin(), actions.end(), wire[i].Actions.get_buffer());
  }
  std::list<VQServiceAuth> received{VQServiceAuth{"from before", FULL_ACCESS, {1}}};
  CrbConvert(wire, received);
  return received;
}

TEST(VQServiceUserAuth, DecidingListGivesLevelsAndActions) {
  VQServiceUserAuth holder;
  EXPECT_TRUE(holder.IsEmpty());
  holder.AddUserAuth(VQServiceUserAuth(
      Received({{"NAME LIKE 'A*'", BROWSE_ACCESS, {1, 2}}, {"NAME = 'AB'", UPDATE_ACCESS, {3}}})));
  holder.AddGroupAuth(VQServiceUserAuth(
      {}, Received({{"*", FULL_ACCESS, {-4, 5}}, {"NAME = 'B'", ACCESS_NONE, {}}})));
  EXPECT_FALSE(holder.IsEmpty());
  const ServiceGrant kRows[] = {
      {"A", BROWSE_ACCESS, {1, 2}}, {"AB", UPDATE_ACCESS, {1, 2, 3}}, {"B", FULL_ACCESS, {-4, 5}}};
  for (const auto& [name, given, actions] : kRows) {
    const QCSObject service = Named(name);
    EXPECT_EQ(Highest([&](auto level) { return holder.IsDefAccessAllowed(service, level); }),
              given);
    std::vector<int> allowed;
    for (int action = -10; action < 10; ++action) {
      if (holder.IsActionAllowed(service, action)) allowed.push_back(action);
    }
    EXPECT_EQ(allowed, actions) << name;
  }
}

TEST(VQServiceUserAuth, AddsListsAndClears) {
  const VQServiceUserAuth second(Received({{"NAME = 'B'", FULL_ACCESS, {2}}}),
                                 Received({{"NAME = 'C'", FULL_ACCESS, {3}}}));
  VQServiceUserAuth sum(Received({{"NAME = 'A'", BROWSE_ACCESS, {1}}}));
  sum.AddUserAuth(second);
  ASSERT_EQ(sum.UserAuth().size(), 2U);
  EXPECT_EQ(sum.UserAuth().back().Criteria, "NAME = 'B'");
  EXPECT_TRUE(sum.GroupAuth().empty());
  EXPECT_TRUE(sum.IsActionAllowed(Named("A"), 1) && sum.IsActionAllowed(Named("B"), 2));
  EXPECT_FALSE(sum.IsActionAllowed(Named("C"), 3));
  sum.AddGroupAuth(second);
  EXPECT_TRUE(sum.IsActionAllowed(Named("C"), 3));
  sum.Clear();
  EXPECT_TRUE(sum.IsEmpty() && sum.UserAuth().empty());
  EXPECT_FALSE(sum.IsActionAllowed(Named("A"), 1));
  EXPECT_EQ(Highest([&](auto level) { return sum.IsDefAccessAllowed(Named("A"), level); }), 0);
}

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
