#include <support/configuration/ConfigAPI.h>

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include <support/configuration/ConfigDocument.h>
#include <support/configuration/SafeFile.h>
#include <support/configuration/Xml.h>
#include <support/foundations/Locations.h>

namespace {

using vq::ConfigChange;
using vq::ConfigDocument;
using vq::ConfigScopes;
using vq::kDefaultScope;

// The file that is read and replaced. A symbolic link is followed, so that a save replaces the file
// that it names and not the link.
std::string PathOf(const std::string& directory, const std::string& name) {
  constexpr std::string_view kInNoName("/\0", 2);
  if (name.empty() || name.find_first_of(kInNoName) != std::string::npos) return {};
  if (directory.find('\0') != std::string::npos) return {};
  const std::filesystem::path path = std::filesystem::path(directory) / (name + ".xml");
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  return error ? path.string() : target.string();
}

// The scopes of a file over those of a weaker layer. A value in "default" hides those of the weaker
// layer in every scope, because layers take precedence over scopes.
ConfigScopes Over(const ConfigScopes& own, ConfigScopes weaker) {
  const auto common = own.find(kDefaultScope);
  for (auto& [scope, variables] : weaker) {
    if (common == own.end()) break;
    std::erase_if(variables, [&](const auto& var) { return common->second.contains(var.first); });
  }
  for (const auto& [scope, variables] : own) {
    for (const auto& [name, value] : variables) weaker[scope][name] = value;
    weaker.try_emplace(scope);
  }
  return weaker;
}

}  // namespace

ConfigAPI::ConfigAPI(const std::string& directory, const std::string& name,
                     std::chrono::milliseconds wait, const std::string& below)
    : m_path(PathOf(directory, name)),
      m_below(below.empty() ? "" : PathOf(below, name)),
      m_wait(wait) {}

bool ConfigAPI::Complain(const std::string& error) {
  m_error = error;
  return false;
}

bool ConfigAPI::ReadInto(const std::string& path, ConfigDocument& document) {
  std::string text;
  std::string error;
  const vq::ReadResult result = vq::ReadFile(path, kLargestFile, text, error);
  if (result == vq::ReadResult::kMissing) return true;
  if (result == vq::ReadResult::kFailed) return Complain(error);
  return document.Parse(text, error) || Complain(path + ": " + error);
}

std::optional<ConfigScopes> ConfigAPI::ReadScopes(const std::string& path) {
  std::error_code error;
  if (path.empty() || (!std::filesystem::exists(path, error) && !error)) return ConfigScopes();
  std::optional<ConfigScopes> scopes;
  vq::WithXml(m_error, [&] {
    ConfigDocument document;
    if (!ReadInto(path, document)) return false;
    scopes = document.Scopes();
    return true;
  });
  return scopes;
}

bool ConfigAPI::Load() {
  m_error.clear();
  if (m_path.empty()) return Complain("the domain has no name that a file can have");
  const std::optional<ConfigScopes> own = ReadScopes(m_path);
  if (!own) return false;
  std::optional<ConfigScopes> weaker = ReadScopes(m_below);
  if (!weaker) return false;
  m_weaker = std::move(*weaker);
  m_scopes = Over(*own, m_weaker);
  m_changes.clear();
  return true;
}

bool ConfigAPI::Save() {
  m_error.clear();
  if (m_path.empty()) return Complain("the domain has no name that a file can have");
  if (m_changes.empty()) return true;
  std::error_code failure;
  std::filesystem::create_directories(std::filesystem::path(m_path).parent_path(), failure);
  const vq::FileLock lock(m_path + ".lock", m_wait);
  if (!lock.Held()) return Complain(lock.Error());
  return vq::WithXml(m_error, [this] {
    ConfigDocument document;
    if (!ReadInto(m_path, document)) return false;
    for (const ConfigChange& change : m_changes) document.Apply(change);
    const auto text = document.Text();
    if (!text) return Complain(m_path + ": the domain can't be written as XML");
    if (!vq::ReplaceFile(m_path, *text, m_error)) return false;
    m_scopes = Over(document.Scopes(), m_weaker);
    m_changes.clear();
    return true;
  });
}

std::optional<std::string> ConfigAPI::GetVar(const std::string& scope,
                                             const std::string& name) const {
  const auto inScope = m_scopes.find(scope);
  if (inScope == m_scopes.end()) return std::nullopt;
  const auto found = inScope->second.find(name);
  if (found == inScope->second.end()) return std::nullopt;
  return found->second;
}

bool ConfigAPI::SetVar(const std::string& scope, const std::string& name,
                       const std::string& value) {
  std::string ignored;
  const bool canBeWritten = vq::WithXml(ignored, [&] {
    return !scope.empty() && !name.empty() && vq::XmlFromUtf8(scope) && vq::XmlFromUtf8(name) &&
           vq::XmlFromUtf8(value);
  });
  if (!canBeWritten) return false;
  m_scopes[scope][name] = value;
  m_changes.push_back({ConfigChange::Kind::kSetVar, scope, name, value});
  return true;
}

bool ConfigAPI::RemoveVar(const std::string& scope, const std::string& name) {
  const auto inScope = m_scopes.find(scope);
  if (inScope == m_scopes.end() || inScope->second.erase(name) == 0) return false;
  m_changes.push_back({ConfigChange::Kind::kRemoveVar, scope, name, {}});
  return true;
}

bool ConfigAPI::RemoveScope(const std::string& scope) {
  if (m_scopes.erase(scope) == 0) return false;
  m_changes.push_back({ConfigChange::Kind::kRemoveScope, scope, {}, {}});
  return true;
}

std::list<std::string> ConfigAPI::GetScopes() const {
  std::list<std::string> names;
  for (const auto& [name, variables] : m_scopes) {
    name == kDefaultScope ? names.push_front(name) : names.push_back(name);
  }
  return names;
}

void ConfigAPI::GetScopeAndDefaultVars(const std::string& scope,
                                       std::map<std::string, std::string>& table) const {
  for (const std::string& from : {std::string(kDefaultScope), scope}) {
    const auto found = m_scopes.find(from);
    if (found == m_scopes.end()) continue;
    for (const auto& [name, value] : found->second) table[name] = value;
  }
}

std::unique_ptr<ConfigAPI> ConfigAPIFactoryXML::Create(const std::string& directory,
                                                       const std::string& name) {
  return std::make_unique<ConfigAPI>(directory, name);
}

std::unique_ptr<ConfigAPI> ConfigAPIFactoryXML::CreateInForce() {
  const std::string directory = GetConfigDomainsDir();
  const std::string host = vq::GetConfigDomainsDirs().back();
  return std::make_unique<ConfigAPI>(directory, GetConfigDomainName(), std::chrono::seconds(10),
                                     host == directory ? "" : host);
}
