#include <vq_client_common/environment/ClientProperties.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

#include <support/configuration/XmlPlatform.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/Environment.h>
#include <support/foundations/Locations.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_file_system.h>
#include <vq_client_common/environment/internal/PropertiesFormat.h>
#include <xercesc/util/XMLException.hpp>

namespace {

TDiagRegister diagModule("ClientProperties");

constexpr char kHelpPage[] = "\\Help\\Main_Help\\en-US\\index.htm";

std::string PropertiesPath() {
  return GetVQDataLocation() + "CommonClientConf.xml";
}

std::string FoundLine(const std::string& key, const std::string& value) {
  std::string line = "Found Parameter: %s. Value is: %s";
  vq::ReplaceFirst(line, "%s", key);
  vq::ReplaceFirst(line, "%s", value);
  return line;
}

std::string AsPointerText(const void* pointer) {
  std::array<char, 2 * sizeof(std::uintptr_t)> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 reinterpret_cast<std::uintptr_t>(pointer), 16);
  return "0x" + std::string(digits.data(), end.ptr);
}

// The names that the system gives its language, most particular first: "de_DE" and "de" for the
// locale "de_DE.UTF-8". A name that does not answer is empty.
std::array<std::string, 2> SystemLanguageNames() {
  constexpr std::size_t kLongestName = 9;
  const std::string locale =
      vq::GetEnvOr("LC_ALL", vq::GetEnvOr("LC_MESSAGES", vq::GetEnvOr("LANG", "")));
  std::array names{locale.substr(0, locale.find_first_of(".@")),
                   locale.substr(0, locale.find_first_of("_.@"))};
  for (std::string& name : names) {
    if (name.size() > kLongestName) name.clear();
  }
  return names;
}

}  // namespace

ClientProperties* ClientProperties::g_pClientProperties = nullptr;

ClientProperties* ClientProperties::Get() {
  if (g_pClientProperties == nullptr) g_pClientProperties = new ClientProperties;
  return g_pClientProperties;
}

void ClientProperties::ReleaseStaticObject() {
  if (g_pClientProperties == nullptr) return;
  delete g_pClientProperties;
  g_pClientProperties = nullptr;
  try {
    vq::StopXml();
  } catch (...) {  // Nobody is left who could do anything about it.
  }
}

ClientProperties::ClientProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::ClientProperties");
  try {
    vq::StartXml();
  } catch (const xercesc::XMLException& failure) {
    VQ_LOG(diag, 1) << "Error during XML initialization" << vq::LocalText(failure.getMessage());
    return;
  }
  try {
    LoadProperties();
  } catch (...) {
    vq::StopXml();  // Without an instance no release would ever undo the start.
    throw;
  }
}

bool ClientProperties::LoadProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::LoadProperties");
  m_properties.clear();
  const std::string path = PropertiesPath();
  if (!os_file_system::exists(path)) {
    VQ_LOG(diag, 1) << "File " << path << "is missing";
    return false;
  }
  // A bare number instead of the path is meant: log readers know the line by this form.
  VQ_LOG(diag, 5) << "Parsing client properties file: " << AsPointerText(&path);
  std::map<std::string, std::string> loaded;  // a load that breaks off leaves nothing of it
  if (!vq::ReadProperties(path, diag, loaded)) return false;
  m_properties.swap(loaded);
  return true;
}

void ClientProperties::Reload() {
  const TDiagFunc diag(diagModule, "ClientProperties::Reload");
  LoadProperties();
}

std::string ClientProperties::GetStringValue(const std::string& key,
                                             const std::string& defaultValue) {
  const TDiagFunc diag(diagModule, "ClientProperties::GetStringValue");
  const auto found = m_properties.find(key);
  if (found == m_properties.end()) {
    VQ_LOG(diag, 4) << "Parameter: '" << key << "' was not found. using default: '" << defaultValue
                    << "'.";
    return defaultValue;
  }
  VQ_LOG(diag, 5) << FoundLine(key, found->second);
  return found->second;
}

int ClientProperties::GetIntValue(const std::string& key, int defaultValue) {
  const TDiagFunc diag(diagModule, "ClientProperties::GetIntValue");
  const std::string value = GetStringValue(key, "");
  return value.empty() ? defaultValue : vq::Atoi(value);
}

void ClientProperties::SetStringValue(const std::string& key, const std::string& value, bool save) {
  const TDiagFunc diag(diagModule, "ClientProperties::SetStringValue");
  const auto [at, isNew] = m_properties.insert_or_assign(key, value);
  if (isNew) {
    VQ_LOG(diag, 5) << "New parameter was inserted: " << key;
  } else {
    VQ_LOG(diag, 5) << "Value of Parameter '" << key << "' was set to '" << value << "'";
  }
  if (save) SaveProperties();
}

void ClientProperties::SetIntValue(const std::string& key, int value, bool save) {
  const TDiagFunc diag(diagModule, "ClientProperties::SetIntValue");
  SetStringValue(key, std::to_string(value), save);
}

bool ClientProperties::SaveProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::SaveProperties");
  const std::string text = vq::PropertiesText(m_properties);
  std::FILE* file = std::fopen(PropertiesPath().c_str(), "w+");
  if (file == nullptr) {
    VQ_LOG(diag, 1) << "Parameters file failed to open for saving";
    return false;
  }
  // The result is not looked at: what could not be written shows when the file is closed. The
  // text is printed, not written by its length, so it ends before its first zero byte; a reader
  // would refuse the file with one in it.
  std::fprintf(file, "%s\n", text.c_str());
  if (std::fclose(file) != 0) {
    VQ_LOG(diag, 1) << "Parameters file was not closed";
    return false;
  }
  VQ_LOG(diag, 5) << "Parameters file was updated";
  return true;
}

std::string ClientProperties::HelpFileBuilder(std::string& language) {
  const TDiagFunc diag(diagModule, "ClientProperties::HelpFileBuilder");
  std::string path = kHelpPage;
  // The page holds no ".chm", so the language changes nothing. This is meant: installations have
  // the English page alone, and clients are told its path for every language.
  vq::ReplaceFirst(path, ".chm", "_" + language + ".chm");
  return path;
}

std::string ClientProperties::getHelpFile() {
  const TDiagFunc diag(diagModule, "ClientProperties::getHelpFile");
  const std::string root = GetVQRootLocation();
  if (GetIntValue("LocalHelpFile", 1) != 0) {
    for (std::string& language : SystemLanguageNames()) {
      if (language.empty()) continue;
      const std::string path = root + HelpFileBuilder(language);
      if (os_file_system::exists(path)) return path;
    }
  }
  return root + kHelpPage;
}
