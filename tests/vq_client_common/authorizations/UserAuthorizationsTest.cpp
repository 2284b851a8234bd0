// Loads from a simulated server, and every question after them.
#include <vq_client_common/authorizations/UserAuthorizations.h>

#include <tests/fixture/SessionFixture.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace {

using nlohmann::json;
using UA = UserAuthorizations;

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

QCSObject Named(const std::string& name) {
  QCSObject object;
  object.SetAttribute("NAME", name);
  return object;
}

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

void ExpectNothingAllowed(const UA& may) {
  for (const auto& [privilege, question] : kPrivileges) {
    EXPECT_TRUE((may.*question)(DEFAULT_ACCESS) && !(may.*question)(ACCESS_NONE)) << privilege;
  }
  EXPECT_FALSE(may.IsAdministrator() || may.IsJobLevelAuthExist() ||
               may.CanBrowseUserOrderForce() || may.IsOpenArchivedViewPointAllowed());
  EXPECT_EQ(may.GetCLIAccess(), DEFAULT_ACCESS);
}

void ExpectGrants(const UA& may, bool granted) {
  for (const auto& [kind, onObject, onKind] : kKinds) {
    EXPECT_EQ((may.*onKind)(), granted) << kind;
    EXPECT_EQ((may.*onObject)(Named("A"), FULL_ACCESS), granted) << kind;
  }
  EXPECT_EQ(may.IsServiceActionAccessAllowed(Named("A"), 3), granted);
}

TEST_F(UserAuthorizationsTest, EachPrivilegeAnswersItsOwnQuestions) {
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<std::string> privileges(std::begin(kOthers), std::end(kOthers));
  for (const auto& [privilege, question] : kPrivileges) privileges.emplace_back(privilege);
  for (const std::string& privilege : privileges) {
    for (int stored = DEFAULT_ACCESS; stored <= MAX_ACCESS; ++stored) {
      SCOPED_TRACE(privilege + " " + kLevelNames[stored]);
      Change({{"privileges", nullptr}});
      Change(Privilege(privilege, kLevelNames[stored]));
      ASSERT_EQ(Load(), 1);
      for (const auto& [other, question] : kPrivileges) {
        const int level = other == privilege ? stored : DEFAULT_ACCESS;
        for (int asked = DEFAULT_ACCESS; asked <= MAX_ACCESS; ++asked) {
          EXPECT_EQ((May().*question)(static_cast<QCSAuthLevelEnum>(asked)), level >= asked)
              << other << " asked for " << kLevelNames[asked];
        }
      }
      EXPECT_EQ(May().IsAdministrator(), privilege == "AUTHORIZATION" && stored == FULL_ACCESS);
      EXPECT_EQ(LoginHandler::GetGlobal()->IsAdministrator(), May().IsAdministrator());
      EXPECT_EQ(May().IsOpenArchivedViewPointAllowed(),
                privilege == "ARCHIVEVP" && stored >= BROWSE_ACCESS);
      EXPECT_EQ(May().GetCLIAccess(), privilege == "CLI" ? stored : DEFAULT_ACCESS);
    }
  }
}

TEST_F(UserAuthorizationsTest, EachKindHasItsOwnGrantsTheUsersAndTheGroups) {
  ASSERT_NO_FATAL_FAILURE(Start({{"groups", {"team"}}}));
  for (const auto& filled : kKinds) {
    for (const char* whose : {"users", "groups"}) {
      SCOPED_TRACE(std::string(filled.grants) + whose);
      json both = {{"users", {{"alice", {{"grants", nullptr}}}}},
                   {"groups", {{"team", {{"grants", nullptr}}}}}};
      m_server->Patch(both);
      both[whose].front() = Grant(filled.grants, "NAME LIKE 'A*'", "UPDATE_ACCESS");
      m_server->Patch(both);
      ASSERT_EQ(Load(), 1);
      for (const auto& [kind, onObject, onKind] : kKinds) {
        const bool granted = kind == filled.grants;
        EXPECT_EQ((May().*onKind)(), granted) << kind;
        EXPECT_EQ((May().*onObject)(Named("AB"), UPDATE_ACCESS), granted) << kind;
        EXPECT_FALSE((May().*onObject)(Named("AB"), FULL_ACCESS)) << kind;
        EXPECT_FALSE((May().*onObject)(Named("B"), ACCESS_NONE)) << kind;
      }
      EXPECT_EQ(May().IsServiceActionAccessAllowed(Named("AB"), 5),
                filled.grants == kKinds[0].grants);
      EXPECT_FALSE(May().IsServiceActionAccessAllowed(Named("AB"), 4));
    }
  }
}

// A server of another version may know another syntax.
TEST_F(UserAuthorizationsTest, GrantsThatDoNotParseCountForTheirKindAlone) {
  json alice;
  for (const auto& row : kKinds) alice.merge_patch(Grant(row.grants, "NAME IN ('A')"));
  ASSERT_NO_FATAL_FAILURE(Start(alice));
  for (const auto& [kind, onObject, onKind] : kKinds) {
    EXPECT_TRUE((May().*onKind)()) << kind;
    EXPECT_FALSE((May().*onObject)(Named("A"), ACCESS_NONE)) << kind;
  }
  EXPECT_FALSE(May().IsServiceActionAccessAllowed(Named("A"), 3));
}

TEST_F(UserAuthorizationsTest, ParametersDecideOrderForceAndPasswordChange) {
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
  const std::pair<json, bool> kPassword[] = {
      {"1", true}, {"10", false}, {"", false}, {"0", false}, {unreadable, false}};
  for (const auto& [value, can] : kPassword) {
    m_server->SetParameter("gui", "UserChangePassword", value);
    ASSERT_EQ(Load(), 1);
    EXPECT_EQ(May().IsChangePasswordAccessAllowed(FULL_ACCESS), can) << value;
    EXPECT_TRUE(May().IsChangePasswordAccessAllowed(UPDATE_ACCESS));
    EXPECT_FALSE(May().IsChangePasswordAccessAllowed(MAX_ACCESS));
    EXPECT_FALSE(May().IsAuthDefAccessAllowed(FULL_ACCESS));
  }
}

TEST_F(UserAuthorizationsTest, AFailedLoadTellsWhyAndLeavesWhatItHadCopied) {
  ASSERT_NO_FATAL_FAILURE(Start());
  constexpr auto kFetch = "CRB_GetMyAuthorizationsFromMemory";
  constexpr auto kJobLevel = "CRB_IsJobLevelAuthExist";
  const std::tuple<std::string, std::string, int, const char*> rows[] = {
      {kFetch, "USER_NOT_FOUND", 0, "Caught a UserNotFound Exception - why"},
      {kJobLevel, "USER_NOT_FOUND", 0, "Caught a UserNotFound Exception - why"},
      {kJobLevel, "USER_NOT_AUTHORIZED", 43, "Caught a UserNotAuthorized Exception - why"}};
  for (const auto& [operation, exception, result, line] : rows) {
    SCOPED_TRACE(operation + " " + exception);
    Change(Privilege("ALERT", "UPDATE_ACCESS"));
    Change(Grant("tables", "*"));
    ASSERT_EQ(Load(), 1);
    Change(Privilege("ALERT", "FULL_ACCESS"));
    Change({{"grants", nullptr}});
    json fault = vq::test::Raise(operation, exception);
    fault[0]["message"] = "why";
    m_server->SetFaults(fault);
    m_log.Clear();
    EXPECT_EQ(Load(), result);
    EXPECT_EQ(m_log.Count(1, line), 1) << m_log.Text();
    EXPECT_EQ(May().IsAlertsAccessAllowed(FULL_ACCESS), operation == kJobLevel);
    EXPECT_TRUE(May().IsSchdTblsAccessAllowed());
    m_server->SetFaults(json::array());
    EXPECT_EQ(Load(), 1);
    EXPECT_TRUE(May().IsAlertsAccessAllowed(FULL_ACCESS));
    EXPECT_FALSE(May().IsSchdTblsAccessAllowed());
  }
  ASSERT_EQ(GL_LogOut(false), 1);
  m_server->Kill();
  m_log.Clear();
  EXPECT_EQ(Load(), 0);
  const char* kLine = "couldn't get CORBA servant automatic reconnect process is to be invoked.";
  EXPECT_EQ(m_log.Count(1, kLine), 1) << m_log.Text();
}

TEST_F(UserAuthorizationsTest, NothingIsAllowedWithoutALoadAndResetLeavesTheGrants) {
  ExpectNothingAllowed(UA());
  ExpectGrants(UA(), false);
  json alice = {{"jobLevelAuthorization", true}};
  for (const auto& row : kPrivileges) alice.merge_patch(Privilege(row.first, "FULL_ACCESS"));
  for (const char* name : kOthers) alice.merge_patch(Privilege(name, "FULL_ACCESS"));
  for (const auto& row : kKinds) alice.merge_patch(Grant(row.grants, "*"));
  ASSERT_NO_FATAL_FAILURE(Start(alice));
  m_server->SetParameter("gsr", "Action_OrderForce_AuthLevel", "BROWSE_ACCESS");
  m_server->SetParameter("gui", "UserChangePassword", "1");
  m_server->ForgetCalls();
  ASSERT_EQ(Load(), 1);
  EXPECT_TRUE(May().IsAdministrator() && May().CanBrowseUserOrderForce() &&
              May().IsJobLevelAuthExist() && May().IsOpenArchivedViewPointAllowed());
  UA kept;
  kept = UA(May());
  UA::Get()->Reset();
  ExpectNothingAllowed(May());
  ExpectGrants(May(), true);
  EXPECT_TRUE(kept.IsAdministrator());  // the copy is of the state before
  EXPECT_EQ(kept.GetCLIAccess(), FULL_ACCESS);
  ExpectGrants(kept, true);
  EXPECT_EQ(
      m_server->Operations(),  // Only the load asks the server.
      (std::vector<std::string>{"CRB_GetMyAuthorizationsFromMemory", "CRB_IsJobLevelAuthExist",
                                "CRB_GetSystemParameterValue", "CRB_GetSystemParameterValue"}));
  ASSERT_EQ(Load(), 1);
  EXPECT_TRUE(May().IsAdministrator());
  GL_LogOut(false);
  ExpectNothingAllowed(May());
  ExpectGrants(May(), true);
}

TEST_F(UserAuthorizationsTest, QueriesComeFromTheServerAndFailSafely) {
  json alice = Grant("owners", "OWNER = 'ops'", "BROWSE_ACCESS");
  alice.merge_patch(Grant("calendars", "NAME LIKE 'A*'"));
  ASSERT_NO_FATAL_FAILURE(Start(alice));
  const std::string userId = LoginHandler::GetGlobal()->GetUserID();
  QCSCorbaUserDefinitionQueries_var definition;
  QCSCorbaUserActiveQueriesSeq* active = nullptr;
  const auto ask = [&](UA& of, const std::string& id) {
    return of.GetUserAuthQueries({"PROD", "TEST"}, "text", true, false, definition.out(), active,
                                 id);
  };
  ASSERT_EQ(ask(*UA::Get(), userId), 1);
  QCSCorbaUserActiveQueriesSeq_var owned = active;
  EXPECT_STREQ(definition->m_DefCalendarQuery, "NAME LIKE 'A*'");
  ASSERT_EQ(owned->length(), 2U);
  EXPECT_STREQ(owned[1U].m_VltName, "TEST");
  EXPECT_STREQ(owned[1U].m_ActiveJobQuery, "OWNER = 'ops'");
  EXPECT_EQ(m_server->LastCall("CRB_GetUserAuthQueriesEx")["arguments"].dump(),
            R"({"flag1":true,"flag2":false,"names":["PROD","TEST"],"text":"text","userId":")" +
                userId + "\"}");
  m_log.Clear();
  EXPECT_EQ(ask(*UA::Get(), "nobody"), 0);
  EXPECT_EQ(active, nullptr);
  EXPECT_TRUE(m_log.Has(1, "Caught CORBA exception, Trying to reconnect...USER_NOT_FOUND"));
  UA unloaded;
  active = &owned.inout();
  EXPECT_EQ(ask(unloaded, userId), 0);
  EXPECT_EQ(active, nullptr);
}

}  // namespace
