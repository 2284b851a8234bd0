// Where the library finds its files.
//
// The *root* holds what an installation brings and a client only reads: product versions, accepted
// servers, locales, help. The *data* location holds what a client keeps: its properties, archives.
// A *configuration domain* is a named set of settings of the ORB.
//
//   path = GetVQDataLocation() + "CommonClientConf.xml";   // the location ends in "/"
//
// The environment is read at every call, an empty variable counts as unset. Nothing here looks
// whether a directory exists or makes one. Safe on any thread while none changes the environment.
#ifndef VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H
#define VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H

#include <string>

// $VQ_HOME; without it the share directory of the installation. Ends in "/".
std::string GetVQRootLocation();

// $VQ_DATA; without it $VQ_HOME + "/data/"; without either the directory "vq" in the user's data
// directory ($XDG_DATA_HOME, or ".local/share" in the home). Ends in "/".
std::string GetVQDataLocation();

// The directory of the configuration domains: $VQ_CONFIG_DOMAINS, without it the root + "config/".
// Ends in "/".
std::string GetConfigDomainsDir();

// The name of the configuration domain in use: $VQ_CONFIG_DOMAIN, without it "vq".
std::string GetConfigDomainName();

namespace vq {

// The directory "vq" in the user's settings directory ($XDG_CONFIG_HOME, or ".config" in the home).
// Ends in "/".
std::string GetUserSettingsDirectory();

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H
