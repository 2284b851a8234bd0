// The scopes of the configuration domain that concern one ORB: in each layer its own and "default".
//
//   vq::orb::DomainScopes domain;
//   if (!vq::orb::ReadDomainScopes("GUI", domain)) log(domain.error);
//   const auto settings = vq::orb::ResolveSettings(arguments, domain.scopes);
#ifndef VQ_SUPPORT_ORB_DOMAINSCOPES_H
#define VQ_SUPPORT_ORB_DOMAINSCOPES_H

#include <string>
#include <vector>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: a plain value.
struct DomainScopes {
  std::vector<std::string> files;    // the domain's, the strongest layer first; they need not exist
  std::vector<SettingScope> scopes;  // the strongest first
  std::string error;
};

// Reads the domain that the environment names (docs/configuration.md). A domain without a file has
// empty scopes. False, with `error` saying why, when a file cannot be read.
bool ReadDomainScopes(const std::string& scope, DomainScopes& domain);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_DOMAINSCOPES_H
