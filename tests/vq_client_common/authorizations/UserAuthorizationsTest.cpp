// Loads from a simulated server, and every question after them.
#include <vq_client_common/authorizations/UserAuthorizations.h>

#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tests/fixture/SessionFixture.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>

namespace {

using nlohmann::json;
using Levels = bool (UserAuthorizations::*)(QCSAuthLevelEnum) const;
using OnObject = bool (UserAuthorizations::*)(const QCSObject&, QCSAuthLevelEnum) const;
using OnKind = bool (UserAuthorizations::*)() const;
using UA = UserAuthorizations;

constexpr const char* kLevelNames[] = {"DEFAULT_ACCESS", "ACCESS_NONE", "BROWSE_ACCESS",
                                       "UPDATE_ACCESS",  "FULL_ACCESS", "MAX_ACCESS"};

struct PrivilegeRow {
  const char* privilege;
  Levels question;
};
constexpr PrivilegeRow kPrivileges[] = {
    {"AUTHORIZATION_PRIV_TYPE", &UA::IsAuthDefAccessAllowed},
    {"AUTHORIZATION_PRIV_TYPE", &UA::IsChangePasswordAccessAllowed},
    {"VMC_CONFIGURATION_PRIV_TYPE", &UA::IsCommAccessAllowed},
    {"QIM_PRIV_TYPE", &UA::IsQIMAccessAllowed},
    {"FORECAST_PRIV_TYPE", &UA::IsForecastAccessAllowed},
    {"PERIOD_STAT_PRIV_TYPE", &UA::IsPeriodStatAccessAllowed},
    {"QIMFOR_CONFIG_PRIV_TYPE", &UA::IsForecastQIMConfigAccessAllowed},
    {"COLLECTIONDEF_PRIV_TYPE", &UA::IsCollDefAccessAllowed},
    {"HIERARCHIEDEF_PRIV_TYPE", &UA::IsHierDefAccessAllowed},
    {"FILTERDEF_PRIV_TYPE", &UA::IsFiltDefAccessAllowed},
    {"ACTIVEVP_PRIV_TYPE", &UA::IsViewDefAccessAllowed},
    {"ALERT_PRIV_TYPE", &UA::IsAlertsAccessAllowed},
};
// These have questions of other forms, or none.
constexpr const char* kOtherPrivileges[] = {
    "ARCHIVEVP_PRIV_TYPE",     "CLI_PRIV_TYPE",       "VMC_LOGIN_PRIV_TYPE",
    "VMC_OPERATION_PRIV_TYPE", "VMC_DB_PRIV_TYPE",    "VMC_VLT_SECURITY_PRIV_TYPE",
    "SITE_STANDARD_PRIV_TYPE", "SLS_LOGIN_PRIV_TYPE", "WCM_LOGIN_PRIV_TYPE",
    "OTHER_LOGIN_PRIV_TYPE",   "AI_ACCESS_PRIV_TYPE"};

struct KindRow {
  const char* grants;
  OnObject onObject;
  OnKind onKind;
};
constexpr KindRow kKinds[] = {
    {"calendars", &UA::IsCalendarAccessAllowed, &UA::IsCalendarsAccessAllowed},
    {"prereqConds", &UA::IsPrereqCondAccessAllowed, &UA::IsPrereqCondsAccessAllowed},
    {"controlRes", &UA::IsControlResAccessAllowed, &UA::IsControlRessAccessAllowed},
    {"quantRes", &UA::IsQuantResAccessAllowed, &UA::IsQuantRessAccessAllowed},
    {"globalPrefix", &UA::IsGlobalCondAccessAllowed, &UA::IsGlobalCondsAccessAllowed},
    {"tables", &UA::IsSchedTblAccessAllowed, &UA::IsSchdTblsAccessAllowed},
    {"owners", &UA::IsOwnerAccessAllowed, &UA::IsOwnersAccessAllowed},
    {"workloads", &UA::IsWorkloadAccessAllowed, &UA::IsWorkloadsAccessAllowed},
    {"services", &UA::IsServiceAccessAllowed, &UA::IsServicesAccessAllowed},
};

QCSObject Named(const std::string& name) {
  QCSObject object;
  object.SetAttribute("NAME", name);
  return object;
}

json Grant(const std::string& criteria, const char* level) {
  return {{"criteria", criteria}, {"level", level}};
}

json Grants(const std::string& criteria, const char* level) {
  return json::array({Grant(criteria, level)});
}

class UserAuthorizationsTest : public vq::test::SessionFixture {
 protected:
  void Start(const json& site = vq::test::BaseSite()) {
    m_server = &StartServer(site);
    ASSERT_EQ(Login(), 1) << m_message;
    ASSERT_EQ(GL_PostLogin(m_message), 1) << m_message;
  }
  // Changes alice and logs her in anew, since a change ends nothing else.
  int LoadWith(const json& alice) {
    m_server->Patch({{"users", {{"alice", alice}}}});
    return Load();
  }
  static int Load() {
    return UserAuthorizations::Get()->LoadAuthorizations(LoginHandler::GetGlobal()->GetUserID());
  }
  static const UserAuthorizations& May() { return *UserAuthorizations::Get(); }

  vq::test::Server* m_server = nullptr;
};

void ExpectNothingAllowed(const UserAuthorizations& may) {
  for (const PrivilegeRow& row : kPrivileges) {
    EXPECT_TRUE((may.*row.question)(DEFAULT_ACCESS)) << row.privilege;
    EXPECT_FALSE((may.*row.question)(ACCESS_NONE)) << row.privilege;
  }
  EXPECT_FALSE(may.IsAdministrator());
  EXPECT_FALSE(may.IsJobLevelAuthExist());
  EXPECT_FALSE(may.CanBrowseUserOrderForce());
  EXPECT_FALSE(may.IsOpenArchivedViewPointAllowed());
  EXPECT_EQ(may.GetCLIAccess(), DEFAULT_ACCESS);
}

TEST(UserAuthorizations, WithoutALoadNothingIsAllowedButDefaultAccess) {
  const UserAuthorizations may;
  ExpectNothingAllowed(may);
  for (const KindRow& row : kKinds) {
    EXPECT_FALSE((may.*row.onKind)()) << row.grants;
    EXPECT_TRUE((may.*row.onObject)(Named("A"), DEFAULT_ACCESS)) << row.grants;
    EXPECT_FALSE((may.*row.onObject)(Named("A"), ACCESS_NONE)) << row.grants;
  }
  EXPECT_FALSE(may.IsServiceActionAccessAllowed(Named("A"), 1));
}

TEST_F(UserAuthorizationsTest, EachPrivilegeAnswersItsOwnQuestions) {
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<std::string> privileges(std::begin(kOtherPrivileges), std::end(kOtherPrivileges));
  for (const PrivilegeRow& row : kPrivileges) privileges.emplace_back(row.privilege);
  for (const std::string& privilege : privileges) {
    for (int stored = DEFAULT_ACCESS; stored <= MAX_ACCESS; ++stored) {
      SCOPED_TRACE(privilege + " " + kLevelNames[stored]);
      ASSERT_EQ(LoadWith({{"privileges", nullptr}}), 1);
      ASSERT_EQ(LoadWith({{"privileges", {{privilege, kLevelNames[stored]}}}}), 1);
      for (const PrivilegeRow& row : kPrivileges) {
        const int level = row.privilege == privilege ? stored : DEFAULT_ACCESS;
        for (int asked = DEFAULT_ACCESS; asked <= MAX_ACCESS; ++asked) {
          EXPECT_EQ((May().*row.question)(static_cast<QCSAuthLevelEnum>(asked)), level >= asked)
              << row.privilege << " asked for " << kLevelNames[asked];
        }
      }
      EXPECT_EQ(May().IsAdministrator(),
                privilege == "AUTHORIZATION_PRIV_TYPE" && stored == FULL_ACCESS);
      EXPECT_EQ(LoginHandler::GetGlobal()->IsAdministrator(), May().IsAdministrator());
      EXPECT_EQ(May().IsOpenArchivedViewPointAllowed(),
                privilege == "ARCHIVEVP_PRIV_TYPE" && stored >= BROWSE_ACCESS);
      EXPECT_EQ(May().GetCLIAccess(), privilege == "CLI_PRIV_TYPE" ? stored : DEFAULT_ACCESS);
    }
  }
}

TEST_F(UserAuthorizationsTest, EachKindHasItsOwnGrantsTheUsersAndTheGroups) {
  json site = vq::test::BaseSite();
  site["users"]["alice"]["groups"] = json::array({"team"});
  site["groups"]["team"] = json::object();
  ASSERT_NO_FATAL_FAILURE(Start(site));
  for (const KindRow& filled : kKinds) {
    for (const bool byGroup : {false, true}) {
      SCOPED_TRACE(std::string(filled.grants) + (byGroup ? " by the group" : " of the user"));
      json grant = Grant("NAME LIKE 'A*'", "UPDATE_ACCESS");
      if (std::string(filled.grants) == "services") grant["actions"] = json::array({3, 5});
      const json grants = {{"grants", {{filled.grants, json::array({grant})}}}};
      const json none = {{"grants", nullptr}};
      m_server->Patch({{"users", {{"alice", none}}}, {"groups", {{"team", none}}}});
      m_server->Patch(byGroup ? json{{"groups", {{"team", grants}}}}
                              : json{{"users", {{"alice", grants}}}});
      ASSERT_EQ(Load(), 1);
      for (const KindRow& row : kKinds) {
        const bool granted = row.grants == filled.grants;
        EXPECT_EQ((May().*row.onKind)(), granted) << row.grants;
        EXPECT_EQ((May().*row.onObject)(Named("AB"), UPDATE_ACCESS), granted) << row.grants;
        EXPECT_FALSE((May().*row.onObject)(Named("AB"), FULL_ACCESS)) << row.grants;
        EXPECT_FALSE((May().*row.onObject)(Named("B"), ACCESS_NONE)) << row.grants;
      }
      for (int action = 0; action < 8; ++action) {
        const bool listed = action == 3 || action == 5;
        EXPECT_EQ(May().IsServiceActionAccessAllowed(Named("AB"), action),
                  listed && std::string(filled.grants) == "services");
        EXPECT_FALSE(May().IsServiceActionAccessAllowed(Named("B"), action));
      }
    }
  }
}

TEST_F(UserAuthorizationsTest, ParametersDecideOrderForceAndPasswordChange) {
  json site = vq::test::BaseSite();
  site["users"]["alice"]["privileges"] = {{"AUTHORIZATION_PRIV_TYPE", "UPDATE_ACCESS"}};
  ASSERT_NO_FATAL_FAILURE(Start(site));
  const json unreadable = {{"fail", 1}};
  struct Row {
    const char* section;
    const char* name;
    json value;
    bool result;
  };
  const Row kRows[] = {
      {"gsr", "Action_OrderForce_AuthLevel", "browse_access", false},
      {"gsr", "Action_OrderForce_AuthLevel", "BROWSE_ACCESS", true},
      {"gsr", "Action_OrderForce_AuthLevel", unreadable, true},  // keeps what it was
      {"gsr", "Action_OrderForce_AuthLevel", "BROWSE_ACCESS ", false},
      {"gsr", "Action_OrderForce_AuthLevel", unreadable, false},
      {"gsr", "Action_OrderForce_AuthLevel", "", false},
      {"gui", "UserChangePassword", "1", true},
      {"gui", "UserChangePassword", "10", false},
      {"gui", "UserChangePassword", "", false},
      {"gui", "UserChangePassword", "0", false},
      {"gui", "UserChangePassword", unreadable, false},
  };
  for (const Row& row : kRows) {
    m_server->Patch({{"parameters", {{row.section, {{row.name, nullptr}}}}}});
    m_server->Patch({{"parameters", {{row.section, {{row.name, row.value}}}}}});
    ASSERT_EQ(Load(), 1);
    const bool answer = std::string(row.section) == "gsr"
                            ? May().CanBrowseUserOrderForce()
                            : May().IsChangePasswordAccessAllowed(FULL_ACCESS);
    EXPECT_EQ(answer, row.result) << row.name << " " << row.value;
    EXPECT_TRUE(May().IsChangePasswordAccessAllowed(UPDATE_ACCESS));
    EXPECT_FALSE(May().IsChangePasswordAccessAllowed(MAX_ACCESS));
    EXPECT_FALSE(May().IsAuthDefAccessAllowed(FULL_ACCESS));
  }
}

TEST_F(UserAuthorizationsTest, ALoadAsksInOrderAndQuestionsAskNothing) {
  json site = vq::test::BaseSite();
  site["users"]["alice"]["jobLevelAuthorization"] = true;
  ASSERT_NO_FATAL_FAILURE(Start(site));
  EXPECT_TRUE(May().IsJobLevelAuthExist());
  m_server->ForgetCalls();
  ASSERT_EQ(Load(), 1);
  const std::vector<std::string> kCalls = {"CRB_GetMyAuthorizationsFromMemory",
                                           "CRB_IsJobLevelAuthExist", "CRB_GetSystemParameterValue",
                                           "CRB_GetSystemParameterValue"};
  EXPECT_EQ(m_server->Operations(), kCalls);
  for (const PrivilegeRow& row : kPrivileges) (May().*row.question)(FULL_ACCESS);
  for (const KindRow& row : kKinds) (May().*row.onObject)(Named("A"), FULL_ACCESS);
  EXPECT_EQ(m_server->Operations(), kCalls);
}

struct FailureRow {
  json fault;
  int result;
  const char* line;
  bool copied;  // whether the privileges had been copied by then
};

TEST_F(UserAuthorizationsTest, AFailedLoadLeavesWhatItHadCopied) {
  ASSERT_NO_FATAL_FAILURE(Start());
  constexpr const char* kFetch = "CRB_GetMyAuthorizationsFromMemory";
  constexpr const char* kJobLevel = "CRB_IsJobLevelAuthExist";
  const auto raise = [](const char* operation, const char* exception) {
    return json{{"operation", operation},
                {"action", "raise"},
                {"exception", exception},
                {"message", "for a reason"}};
  };
  const FailureRow kRows[] = {
      {raise(kFetch, "USER_NOT_FOUND"), 0, "Caught a UserNotFound Exception - for a reason", false},
      {raise(kJobLevel, "USER_NOT_FOUND"), 0, "Caught a UserNotFound Exception - for a reason",
       true},
      {raise(kJobLevel, "USER_NOT_AUTHORIZED"), 43,
       "Caught a UserNotAuthorized Exception - for a reason", true},
      {raise(kFetch, "USER_NOT_AUTHORIZED"), 23, "CORBA Exception UNKNOWN", false},
      {{{"operation", kFetch}, {"action", "raise"}, {"exception", "NO_RESOURCES"}},
       23,
       "CORBA Exception NO_RESOURCES",
       false},
      {{{"operation", kJobLevel}, {"action", "drop"}}, 23, "CORBA Exception COMM_FAILURE", true},
  };
  for (const FailureRow& row : kRows) {
    SCOPED_TRACE(row.fault.dump());
    ASSERT_EQ(LoadWith({{"privileges", {{"ALERT_PRIV_TYPE", "UPDATE_ACCESS"}}},
                        {"grants", {{"tables", Grants("*", "FULL_ACCESS")}}}}),
              1);
    m_server->Patch(
        {{"users",
          {{"alice",
            {{"privileges", {{"ALERT_PRIV_TYPE", "FULL_ACCESS"}}}, {"grants", nullptr}}}}}});
    m_server->SetFaults(json::array({row.fault}));
    m_log.Clear();
    EXPECT_EQ(Load(), row.result);
    EXPECT_EQ(m_log.Count(1, row.line), 1) << m_log.Text();
    EXPECT_EQ(May().IsAlertsAccessAllowed(FULL_ACCESS), row.copied);
    EXPECT_TRUE(May().IsSchdTblsAccessAllowed());
    m_server->SetFaults(json::array());
    EXPECT_EQ(Load(), 1);
    EXPECT_TRUE(May().IsAlertsAccessAllowed(FULL_ACCESS));
    EXPECT_FALSE(May().IsSchdTblsAccessAllowed());
  }
}

TEST_F(UserAuthorizationsTest, WithoutAServerALoadFails) {
  ASSERT_NO_FATAL_FAILURE(Start());
  const std::string userId = LoginHandler::GetGlobal()->GetUserID();
  ASSERT_EQ(GL_LogOut(false), 1);
  m_server->Kill();
  m_log.Clear();
  EXPECT_EQ(UserAuthorizations::Get()->LoadAuthorizations(userId), 0);
  EXPECT_TRUE(
      m_log.Has(1, "couldn't get CORBA servant automatic reconnect process is to be invoked."))
      << m_log.Text();
}

TEST_F(UserAuthorizationsTest, ResetAndLogoutLeaveTheGrants) {
  json site = vq::test::BaseSite();
  site["parameters"]["gsr"]["Action_OrderForce_AuthLevel"] = "BROWSE_ACCESS";
  site["parameters"]["gui"]["UserChangePassword"] = "1";
  json& alice = site["users"]["alice"];
  alice["jobLevelAuthorization"] = true;
  for (const PrivilegeRow& row : kPrivileges) alice["privileges"][row.privilege] = "FULL_ACCESS";
  alice["privileges"]["ARCHIVEVP_PRIV_TYPE"] = "FULL_ACCESS";
  alice["privileges"]["CLI_PRIV_TYPE"] = "FULL_ACCESS";
  for (const KindRow& row : kKinds) {
    alice["grants"][row.grants] = Grants("NAME = 'A'", "FULL_ACCESS");
  }
  alice["grants"]["services"][0]["actions"] = json::array({4});
  ASSERT_NO_FATAL_FAILURE(Start(site));
  EXPECT_TRUE(May().IsAdministrator() && May().CanBrowseUserOrderForce() &&
              May().IsJobLevelAuthExist() && May().IsOpenArchivedViewPointAllowed());
  const auto expectGrants = [](const UserAuthorizations& may) {
    for (const KindRow& row : kKinds) {
      EXPECT_TRUE((may.*row.onKind)()) << row.grants;
      EXPECT_TRUE((may.*row.onObject)(Named("A"), FULL_ACCESS)) << row.grants;
    }
    EXPECT_TRUE(may.IsServiceActionAccessAllowed(Named("A"), 4));
  };
  const UserAuthorizations copy = May();
  UserAuthorizations assigned;
  assigned = copy;
  UserAuthorizations::Get()->Reset();
  ExpectNothingAllowed(May());
  expectGrants(May());
  // The copies are of the state before, with a reference of their own.
  EXPECT_TRUE(copy.IsAdministrator());
  EXPECT_EQ(assigned.GetCLIAccess(), FULL_ACCESS);
  expectGrants(assigned);
  ASSERT_EQ(Load(), 1);
  EXPECT_TRUE(May().IsAdministrator());
  GL_LogOut(false);
  ExpectNothingAllowed(May());
  expectGrants(May());
}

TEST_F(UserAuthorizationsTest, QueriesComeFromTheServerAndFailSafely) {
  json site = vq::test::BaseSite();
  site["users"]["alice"]["grants"]["owners"] = Grants("OWNER = 'ops'", "BROWSE_ACCESS");
  site["users"]["alice"]["grants"]["calendars"] = Grants("NAME LIKE 'A*'", "FULL_ACCESS");
  ASSERT_NO_FATAL_FAILURE(Start(site));
  const std::string userId = LoginHandler::GetGlobal()->GetUserID();
  const auto ask = [](UserAuthorizations& of, QCSCorbaUserDefinitionQueries_var& definition,
                      QCSCorbaUserActiveQueriesSeq*& active, const std::string& id) {
    return of.GetUserAuthQueries({"PROD", "TEST"}, "text", true, false, definition.out(), active,
                                 id);
  };
  QCSCorbaUserDefinitionQueries_var definition;
  QCSCorbaUserActiveQueriesSeq* active = nullptr;
  ASSERT_EQ(ask(*UserAuthorizations::Get(), definition, active, userId), 1);
  QCSCorbaUserActiveQueriesSeq_var owned = active;
  EXPECT_STREQ(definition->m_DefCalendarQuery, "(NAME LIKE 'A*')");
  ASSERT_EQ(owned->length(), 2U);
  EXPECT_STREQ(owned[1U].m_VltName, "TEST");
  EXPECT_STREQ(owned[1U].m_ActiveJobQuery, "(OWNER = 'ops')");
  const json call = m_server->LastCall("CRB_GetUserAuthQueriesEx");
  EXPECT_EQ(call["arguments"], (json{{"text", "text"},
                                     {"names", {"PROD", "TEST"}},
                                     {"flag1", true},
                                     {"flag2", false},
                                     {"userId", userId}}));

  m_log.Clear();
  EXPECT_EQ(ask(*UserAuthorizations::Get(), definition, active, "nobody"), 0);
  EXPECT_EQ(active, nullptr);
  EXPECT_TRUE(m_log.Has(1, "Caught CORBA exception, Trying to reconnect...USER_NOT_FOUND"))
      << m_log.Text();
  UserAuthorizations unloaded;
  EXPECT_EQ(ask(unloaded, definition, active, userId), 0);
  EXPECT_EQ(active, nullptr);
}

// The server's list of 200,000 grants is some 10 MB on the wire.
TEST_F(UserAuthorizationsTest, TwoHundredThousandGrantsLoad) {
  json site = vq::test::BaseSite();
  json grants = json::array();
  for (int i = 0; i < 200'000; ++i) {
    const std::string criteria =
        "DATACENTER = 'PROD' AND NAME LIKE 'TABLE_" + std::to_string(i) + "_*'";
    grants.push_back(Grant(criteria, "UPDATE_ACCESS"));
  }
  site["users"]["alice"]["grants"]["tables"] = std::move(grants);
  ASSERT_NO_FATAL_FAILURE(Start(site));
  QCSObject table;
  table.SetAttribute("DATACENTER", "PROD");
  table.SetAttribute("NAME", "TABLE_199999_X");
  EXPECT_TRUE(May().IsSchedTblAccessAllowed(table, UPDATE_ACCESS));
  table.SetAttribute("NAME", "TABLE_200000_X");
  EXPECT_FALSE(May().IsSchedTblAccessAllowed(table, ACCESS_NONE));
}

}  // namespace
