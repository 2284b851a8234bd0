#include <support/orb/AuthLevelBySelection.h>
#include <support/orb/CorbaConversions.h>
#include <support/orb/VQServiceUserAuth.h>

#include <initializer_list>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <tests/fixture/LogCapture.h>

namespace {

using Pair = std::pair<const char*, QCSAuthLevelEnum>;

QCSCorbaAuth2LvlSeq Wire(std::initializer_list<Pair> grants) {
  QCSCorbaAuth2LvlSeq wire;
  for (const auto& [criteria, level] : grants) {
    wire.length(wire.length() + 1);
    wire[wire.length() - 1].m_sCriteria = criteria;
    wire[wire.length() - 1].m_eLevel = level;
  }
  return wire;
}

QCSObject Named(const std::string& name) {
  QCSObject object;
  object.SetAttribute("NAME", name);
  return object;
}

// The highest level that the holder gives over the object.
template <class Ask>
int Given(Ask ask) {
  int given = -1;
  for (int level = DEFAULT_ACCESS; level <= MAX_ACCESS; ++level) {
    if (ask(static_cast<QCSAuthLevelEnum>(level))) {
      EXPECT_EQ(given, level - 1) << "a higher level without the lower ones";
      given = level;
    }
  }
  return given;
}

int Given(const AuthLevelBySelection& holder, const std::string& name) {
  return Given([&](QCSAuthLevelEnum level) { return holder.IsAuthorized(Named(name), level); });
}

TEST(AuthLevelBySelection, TheUsersOwnGrantsGoBeforeTheGroups) {
  AuthLevelBySelection holder;
  EXPECT_TRUE(holder.UserAuthFromCORBA(Wire({{"NAME LIKE 'A*'", BROWSE_ACCESS},
                                             {"NAME LIKE 'AB*'", UPDATE_ACCESS},
                                             {"NAME = 'AN'", ACCESS_NONE},
                                             {"NAME = 'Z'", ACCESS_NONE},
                                             {"NAME = 'D'", DEFAULT_ACCESS},
                                             {"NAME = 'M'", MAX_ACCESS}}),
                                       true));
  holder.GroupAuthFromCORBA(Wire({{"*", BROWSE_ACCESS}, {"NAME LIKE '?'", FULL_ACCESS}}), true);
  struct Row {
    const char* name;
    QCSAuthLevelEnum given;
  };
  static constexpr Row kRows[] = {
      {"A", BROWSE_ACCESS},    // an own grant fits, so the groups' FULL_ACCESS does not count
      {"ABC", UPDATE_ACCESS},  // the highest of two own grants
      {"AN", BROWSE_ACCESS},   // the highest, whatever the order
      {"Z", ACCESS_NONE},      // an own grant may take away
      {"D", DEFAULT_ACCESS},   // even all
      {"M", MAX_ACCESS},      {"B", FULL_ACCESS},  // no own grant fits: the highest of the groups'
      {"BC", BROWSE_ACCESS},
  };
  for (const Row& row : kRows) EXPECT_EQ(Given(holder, row.name), row.given) << row.name;
}

TEST(AuthLevelBySelection, WithoutAFittingGrantOnlyDefaultAccessIsAllowed) {
  AuthLevelBySelection holder;
  EXPECT_TRUE(holder.IsEmpty());
  EXPECT_EQ(Given(holder, "A"), DEFAULT_ACCESS);
  holder.GroupAuthFromCORBA(Wire({{"NAME = 'B'", FULL_ACCESS}}), true);
  EXPECT_FALSE(holder.IsEmpty());
  EXPECT_EQ(Given(holder, "A"), DEFAULT_ACCESS);
  EXPECT_TRUE(holder.IsAuthorized(QCSObject(), DEFAULT_ACCESS));
  EXPECT_FALSE(holder.IsAuthorized(QCSObject(), ACCESS_NONE));
}

TEST(AuthLevelBySelection, ALoadReplacesOrAddsAsTheFlagSays) {
  AuthLevelBySelection holder;
  holder.UserAuthFromCORBA(Wire({{"NAME = 'A'", FULL_ACCESS}}), true);
  const AuthLevelBySelection copy = holder;
  holder.UserAuthFromCORBA(Wire({{"NAME = 'B'", UPDATE_ACCESS}}), false);
  EXPECT_EQ(Given(holder, "A"), FULL_ACCESS);
  EXPECT_EQ(Given(holder, "B"), UPDATE_ACCESS);
  holder.UserAuthFromCORBA(Wire({{"NAME = 'C'", BROWSE_ACCESS}}), true);
  EXPECT_EQ(Given(holder, "A"), DEFAULT_ACCESS);
  EXPECT_EQ(Given(holder, "C"), BROWSE_ACCESS);
  EXPECT_EQ(Given(copy, "A"), FULL_ACCESS);
  EXPECT_EQ(Given(copy, "B"), DEFAULT_ACCESS);
  holder.UserAuthFromCORBA(Wire({}), true);
  EXPECT_TRUE(holder.IsEmpty());
  holder = copy;
  EXPECT_EQ(Given(holder, "A"), FULL_ACCESS);
}

TEST(RefusedGrants, GrantNothingAndAreLogged) {
  EXPECT_TRUE(VQServiceUserAuth({{"NAME =", FULL_ACCESS, {1}}}).IsEmpty());
  vq::test::LogCapture log(1);
  AuthLevelBySelection holder;
  EXPECT_FALSE(holder.UserAuthFromCORBA(Wire({{"NAME LIKE A*", FULL_ACCESS}}), true));
  EXPECT_TRUE(holder.IsEmpty());
  EXPECT_EQ(Given(holder, "A"), DEFAULT_ACCESS);
  EXPECT_THAT(log.Take(),
              ::testing::ElementsAre(
                  "1 A grant is left out, its criteria do not parse at position 10: expected "
                  "a value in single quotes, found A*. Criteria: NAME LIKE A*"));
  EXPECT_TRUE(holder.UserAuthFromCORBA(Wire({{"NAME LIKE 'A*'", UPDATE_ACCESS}}), false));
  EXPECT_EQ(Given(holder, "A"), UPDATE_ACCESS);
  EXPECT_EQ(log.Text(), "");
}

TEST(RefusedGrants, ManyOfThemDoNotFillTheLog) {
  QCSCorbaAuth2LvlSeq wire;
  wire.length(1000);
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    wire[i].m_sCriteria = "?";
    wire[i].m_eLevel = FULL_ACCESS;
  }
  vq::test::LogCapture log(1);
  AuthLevelBySelection holder;
  holder.GroupAuthFromCORBA(wire, true);
  ASSERT_EQ(log.Lines().size(), 21U);
  EXPECT_EQ(log.Lines().back().text, "980 further grants are left out likewise");
}

QCSCorbaAuth2LvlSeq2 ServiceWire(
    std::initializer_list<std::pair<Pair, std::initializer_list<int>>> grants) {
  QCSCorbaAuth2LvlSeq2 wire;
  for (const auto& [pair, actions] : grants) {
    wire.length(wire.length() + 1);
    QCSCORBAAuthPair2& grant = wire[wire.length() - 1];
    grant.Criteria = pair.first;
    grant.Level = pair.second;
    for (const int action : actions) {
      grant.Actions.length(grant.Actions.length() + 1);
      grant.Actions[grant.Actions.length() - 1] = action;
    }
  }
  return wire;
}

std::list<VQServiceAuth> Converted(const QCSCorbaAuth2LvlSeq2& wire) {
  std::list<VQServiceAuth> grants{VQServiceAuth{"from before", FULL_ACCESS, {1}}};
  CrbConvert(wire, grants);
  return grants;
}

TEST(VQServiceUserAuth, LevelsAndActionsComeFromTheDecidingList) {
  VQServiceUserAuth holder;
  EXPECT_TRUE(holder.IsEmpty());
  holder.AddUserAuth(VQServiceUserAuth(Converted(ServiceWire({
      {{"NAME LIKE 'A*'", BROWSE_ACCESS}, {1, 2}},
      {{"NAME = 'AB'", UPDATE_ACCESS}, {3}},
  }))));
  holder.AddGroupAuth(VQServiceUserAuth(
      {},
      Converted(ServiceWire({{{"*", FULL_ACCESS}, {-4, 5}}, {{"NAME = 'B'", ACCESS_NONE}, {}}}))));
  EXPECT_FALSE(holder.IsEmpty());
  struct Row {
    const char* name;
    QCSAuthLevelEnum given;
    std::vector<int> actions;
  };
  const Row kRows[] = {
      {"A", BROWSE_ACCESS, {1, 2}},
      {"AB", UPDATE_ACCESS, {1, 2, 3}},
      {"B", FULL_ACCESS, {-4, 5}},
  };
  for (const Row& row : kRows) {
    const QCSObject service = Named(row.name);
    EXPECT_EQ(Given([&](auto level) { return holder.IsDefAccessAllowed(service, level); }),
              row.given)
        << row.name;
    std::vector<int> allowed;
    for (int action = -10; action < 10; ++action) {
      if (holder.IsActionAllowed(service, action)) allowed.push_back(action);
    }
    EXPECT_EQ(allowed, row.actions) << row.name;
  }
}

TEST(VQServiceUserAuth, ListsAddUpInOrderAndClearEmptiesBoth) {
  const VQServiceUserAuth first(Converted(ServiceWire({{{"NAME = 'A'", BROWSE_ACCESS}, {1}}})));
  const VQServiceUserAuth second(Converted(ServiceWire({{{"NAME = 'B'", FULL_ACCESS}, {2}}})),
                                 Converted(ServiceWire({{{"NAME = 'C'", FULL_ACCESS}, {3}}})));
  VQServiceUserAuth sum = first;
  sum.AddUserAuth(second);
  ASSERT_EQ(sum.UserAuth().size(), 2U);
  EXPECT_EQ(sum.UserAuth().back().Criteria, "NAME = 'B'");
  EXPECT_TRUE(sum.GroupAuth().empty());
  EXPECT_TRUE(sum.IsActionAllowed(Named("A"), 1));
  EXPECT_TRUE(sum.IsActionAllowed(Named("B"), 2));
  EXPECT_FALSE(sum.IsActionAllowed(Named("C"), 3));
  EXPECT_FALSE(first.IsActionAllowed(Named("B"), 2));
  sum.AddGroupAuth(second);
  EXPECT_TRUE(sum.IsActionAllowed(Named("C"), 3));
  sum.Clear();
  EXPECT_TRUE(sum.IsEmpty());
  EXPECT_TRUE(sum.UserAuth().empty());
  EXPECT_FALSE(sum.IsActionAllowed(Named("A"), 1));
  EXPECT_TRUE(sum.IsDefAccessAllowed(Named("A"), DEFAULT_ACCESS));
  EXPECT_FALSE(sum.IsDefAccessAllowed(Named("A"), ACCESS_NONE));
}

TEST(CorbaConversions, TextsGoBothWays) {
  stringSeq sequence;
  sequence.length(5);
  StlVector2CorbaSequence(std::list<std::string>{"PROD", ""}, sequence);
  ASSERT_EQ(sequence.length(), 2U);
  EXPECT_STREQ(sequence[0], "PROD");
  EXPECT_STREQ(sequence[1], "");
  StlVector2CorbaSequence(std::vector<std::string>{}, sequence);
  EXPECT_EQ(sequence.length(), 0U);
  EXPECT_EQ(CorbaString2StlString("text"), "text");
  EXPECT_EQ(CorbaString2StlString(nullptr), "");
}

}  // namespace
