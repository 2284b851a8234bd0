#include <vq_client_common/session/ServerLocale.h>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/Environment.h>
#include <support/foundations/Locations.h>
#include <vq_client_common/environment/LanguageLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace {

TDiagRegister diagModule("ServerLocale");

}  // namespace

std::string SetLocaleBySystemParam(const std::string&) {
  const TDiagFunc diag(diagModule, "SetLocaleBySystemParam");
  std::string language;
  // Intentional: after a failed read the language is empty, and the locale is set by the first
  // entry of the file, which is the site's default.
  GetSystemParameter("Language", language, "general", E_GSR);
  SetLocaleByLanguage(language);
  return language;
}

void i18n_aux::init_globa_c(bool bIsOnline, SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "i18n_aux::init_globa_c");
  std::string mode;
  if (!bIsOnline || !GetSystemParameter("I18N", mode, "general", serverId)) mode = "latin1";
  mode = vq::GetEnv("SUPPORT_CJK").value_or(mode);
  const bool isCJK = mode == "cjk";

  std::string directory = GetVQRootLocation() + "locale";
  if (Osl_UnicodeConfiguration::is32BitEncapsolatedMode()) directory += "32";
  Osl_UnicodeConfiguration::Init({.mode = mode, .directory = directory});
  Osl_UnicodeConfiguration::SetCJKMode(isCJK);
  // The library's only log line with a class other than the default.
  VQ_LOG_CLASS(diag, 4, 0x800000)
      << "[I18N**]: initialization of globa-c for i18n support with: bIsOnline=" << bIsOnline
      << ", current encodeing=" << Osl_UnicodeConfiguration::GetCurrentEncoding()
      << ", bIsCJK_mode=" << isCJK << ", sLanguage_mode=" << mode;
}
