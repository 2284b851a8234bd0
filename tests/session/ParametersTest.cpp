// Reading system parameters, and what is assumed when the server does not answer.

#include <tests/fixture/SessionFixture.h>

#include <algorithm>
#include <clocale>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using ParametersTest = SessionFixture;

const nlohmann::json kMissing;
const nlohmann::json kFails = {{"fail", 5}};

TEST_F(ParametersTest, EveryFailureIsAFalseAndALine) {
  Server& server = StartSession();
  const std::tuple<nlohmann::json, bool, int, const char*> rows[] = {
      {"text", true, 5, "System parameter: Name = text"},
      {"", true, 5, "System parameter: Name = "},
      {{{"userNotFound", "who?"}}, false, 1, "Corba Exception - USER_NOT_FOUND"},
      {kMissing, false, 4, "CRB_GetSystemParameter exception - PARAMETER_NOT_FOUND - Name"},
      {kFails, false, 2, "CRB_GetSystemParameter exception - FAIL reason: 5"}};
  std::string value;
  for (const auto& [parameter, found, level, line] : rows) {
    server.SetParameter("general", "Name", parameter);
    m_log.Clear();
    value = "old";
    EXPECT_EQ(GetSystemParameter("Name", value, "general", E_GSR), found) << line;
    EXPECT_EQ(value, found ? parameter.get<std::string>() : "old") << line;
    EXPECT_TRUE(m_log.Has(5, "Querying for system parameter: Name"));
    EXPECT_TRUE(m_log.Has(level, line)) << m_log.Text();
  }
  const nlohmann::json arguments = server.LastCall("CRB_GetSystemParameterValue")["arguments"];
  EXPECT_EQ(arguments["section"], "general");
  EXPECT_EQ(arguments["name"], "Name");
  EXPECT_EQ(arguments["userId"], ConnectionSettings::Get()->GetUserID());

  GL_LogOut(true);  // Without a reference there is nobody to ask.
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
    std::vector<nlohmann::json> yes, no;
  } rows[] = {{"PermitManualUnlock", GetPermitManualUnLock, {"1"}, {"Y", "01", kMissing}},
              {"ApplicationFieldIsMandatory",
               GetApplicationFieldIsMandatoryParameter,
               {"N", ""},
               {"0", kFails}},
              {"SubApplicationFieldIsMandatory",
               GetSubApplicationFieldIsMandatoryParameter,
               {"00"},
               {"0", kMissing}}};
  for (const auto& row : rows) {
    for (const bool result : {true, false}) {
      for (const nlohmann::json& value : result ? row.yes : row.no) {
        server.SetParameter("general", row.name, value);
        m_log.Clear();
        EXPECT_EQ(row.read(), result) << row.name << ' ' << value;
        EXPECT_TRUE(m_log.Has(5, row.name + std::string(result ? "=1" : "=0"))) << m_log.Text();
      }
    }
  }
}

TEST_F(ParametersTest, AnUnclearAuthorSecurityIsTheStrictOne) {
  Server& server = StartSession();
  const std::tuple<nlohmann::json, int, SEC_AUTHOR_LVL, bool> rows[] = {
      {"1", 1, 1, false}, {"3", 1, 3, false},   {"2nd", 1, 2, false},   {"0", 1, 3, true},
      {"4", 1, 3, true},  {"word", 1, 3, true}, {kMissing, 0, 3, false}};
  for (const auto& [value, result, expectedLevel, doubtful] : rows) {
    server.SetParameter("gsr", "AuthorSecurity", value);
    m_log.Clear();
    SEC_AUTHOR_LVL level = -1;
    std::string message = "old";
    EXPECT_EQ(GetSecurityLevel(level, message), result) << value;
    EXPECT_EQ(level, expectedLevel) << value;
    const bool failed = result == 0;
    EXPECT_EQ(message, failed ? "failed to receive system parameter" : "old");
    EXPECT_EQ(m_log.Has(1, "Failed to recieve system parameter MOST_RESTRICTIVE is assumed"),
              failed);
    EXPECT_EQ(m_log.Has(2, "Can't determine Author security level MOST_RESTRICTIVE is assumed"),
              doubtful);
    EXPECT_EQ(m_log.Has(5, "AuthorSecurity Level=" + std::to_string(level)), !failed);
    EXPECT_TRUE(std::ranges::any_of(m_log.Lines(), [](const auto& line) {
      return line.scope == "UtilsCorbaServices::GetSecurityLevel" && line.level < 6;
    }));
  }
}

TEST_F(ParametersTest, TheEnvironmentOrTheServerSaysWhatIsAnnotated) {
  nlohmann::json site = BaseSite();
  site["annotationRequired"] = {"job.delete"};
  Server& server = StartSession(site);
  EXPECT_TRUE(isAnnotationRequired("job.delete"));
  EXPECT_FALSE(isAnnotationRequired("job.order"));
  const nlohmann::json arguments = server.LastCall("CRB_isAnnotationRequired")["arguments"];
  EXPECT_NE(arguments.dump().find("job.order"), std::string::npos) << arguments;
  EXPECT_EQ(arguments["userId"], ConnectionSettings::Get()->GetUserID());
  EXPECT_TRUE(m_log.Has(5, "isAnnotationRequired: "));
  server.SetFaults(Raise("CRB_isAnnotationRequired", "USER_NOT_FOUND"));
  EXPECT_FALSE(isAnnotationRequired("job.delete"));
  EXPECT_TRUE(m_log.Has(1, "Corba Exception - USER_NOT_FOUND")) << m_log.Text();
  server.ForgetCalls();
  for (const char* value : {"1", "0", "yes", ""}) {
    m_environment.Set("AuditAnnotationRequired", value);
    EXPECT_EQ(isAnnotationRequired("job.order"), std::string(value) == "1") << value;
  }
  EXPECT_TRUE(server.Operations().empty());
}

TEST_F(ParametersTest, TheServersLanguageSettlesTheLocaleAndIsReturned) {
  Server& server = StartSession();
  m_directory.Write("root/ini/locale.ini", "# languages\nutf=C.UTF-8\nplain=C\n");
  const std::tuple<nlohmann::json, const char*, const char*> rows[] = {
      {"UTF", "UTF", "C.UTF-8"}, {"plain", "plain", "C"}, {kMissing, "", "C.UTF-8"}};
  const std::string former = std::setlocale(LC_ALL, nullptr);
  for (const auto& [language, returned, locale] : rows) {
    server.SetParameter("general", "Language", language);
    EXPECT_EQ(SetLocaleBySystemParam("plain"), returned);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
  }
  std::setlocale(LC_ALL, former.c_str());
}

TEST_F(ParametersTest, TheModeComesFromTheEnvironmentTheServerOrTheDefault) {
  Server& server = StartServer(BaseSite(), {"GSR", "CMS"});
  ASSERT_EQ(Login(), 1);
  // Whether the server may be asked, what it answers, the variable, and the mode.
  const std::tuple<bool, nlohmann::json, std::optional<std::string>, std::string> rows[] = {
      {true, "cjk", {}, "cjk"},     {true, kMissing, {}, "latin1"},  {true, "", {}, ""},
      {false, "cjk", {}, "latin1"}, {false, kMissing, "cjk", "cjk"}, {true, "cjk", "CJK", "CJK"},
      {true, "cjk", "", ""}};
  for (const auto& [isOnline, answer, value, mode] : rows) {
    server.SetParameter("general", "I18N", answer);
    server.ForgetCalls();
    const Variable variable("SUPPORT_CJK", value);
    m_log.Clear();
    i18n_aux::init_globa_c(isOnline, E_CMS);
    const bool isCJK = mode == "cjk";
    ASSERT_EQ(server.Calls().size(), isOnline ? 1U : 0U);
    if (isOnline) {
      EXPECT_EQ(server.Calls()[0]["kind"], "CMS");
    }
    EXPECT_EQ(i18n_aux::IsCJK_mode(), isCJK);
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().mode, mode);
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().directory, m_directory / "root/locale");
    std::vector<LogCapture::Line> lines = m_log.Lines();
    std::erase_if(lines, [](const auto& one) { return one.lineClass != 0x800000U; });
    ASSERT_EQ(lines.size(), 1U);
    const LogCapture::Line& line = lines[0];
    EXPECT_EQ(
        std::to_string(line.level) + line.text,
        std::string("4[I18N**]: initialization of globa-c for i18n support with: bIsOnline=") +
            (isOnline ? "1" : "0") + ", current encodeing=" +
            (isCJK ? "UTF-8, bIsCJK_mode=1" : "ISO-8859-1, bIsCJK_mode=0") +
            ", sLanguage_mode=" + mode);
  }
}

}  // namespace
}  // namespace vq::test
