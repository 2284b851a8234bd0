#include <vq_client_common/environment/LanguageLocale.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Environment.h>

namespace {

TDiagRegister diagModule("LanguageLocale");

constexpr std::size_t kLongestLine = 254;

// The results of get_locale.
enum Result {
  kFound = 1,
  kNoLanguage = 12,
  kNoLocale = 22,
  kNoHome = 41,
  kNoFile = 42,
};

struct Failure {
  int result;
  const char* text;
};
constexpr Failure kFailures[] = {
    {kNoLanguage, "Language not found in file locale.ini"},
    {kNoLocale, "Locale not found in file locale.ini"},
    {kNoHome, "Missing VQ home environment variable"},
    {kNoFile, "Failed opening file locale.ini"},
};

std::string LowerCase(const char* text) {
  std::string result = text != nullptr ? text : "";
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

}  // namespace

int get_locale(const char* language, char* locale) {
  const std::string name = LowerCase(language);
  if (name == "use_account_locale") return kFound;
  const std::optional<std::string> home = vq::GetEnv("VQ_HOME");
  if (!home) return kNoHome;
  std::ifstream file(*home + "/ini//locale.ini", std::ios::binary);
  if (!file) return kNoFile;

  char buffer[kLongestLine + 1];
  while (file.getline(buffer, sizeof buffer).gcount() > 0) {
    if (file.fail()) {  // a longer line, whose rest does not count
      file.clear();
      file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    std::string line = buffer;
    // Intentional: a prefix is enough; sites use it in the names of their languages.
    if (line.starts_with('#') || !line.starts_with(name)) continue;
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) return kNoLocale;
    while (std::isspace(static_cast<unsigned char>(line.back()))) line.pop_back();
    if (locale != nullptr) locale[line.copy(locale, kLongestLine, equals + 1)] = '\0';
    return kFound;
  }
  return kNoLanguage;
}

std::string SetLocaleByLanguage(const std::string& language) {
  const TDiagFunc diag(diagModule, "SetLocaleByLanguage");
  char locale[kLongestLine + 1] = "";
  const int result = get_locale(language.c_str(), locale);
  if (result == kFound) {
    VQ_LOG(diag, 4) << "Language locale is: " << language
                    << " and the string locale is: " << locale;
  } else {
    const auto* const failure = std::ranges::find(kFailures, result, &Failure::result);
    VQ_LOG(diag, 4) << (failure != std::end(kFailures) ? failure->text : "")
                    << ". Using Default language - " << locale;
  }
  std::setlocale(LC_ALL, locale);
  return locale;
}
