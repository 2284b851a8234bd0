#include <support/orb/DomainScopes.h>

#include <memory>

#include <support/configuration/ConfigAPI.h>
#include <support/configuration/ConfigAPIFactoryXML.h>
#include <support/foundations/Locations.h>

namespace vq::orb {

bool ReadDomainScopes(const std::string& scope, DomainScopes& domain) {
  const std::string name = GetConfigDomainName();
  for (const std::string& directory : GetConfigDomainsDirs()) {
    const std::string& file = domain.files.emplace_back(directory + name + ".xml");
    const std::unique_ptr<ConfigAPI> layer = ConfigAPIFactoryXML::Create(directory, name);
    if (!layer->Load()) {
      domain.error = "The configuration domain " + file +
                     " cannot be read; correct the file or remove it: " + layer->Error();
      return false;
    }
    for (const std::string& from : {scope, std::string("default")}) {
      SettingScope& values = domain.scopes.emplace_back();
      values.origin = file + ", " + from;
      for (const std::string_view known : KnownSettingNames()) {
        const std::string setting(known);
        if (const auto value = layer->GetVar(from, setting)) values.values[setting] = *value;
      }
    }
  }
  return true;
}

}  // namespace vq::orb
