#include <support/orb/DomainScopes.h>

#include <memory>

#include <support/configuration/ConfigAPI.h>
#include <support/configuration/ConfigAPIFactoryXML.h>
#include <support/foundations/Locations.h>

namespace vq::orb {

bool ReadDomainScopes(const std::string& scope, DomainScopes& scopes) {
  const std::string directory = GetConfigDomainsDir();
  const std::string domain = GetConfigDomainName();
  scopes.file = directory + domain + ".xml";
  const std::unique_ptr<ConfigAPI> config = ConfigAPIFactoryXML::Create(directory, domain);
  if (!config->Load()) {
    scopes.error = "The configuration domain " + scopes.file +
                   " cannot be read; correct the file or remove it: " + config->Error();
    return false;
  }
  for (const std::string_view known : KnownSettingNames()) {
    const std::string setting(known);
    if (const auto value = config->GetVar(scope, setting)) scopes.own[setting] = *value;
    if (const auto value = config->GetVar("default", setting)) scopes.common[setting] = *value;
  }
  return true;
}

}  // namespace vq::orb
