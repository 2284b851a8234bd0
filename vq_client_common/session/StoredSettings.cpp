#include <vq_client_common/session/StoredSettings.h>

#include <memory>

#include <support/configuration/ConfigAPI.h>
#include <support/foundations/Locations.h>

namespace vq {

std::list<StoredSetting> ReadStoredSettings(std::string& error) {
  error.clear();
  std::list<StoredSetting> settings;
  const std::string domain = GetConfigDomainName();
  for (const std::string& directory : GetConfigDomainsDirs()) {
    const std::unique_ptr<ConfigAPI> layer = ConfigAPIFactoryXML::Create(directory, domain);
    if (!layer->Load()) {
      if (error.empty()) error = layer->Error();
      continue;
    }
    for (const std::string& scope : layer->GetScopes()) {
      for (const auto& [name, value] : layer->Scopes().at(scope)) {
        settings.push_back({scope, name, value, directory + domain + ".xml"});
      }
    }
  }
  return settings;
}

StoreResult StoreSetting(const std::string& scope, const std::string& name,
                         const std::optional<std::string>& value, SettingsLayer layer) {
  const std::string directory =
      layer == SettingsLayer::kHost ? GetConfigDomainsDirs().back() : GetConfigDomainsDir();
  const std::string domain = GetConfigDomainName();
  const std::unique_ptr<ConfigAPI> file = ConfigAPIFactoryXML::Create(directory, domain);
  StoreResult result{directory + domain + ".xml", ""};
  if (!file->Load()) {
    result.error = file->Error();
  } else if (!value) {
    file->RemoveVar(scope, name);
  } else if (!file->SetVar(scope, name, *value)) {
    result.error = "'" + name +
                   "' cannot be stored: its scope or name is empty, or a string has a "
                   "character that XML does not allow or is not UTF-8";
  }
  if (result.error.empty() && !file->Save()) result.error = file->Error();
  return result;
}

}  // namespace vq
