#include <vq_client_common/session/ServerLocale.h>

#include <clocale>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace {

using ::testing::ElementsAre;
using vq::test::TemporaryDirectory;
using vq::test::Variable;

std::optional<std::string> serversAnswer;
std::string serversQuestion;

}  // namespace

bool GetSystemParameter(const std::string& name, std::string& value, const std::string& section,
                        SERVER_ID serverId) {
  serversQuestion = section + "/" + name + " at " + std::to_string(serverId);
  if (!serversAnswer) return false;
  value = *serversAnswer;
  return true;
}

namespace {

TEST(ServerLocaleTest, TheServersLanguageSettlesTheLocaleAndIsReturned) {
  const TemporaryDirectory directory;
  const Variable home("VQ_HOME", directory.Path());
  directory.Write("ini/locale.ini", "# languages\nutf=C.UTF-8\nplain=C\n");
  const struct {
    std::optional<std::string> answer;
    const char *returned, *locale;
  } cases[] = {{"UTF", "UTF", "C.UTF-8"}, {"plain", "plain", "C"}, {{}, "", "C.UTF-8"}};
  const std::string former = std::setlocale(LC_ALL, nullptr);
  for (const auto& [answer, returned, locale] : cases) {
    serversAnswer = answer;
    EXPECT_EQ(SetLocaleBySystemParam("plain"), returned);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(serversQuestion, "general/Language at 0");
  }
  std::setlocale(LC_ALL, former.c_str());
}

TEST(ServerLocaleTest, TheModeComesFromTheEnvironmentTheServerOrTheDefault) {
  const Variable home("VQ_HOME", "/home");
  const struct {
    bool isOnline;
    std::optional<std::string> answer, variable;
    const char* mode;
    bool isCJK;
    const char* encoding;
  } cases[] = {
      {true, "cjk", {}, "cjk", true, "UTF-8"},    {true, {}, {}, "latin1", false, "ISO-8859-1"},
      {true, "", {}, "", false, "ISO-8859-1"},    {false, "cjk", {}, "latin1", false, "ISO-8859-1"},
      {false, {}, "cjk", "cjk", true, "UTF-8"},   {true, "cjk", "CJK", "CJK", false, "ISO-8859-1"},
      {true, "cjk", "", "", false, "ISO-8859-1"},
  };
  for (const auto& expected : cases) {
    serversAnswer = expected.answer;
    serversQuestion.clear();
    const Variable variable("SUPPORT_CJK", expected.variable);
    vq::test::LogCapture log(4);
    i18n_aux::init_globa_c(expected.isOnline, E_CMS);
    EXPECT_EQ(serversQuestion, expected.isOnline ? "general/I18N at 4" : "");
    EXPECT_EQ(i18n_aux::IsCJK_mode(), expected.isCJK);
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().mode, expected.mode);
    EXPECT_EQ(Osl_UnicodeConfiguration::GetParameters().directory, "/home/locale");
    EXPECT_EQ(log.Lines().at(0).lineClass, 0x800000U);
    EXPECT_THAT(log.Take(),
                ElementsAre(std::string("4 [I18N**]: initialization of globa-c for i18n support "
                                        "with: bIsOnline=") +
                            (expected.isOnline ? "1" : "0") + ", current encodeing=" +
                            expected.encoding + ", bIsCJK_mode=" + (expected.isCJK ? "1" : "0") +
                            ", sLanguage_mode=" + expected.mode));
  }
}

}  // namespace
