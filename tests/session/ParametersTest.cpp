// Reading system parameters, and the defaults when the server does not answer.

#include <tests/fixture/SessionFixture.h>

#include <clocale>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::test {
namespace {

using nlohmann::json;
using ParametersTest = SessionFixture;

const json kMissing;
const json kFails = {{"fail", 5}};

TEST_F(ParametersTest, ReportsEachFailure) {
  Server& server = StartSession();
  const std::pair<json, std::string> rows[] = {
      {"text", "5System parameter: Name = text"},
      {"", "5System parameter: Name = "},
      {"\u0142\u00e9\u6f22", "5System parameter: Name = \u0142\u00e9\u6f22"},
      {{{"userNotFound", "who?"}}, "1Corba Exception - USER_NOT_FOUND"},
      {kMissing, "4CRB_GetSystemParameter exception - PARAMETER_NOT_FOUND - Name"},
      {kFails, "2CRB_GetSystemParameter exception - FAIL reason: 5"}};
  std::string value;
  for (const auto& [parameter, line] : rows) {
    server.SetParameter("general", "Name", parameter);
    value = "old";
    EXPECT_EQ(GetSystemParameter("Name", value, "general", E_GSR), parameter.is_string()) << line;
    EXPECT_EQ(value, parameter.is_string() ? parameter.get<std::string>() : "old") << line;
    EXPECT_TRUE(m_log.Has(line[0] - '0', line.substr(1))) << m_log.Text();
  }
  const json arguments = server.LastCall("CRB_GetSystemParameterValue")["arguments"];
  EXPECT_EQ(arguments["section"], "general");
  EXPECT_EQ(arguments["name"], "Name");
  EXPECT_EQ(arguments["userId"], ConnectionSettings::Get()->GetUserID());

  const std::string large(1'000'000, 'n');  // more than a socket takes at once
  EXPECT_FALSE(GetSystemParameter(large, value, "general", E_GSR));
  EXPECT_TRUE(m_log.Has(4, "CRB_GetSystemParameter exception - PARAMETER_NOT_FOUND - " + large));

  GL_LogOut(true);  // without a reference no server can be called
  EXPECT_FALSE(GetSystemParameter("Name", value, "general", E_GSR));
  EXPECT_FALSE(isAnnotationRequired("job.delete"));
  EXPECT_EQ(value, "old");
}

TEST_F(ParametersTest, HaveTheirRulesAndDefaults) {
  Server& server = StartSession();
  const auto permit = GetPermitManualUnLock;
  const auto application = GetApplicationFieldIsMandatoryParameter;
  const auto subApplication = GetSubApplicationFieldIsMandatoryParameter;
  const std::tuple<std::string, bool (*)(), json, bool> flags[] = {
      {"PermitManualUnlock", permit, "1", true},
      {"PermitManualUnlock", permit, "Y", false},
      {"PermitManualUnlock", permit, "01", false},
      {"ApplicationFieldIsMandatory", application, "N", true},
      {"ApplicationFieldIsMandatory", application, "", true},
      {"ApplicationFieldIsMandatory", application, "0", false},
      {"SubApplicationFieldIsMandatory", subApplication, "00", true},
      {"SubApplicationFieldIsMandatory", subApplication, "0", false}};
  for (const auto& [name, read, value, result] : flags) {
    server.SetParameter("general", name, value);
    EXPECT_EQ(read(), result) << name << ' ' << value;
  }
  const std::pair<json, SEC_AUTHOR_LVL> levels[] = {{"1", 1}, {"2nd", 2},  {"3", 3},     {"0", 3},
                                                    {"4", 3}, {"word", 3}, {kMissing, 3}};
  for (const auto& [value, expected] : levels) {
    server.SetParameter("gsr", "AuthorSecurity", value);
    SEC_AUTHOR_LVL level = -1;
    std::string message = "old";
    EXPECT_EQ(GetSecurityLevel(level, message), value.is_null() ? 0 : 1) << value;
    EXPECT_EQ(level, expected) << value;
    EXPECT_EQ(message, value.is_null() ? "failed to receive system parameter" : "old");
  }
  m_directory.Write("root/ini/locale.ini", "utf=C.UTF-8\n");
  server.SetParameter("general", "Language", "UTF");
  EXPECT_EQ(SetLocaleBySystemParam("plain"), "UTF");
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(m_log.Count(2, "Can't determine Author security level MOST_RESTRICTIVE is assumed"), 3);
}

TEST_F(ParametersTest, AsksEnvironmentThenServerForAnnotations) {
  json site = BaseSite();
  site["annotationRequired"] = {"job.delete"};
  Server& server = StartSession(site);
  EXPECT_TRUE(isAnnotationRequired("job.delete"));
  EXPECT_FALSE(isAnnotationRequired("job.order"));
  EXPECT_EQ(server.LastCall("CRB_isAnnotationRequired")["arguments"],
            json({{"operation", "job.order"}, {"userId", ConnectionSettings::Get()->GetUserID()}}));
  server.ForgetCalls();
  for (const char* value : {"1", "0", "yes", ""}) {
    m_environment.Set("AuditAnnotationRequired", value);
    EXPECT_EQ(isAnnotationRequired("job.order"), std::string(value) == "1") << value;
  }
  EXPECT_TRUE(server.Operations().empty());
}

TEST_F(ParametersTest, TakesTheModeOfEnvironmentServerOrDefault) {
  Server& server = StartServer({.arguments = {"--kind", "GSR", "--kind", "CMS"}});
  ASSERT_EQ(Login(), 1);
  // Whether the server may be called, its answer, the variable, and the mode.
  const std::tuple<bool, json, std::optional<std::string>, std::string> rows[] = {
      {true, "cjk", {}, "cjk"},     {true, kMissing, {}, "latin1"},  {true, "", {}, ""},
      {false, "cjk", {}, "latin1"}, {false, kMissing, "cjk", "cjk"}, {true, "cjk", "CJK", "CJK"},
      {true, "cjk", "", ""}};
  for (const auto& [isOnline, answer, value, mode] : rows) {
    server.SetParameter("general", "I18N", answer);
    server.ForgetCalls();
    m_log.Clear();
    const Variable variable("SUPPORT_CJK", value);
    i18n_aux::init_globa_c(isOnline, E_CMS);
    ASSERT_EQ(server.Calls().size(), isOnline ? 1U : 0U);
    for (const json& call : server.Calls()) EXPECT_EQ(call["kind"], "CMS");
    EXPECT_EQ(i18n_aux::IsCJK_mode(), mode == "cjk");
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().mode, mode);
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().directory, m_directory / "root/locale");
    const std::string words = mode == "cjk" ? "UTF-8, bIsCJK_mode=1, sLanguage_mode="
                                            : "ISO-8859-1, bIsCJK_mode=0, sLanguage_mode=";
    const auto lines = m_log.Lines();  // also of the ORB's threads
    const auto line = std::ranges::find(lines, 0x800000U, &LogCapture::Line::lineClass);
    ASSERT_NE(line, lines.end()) << m_log.Text();
    EXPECT_TRUE(line->text.ends_with(words + mode)) << line->text;
  }
}

}  // namespace
}  // namespace vq::test
