// Reading system parameters, and what is assumed when the server does not answer.

#include <tests/fixture/SessionFixture.h>

#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaServerPackManager.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

class ParametersTest : public SessionFixture {};

const nlohmann::json kMissing;
const nlohmann::json kFails = {{"fail", 5}};

TEST_F(ParametersTest, EveryFailureIsAFalseAndALine) {
  Server& server = StartSession();
  const auto raise = [](const char* name) { return Raise("CRB_GetSystemParameterValue", name); };
  const struct {
    nlohmann::json parameter, faults;
    bool found;
    int level;
    const char* line;
  } kRows[] = {
      {"text", {}, true, 5, "System parameter: Name = text"},
      {"", {}, true, 5, "System parameter: Name = "},
      {{{"userNotFound", "who?"}}, {}, false, 1, "Corba Exception - USER_NOT_FOUND"},
      {kMissing, {}, false, 4, "CRB_GetSystemParameter exception - PARAMETER_NOT_FOUND - Name"},
      {kFails, {}, false, 2, "CRB_GetSystemParameter exception - FAIL reason: 5"},
      {"text", raise("NO_RESOURCES"), false, 2, "CORBA::Exception - NO_RESOURCES"},
      {"text", raise("BAD_OPERATION"), false, 2, "CORBA::Exception - BAD_OPERATION"},
      {"text", raise("USER_NOT_AUTHORIZED"), false, 2, "CORBA::Exception - UNKNOWN"},
  };
  for (const auto& row : kRows) {
    server.SetParameter("general", "Name", row.parameter);
    server.SetFaults(row.faults.is_null() ? nlohmann::json::array() : row.faults);
    m_log.Clear();
    std::string value = "old";
    EXPECT_EQ(GetSystemParameter("Name", value, "general", E_GSR), row.found) << row.line;
    EXPECT_EQ(value, row.found ? row.parameter.get<std::string>() : "old") << row.line;
    EXPECT_TRUE(m_log.Has(5, "Querying for system parameter: Name"));
    EXPECT_TRUE(m_log.Has(row.level, row.line)) << m_log.Text();
  }
  const nlohmann::json arguments = server.LastCall("CRB_GetSystemParameterValue")["arguments"];
  EXPECT_EQ(arguments["section"], "general");
  EXPECT_EQ(arguments["name"], "Name");
  EXPECT_EQ(arguments["userId"], ConnectionSettings::Get()->GetUserID());

  // Without a reference there is nobody to ask.
  GL_LogOut(true);
  std::string value = "old";
  EXPECT_FALSE(GetSystemParameter("Name", value, "general", E_GSR));
  EXPECT_FALSE(isAnnotationRequired("job.delete"));
  EXPECT_EQ(m_log.Count(1, "Couldn't get SystemConfiguration servant"), 2);
  EXPECT_EQ(value, "old");
}

TEST_F(ParametersTest, EachSettingHasItsOwnRuleAndAssumption) {
  Server& server = StartSession();
  const struct {
    const char* name;
    bool (*read)();
    nlohmann::json value;
    bool result;
  } kRows[] = {
      {"PermitManualUnlock", GetPermitManualUnLock, "1", true},
      {"PermitManualUnlock", GetPermitManualUnLock, "Y", false},
      {"PermitManualUnlock", GetPermitManualUnLock, "01", false},
      {"PermitManualUnlock", GetPermitManualUnLock, kMissing, false},
      {"ApplicationFieldIsMandatory", GetApplicationFieldIsMandatoryParameter, "N", true},
      {"ApplicationFieldIsMandatory", GetApplicationFieldIsMandatoryParameter, "", true},
      {"ApplicationFieldIsMandatory", GetApplicationFieldIsMandatoryParameter, "0", false},
      {"ApplicationFieldIsMandatory", GetApplicationFieldIsMandatoryParameter, kFails, false},
      {"SubApplicationFieldIsMandatory", GetSubApplicationFieldIsMandatoryParameter, "00", true},
      {"SubApplicationFieldIsMandatory", GetSubApplicationFieldIsMandatoryParameter, "0", false},
      {"SubApplicationFieldIsMandatory", GetSubApplicationFieldIsMandatoryParameter, kMissing,
       false},
  };
  for (const auto& row : kRows) {
    server.SetParameter("general", row.name, row.value);
    m_log.Clear();
    EXPECT_EQ(row.read(), row.result) << row.name << ' ' << row.value;
    EXPECT_TRUE(m_log.Has(5, std::string(row.name) + "=")) << m_log.Text();
  }
}

TEST_F(ParametersTest, AnUnclearAuthorSecurityIsTheStrictOne) {
  Server& server = StartSession();
  const struct {
    nlohmann::json value;
    int result;
    SEC_AUTHOR_LVL level;
    bool doubtful;
  } kRows[] = {
      {"1", 1, 1, false}, {"3", 1, 3, false},   {"2nd", 1, 2, false},    {"0", 1, 3, true},
      {"4", 1, 3, true},  {"word", 1, 3, true}, {kMissing, 0, 3, false},
  };
  for (const auto& row : kRows) {
    server.SetParameter("gsr", "AuthorSecurity", row.value);
    m_log.Clear();
    SEC_AUTHOR_LVL level = -1;
    std::string message = "old";
    EXPECT_EQ(GetSecurityLevel(level, message), row.result) << row.value;
    EXPECT_EQ(level, row.level) << row.value;
    const bool failed = row.result == 0;
    EXPECT_EQ(message, failed ? "failed to receive system parameter" : "old");
    EXPECT_EQ(m_log.Has(1, "Failed to recieve system parameter MOST_RESTRICTIVE is assumed"),
              failed);
    EXPECT_EQ(m_log.Has(2, "Can't determine Author security level MOST_RESTRICTIVE is assumed"),
              row.doubtful);
    EXPECT_EQ(m_log.Has(5, "AuthorSecurity Level=" + std::to_string(row.level)), !failed);
    EXPECT_EQ(m_log.Lines().back().scope, "UtilsCorbaServices::GetSecurityLevel");
  }
}

TEST_F(ParametersTest, TheEnvironmentOrTheServerSaysWhatIsAnnotated) {
  nlohmann::json site = BaseSite();
  site["annotationRequired"] = {"job.delete"};
  Server& server = StartSession(site);
  EXPECT_TRUE(isAnnotationRequired("job.delete"));
  EXPECT_FALSE(isAnnotationRequired("job.order"));
  const nlohmann::json arguments = server.LastCall("CRB_isAnnotationRequired")["arguments"];
  EXPECT_EQ(arguments.dump().find("job.order") != std::string::npos, true) << arguments;
  EXPECT_EQ(arguments["userId"], ConnectionSettings::Get()->GetUserID());
  EXPECT_TRUE(m_log.Has(5, "isAnnotationRequired: "));

  const struct {
    const char* exception;
    int level;
    const char* line;
  } kRows[] = {
      {"USER_NOT_FOUND", 1, "Corba Exception - USER_NOT_FOUND"},
      {"NO_RESOURCES", 1, "Failed with CORBA::SystemException [name = NO_RESOURCES] [minor = 7]"},
  };
  for (const auto& row : kRows) {
    server.SetFaults(Raise("CRB_isAnnotationRequired", row.exception));
    EXPECT_FALSE(isAnnotationRequired("job.delete"));
    EXPECT_TRUE(m_log.Has(row.level, row.line)) << m_log.Text();
  }
  server.ForgetCalls();
  for (const char* value : {"1", "0", "yes", ""}) {
    m_environment.Set("AuditAnnotationRequired", value);
    EXPECT_EQ(isAnnotationRequired("job.order"), std::string(value) == "1") << value;
  }
  EXPECT_TRUE(server.Operations().empty());
}

}  // namespace
}  // namespace vq::test
