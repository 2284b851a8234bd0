#include <vq_client_common/environment/LanguageLocale.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstddef>
#include <fstream>
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

constexpr struct {
  int result;
  const char* text;
} kFailures[] = {
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

// Reads the part of one line that counts. False at the end of the file.
bool ReadLine(std::istream& file, std::string& line) {
  line.clear();
  char c = 0;
  if (!file.get(c)) return false;
  do {
    if (c == '\n') break;
    if (line.size() < kLongestLine) line.push_back(c);
  } while (file.get(c));
  line.resize(std::min(line.size(), line.find('\0')));
  return true;
}

// The locale in the line of an entry; empty without a "=".
std::optional<std::string> LocaleOf(const std::string& line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) return {};
  std::string locale = line.substr(equals + 1);
  while (!locale.empty() && std::isspace(static_cast<unsigned char>(locale.back()))) {
    locale.pop_back();
  }
  return locale;
}

}  // namespace

int get_locale(const char* language, char* locale) {
  const std::string name = LowerCase(language);
  if (name == "use_account_locale") return kFound;
  const std::optional<std::string> home = vq::GetEnv("VQ_HOME");
  if (!home) return kNoHome;
  std::ifstream file(*home + "/ini//locale.ini", std::ios::binary);
  if (!file) return kNoFile;

  std::string line;
  while (ReadLine(file, line)) {
    // Intentional: a prefix is enough; sites use it in the names of their languages.
    if (line.starts_with('#') || !line.starts_with(name)) continue;
    const std::optional<std::string> found = LocaleOf(line);
    if (!found) return kNoLocale;
    if (locale != nullptr) locale[found->copy(locale, kLongestLine)] = '\0';
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
    const auto* const failure =
        std::find_if(std::begin(kFailures), std::end(kFailures),
                     [result](const auto& entry) { return entry.result == result; });
    VQ_LOG(diag, 4) << (failure != std::end(kFailures) ? failure->text : "")
                    << ". Using Default language - " << locale;
  }
  std::setlocale(LC_ALL, locale);
  return locale;
}
