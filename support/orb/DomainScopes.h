// The two scopes of the configuration domain that concern one ORB: its own and "default".
//
//   vq::orb::DomainScopes scopes;
//   if (!vq::orb::ReadDomainScopes("GUI", scopes)) log(scopes.error);
//   const auto settings = vq::orb::ResolveSettings(arguments, scopes.own, scopes.common);
#ifndef VQ_SUPPORT_ORB_DOMAINSCOPES_H
#define VQ_SUPPORT_ORB_DOMAINSCOPES_H

#include <string>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: a plain value.
struct DomainScopes {
  std::string file;  // the domain's file, whether it exists or not
  SettingScope own;
  SettingScope common;
  std::string error;
};

// Reads the domain that the environment names (docs/configuration.md). A domain without a file has
// empty scopes. False, with `error` saying why, when the file cannot be read.
bool ReadDomainScopes(const std::string& scope, DomainScopes& scopes);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_DOMAINSCOPES_H
