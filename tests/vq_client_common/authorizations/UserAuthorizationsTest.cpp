// Loads from a simulated server, and every question after a load.
#include <vq_client_common/authorizations/UserAuthorizations.h>

#include <tests/fixture/SessionFixture.h>
#include <tests/support/grants/Asking.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace {

using nlohmann::json;
using UA = UserAuthorizations;
using vq::test::Highest;
using vq::test::Named;

constexpr const char* kLevelNames[] = {"DEFAULT_ACCESS", "ACCESS_NONE", "BROWSE_ACCESS",
                                       "UPDATE_ACCESS",  "FULL_ACCESS", "MAX_ACCESS"};

using Question = bool (UA::*)(QCSAuthLevelEnum) const;
constexpr std::pair<const char*, Question> kPrivileges[] = {
    {"AUTHORIZATION", &UA::IsAuthDefAccessAllowed},
    {"AUTHORIZATION", &UA::IsChangePasswordAccessAllowed},
    {"VMC_CONFIGURATION", &UA::IsCommAccessAllowed},
    {"QIM", &UA::IsQIMAccessAllowed},
    {"FORECAST", &UA::IsForecastAccessAllowed},
    {"PERIOD_STAT", &UA::IsPeriodStatAccessAllowed},
    {"QIMFOR_CONFIG", &UA::IsForecastQIMConfigAccessAllowed},
    {"COLLECTIONDEF", &UA::IsCollDefAccessAllowed},
    {"HIERARCHIEDEF", &UA::IsHierDefAccessAllowed},
    {"FILTERDEF", &UA::IsFiltDefAccessAllowed},
    {"ACTIVEVP", &UA::IsViewDefAccessAllowed},
    {"ALERT", &UA::IsAlertsAccessAllowed}};
// These have questions of other forms, or none.
constexpr const char* kOthers[] = {
    "ARCHIVEVP",     "CLI",       "VMC_LOGIN", "VMC_OPERATION", "VMC_DB",   "VMC_VLT_SECURITY",
    "SITE_STANDARD", "SLS_LOGIN", "WCM_LOGIN", "OTHER_LOGIN",   "AI_ACCESS"};

constexpr struct {
  const char* grants;
  bool (UA::*onObject)(const QCSObject&, QCSAuthLevelEnum) const;
  bool (UA::*onKind)() const;
} kKinds[] = {{"services", &UA::IsServiceAccessAllowed, &UA::IsServicesAccessAllowed},
              {"calendars", &UA::IsCalendarAccessAllowed, &UA::IsCalendarsAccessAllowed},
              {"prereqConds", &UA::IsPrereqCondAccessAllowed, &UA::IsPrereqCondsAccessAllowed},
              {"controlRes", &UA::IsControlResAccessAllowed, &UA::IsControlRessAccessAllowed},
              {"quantRes", &UA::IsQuantResAccessAllowed, &UA::IsQuantRessAccessAllowed},
              {"globalPrefix", &UA::IsGlobalCondAccessAllowed, &UA::IsGlobalCondsAccessAllowed},
              {"tables", &UA::IsSchedTblAccessAllowed, &UA::IsSchdTblsAccessAllowed},
              {"owners", &UA::IsOwnerAccessAllowed, &UA::IsOwnersAccessAllowed},
              {"workloads", &UA::IsWorkloadAccessAllowed, &UA::IsWorkloadsAccessAllowed}};

json Privilege(const std::string& name, const char* level) {
  return {{"privileges", {{name + "_PRIV_TYPE", level}}}};
}
// One grant; that of services has the actions 3 and 5.
json Grant(const std::string& kind, const char* criteria, const char* level = "FULL_ACCESS") {
  json grant = {{"criteria", criteria}, {"level", level}};
  if (kind == "services") grant["actions"] = {3, 5};
  return {{"grants", {{kind, {grant}}}}};
}

class UserAuthorizationsTest : public vq::test::SessionFixture {
 protected:
  // A session of alice, changed so.
  void Start(const json& alice = json::object()) {
    json site = vq::test::BaseSite();
    site["users"]["alice"].merge_patch(alice);
    site["groups"]["team"] = json::object();
    m_server = &StartSession(site);
    ASSERT_EQ(GL_PostLogin(m_message), 1) << m_message;
  }
  // Changes alice without a login.
  void Change(const json& change) { m_server->Patch({{"users", {{"alice", change}}}}); }
  static int Load() {
    return UA::Get()->LoadAuthorizations(LoginHandler::GetGlobal()->GetUserID());
  }
  static const UA& May() { return *UA::Get(); }

  vq::test::Server* m_server = nullptr;
};

std::string Answers(const UA& may) {
  std::string text;
  for (const auto& [privilege, question] : kPrivileges) {
    text += std::to_string(Highest([&, ask = question](auto level) { return (may.*ask)(level); }));
  }
  return text + " " + std::to_string(may.GetCLIAccess()) +
         (may.IsAdministrator() ? " administrator" : "") +
         (may.IsOpenArchivedViewPointAllowed() ? " archive" : "") +
         (may.IsJobLevelAuthExist() ? " jobs" : "") +
         (may.CanBrowseUserOrderForce() ? " order" : "");
}
const std::string kNothing = "000000000000 0";

// What the grants of each kind give over the object.
std::string Granted(const UA& may, const std::string& name) {
  std::string text;
  for (const auto& [kind, onObject, onKind] : kKinds) {
    text += (may.*onKind)() ? " any " : " ";
    text += std::to_string(
        Highest([&, ask = onObject](auto level) { return (may.*ask)(Named(name), level); }));
  }
  for (const int action : {3, 4, 5})
    text += may.IsServiceActionAccessAllowed(Named(name), action) ? " action" : " -";
  return text;
}

TEST_F(UserAuthorizationsTest, EachPrivilegeAnswersItsQuestions) {
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<std::string> privileges(std::begin(kOthers), std::end(kOthers));
  for (const auto& [privilege, question] : kPrivileges) privileges.emplace_back(privilege);
  for (const std::string& privilege : privileges) {
    for (int stored = DEFAULT_ACCESS; stored <= MAX_ACCESS; ++stored) {
      Change({{"privileges", nullptr}});
      Change(Privilege(privilege, kLevelNames[stored]));
      ASSERT_EQ(Load(), 1);
      std::string expected;
      for (const auto& [other, question] : kPrivileges)
        expected += std::to_string(other == privilege ? stored : 0);
      expected += " " + std::to_string(privilege == "CLI" ? stored : 0);
      const bool isAdministrator = privilege == "AUTHORIZATION" && stored == FULL_ACCESS;
      if (isAdministrator) expected += " administrator";
      if (privilege == "ARCHIVEVP" && stored >= BROWSE_ACCESS) expected += " archive";
      EXPECT_EQ(Answers(May()), expected) << privilege;
      EXPECT_EQ(LoginHandler::GetGlobal()->IsAdministrator(), isAdministrator);
    }
  }
}

TEST_F(UserAuthorizationsTest, EachKindHasItsGrants) {
  ASSERT_NO_FATAL_FAILURE(Start({{"groups", {"team"}}}));
  for (const auto& filled : kKinds) {
    for (const char* whose : {"users", "groups"}) {
      json both = {{"users", {{"alice", {{"grants", nullptr}}}}},
                   {"groups", {{"team", {{"grants", nullptr}}}}}};
      m_server->Patch(both);
      both[whose].front() = Grant(filled.grants, "NAME LIKE 'A*'", "UPDATE_ACCESS");
      m_server->Patch(both);
      ASSERT_EQ(Load(), 1);
      std::string fits, fitsNot;
      for (const auto& row : kKinds) {
        fits += row.grants == filled.grants ? " any 3" : " 0";
        fitsNot += row.grants == filled.grants ? " any 0" : " 0";
      }
      const bool areServices = filled.grants == kKinds[0].grants;
      EXPECT_EQ(Granted(May(), "AB"), fits + (areServices ? " action - action" : " - - -"));
      EXPECT_EQ(Granted(May(), "B"), fitsNot + " - - -");
    }
  }
}

TEST_F(UserAuthorizationsTest, ParametersDecide) {
  ASSERT_NO_FATAL_FAILURE(Start(Privilege("AUTHORIZATION", "UPDATE_ACCESS")));
  const json unreadable = {{"fail", 1}};  // It leaves the answer as it was.
  const std::pair<json, bool> kOrderForce[] = {{"browse_access", false}, {"BROWSE_ACCESS", true},
                                               {unreadable, true},       {"BROWSE_ACCESS ", false},
                                               {unreadable, false},      {"", false}};
  for (const auto& [value, can] : kOrderForce) {
    m_server->SetParameter("gsr", "Action_OrderForce_AuthLevel", value);
    ASSERT_EQ(Load(), 1);
    EXPECT_EQ(May().CanBrowseUserOrderForce(), can) << value;
  }
  const std::pair<json, bool> kPassword[] = {{"1", true}, {"10", false}, {unreadable, false}};
  for (const auto& [value, can] : kPassword) {
    m_server->SetParameter("gui", "UserChangePassword", value);
    ASSERT_EQ(Load(), 1);
    EXPECT_EQ(May().IsChangePasswordAccessAllowed(FULL_ACCESS), can) << value;
    EXPECT_TRUE(May().IsChangePasswordAccessAllowed(UPDATE_ACCESS));
    EXPECT_FALSE(May().IsChangePasswordAccessAllowed(MAX_ACCESS));
    EXPECT_FALSE(May().IsAuthDefAccessAllowed(FULL_ACCESS));
  }
}

// The results are in the table of faults.
TEST_F(UserAuthorizationsTest, FailedLoadKeepsTheGrants) {
  ASSERT_NO_FATAL_FAILURE(Start());
  for (const char* operation : {"CRB_GetMyAuthorizationsFromMemory", "CRB_IsJobLevelAuthExist"}) {
    Change(Privilege("ALERT", "UPDATE_ACCESS"));
    Change(Grant("tables", "*"));
    ASSERT_EQ(Load(), 1);
    Change(Privilege("ALERT", "FULL_ACCESS"));
    Change({{"grants", nullptr}});
    json fault = vq::test::Raise(operation, "USER_NOT_FOUND");
    fault[0]["message"] = "why";
    m_server->SetFaults(fault);
    EXPECT_EQ(Load(), 0);
    EXPECT_TRUE(m_log.Has(1, "Caught a UserNotFound Exception - why"));
    // What was copied before the failure stays.
    EXPECT_EQ(May().IsAlertsAccessAllowed(FULL_ACCESS), operation[4] == 'I');
    EXPECT_TRUE(May().IsSchdTblsAccessAllowed());
    m_server->SetFaults(json::array());
    EXPECT_EQ(Load(), 1);
    EXPECT_FALSE(May().IsSchdTblsAccessAllowed());
  }
}

TEST_F(UserAuthorizationsTest, ResetLeavesTheGrants) {
  EXPECT_EQ(Answers(UA()), kNothing);
  json alice = {{"jobLevelAuthorization", true}};
  for (const char* name : {"CLI", "ARCHIVEVP", "AUTHORIZATION"})
    alice.merge_patch(Privilege(name, "FULL_ACCESS"));
  for (const auto& row : kKinds) alice.merge_patch(Grant(row.grants, "*"));
  ASSERT_NO_FATAL_FAILURE(Start(alice));
  m_server->SetParameter("gsr", "Action_OrderForce_AuthLevel", "BROWSE_ACCESS");
  m_server->SetParameter("gui", "UserChangePassword", "1");
  const std::string all = "440000000000 4 administrator archive jobs order";
  const std::string granted =
      " any 4 any 4 any 4 any 4 any 4 any 4 any 4 any 4 any 4 action - action";
  ASSERT_EQ(Load(), 1);
  EXPECT_EQ(Answers(May()), all);
  UA kept;
  kept = UA(May());
  UA::Get()->Reset();
  EXPECT_EQ(Answers(May()) + Granted(May(), "A"), kNothing + granted);
  EXPECT_EQ(Answers(kept) + Granted(kept, "A"), all + granted);
  ASSERT_EQ(Load(), 1);
  GL_LogOut(false);
  EXPECT_EQ(Answers(May()) + Granted(May(), "A"), kNothing + granted);
}

TEST_F(UserAuthorizationsTest, AsksForQueries) {
  json alice = Grant("owners", "OWNER = 'ops'", "BROWSE_ACCESS");
  alice.merge_patch(Grant("calendars", "NAME LIKE 'A*'"));
  alice["grants"]["quantRes"] = {{{"criteria", "(A = '1') OR B = '2'"}, {"level", "BROWSE_ACCESS"}},
                                 {{"criteria", "no selection"}, {"level", "FULL_ACCESS"}},
                                 {{"criteria", "C = '3'"}, {"level", "ACCESS_NONE"}},
                                 {{"criteria", "*"}, {"level", "FULL_ACCESS"}}};
  ASSERT_NO_FATAL_FAILURE(Start(alice));
  const std::string userId = LoginHandler::GetGlobal()->GetUserID();
  QCSCorbaUserDefinitionQueries_var definition;
  QCSCorbaUserActiveQueriesSeq* active = nullptr;
  const auto ask = [&](UA& of) {
    return of.GetUserAuthQueries({"PROD", "TEST"}, "text", true, false, definition.out(), active,
                                 userId);
  };
  ASSERT_EQ(ask(*UA::Get()), 1);
  QCSCorbaUserActiveQueriesSeq_var owned = active;
  EXPECT_STREQ(definition->m_DefCalendarQuery, "NAME LIKE 'A*'");
  EXPECT_STREQ(definition->m_DefGlobalCondsQuery, "");
  ASSERT_EQ(owned->length(), 2U);
  EXPECT_STREQ(owned[1U].m_VltName, "TEST");
  EXPECT_STREQ(owned[1U].m_ActiveJobQuery, "OWNER = 'ops'");
  EXPECT_STREQ(owned[1U].m_ActiveQuantResQuery, "(A = '1') OR B = '2' OR *");
  EXPECT_EQ(m_server->LastCall("CRB_GetUserAuthQueriesEx")["arguments"].dump(),
            R"({"flag1":true,"flag2":false,"names":["PROD","TEST"],"text":"text","userId":")" +
                userId + "\"}");
  UA unloaded;
  EXPECT_EQ(ask(unloaded), 0);
  EXPECT_EQ(active, nullptr);
}

}  // namespace
