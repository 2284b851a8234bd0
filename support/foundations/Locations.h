// Where the library finds its files.
//
// The *root* holds what an installation brings and a client only reads: product versions, accepted
// servers, locales, help. The *data* location holds what a client keeps: its properties, archives.
// A *configuration domain* is a named set of settings of the ORB. It lies in two layers: the
// host's, and over it the user's.
//
//   path = GetVQDataLocation() + "CommonClientConf.xml";   // the location ends in "/"
//
// The environment is read at every call, an empty variable counts as unset. Nothing here looks
// whether a directory exists or makes one. Safe on any thread while none changes the environment.
#ifndef VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H
#define VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H

#include <string>
#include <vector>

// $VQ_HOME; without it the share directory of the installation. Ends in "/".
std::string GetVQRootLocation();

// $VQ_DATA; without it $VQ_HOME + "/data/"; without either the directory "vq" in the user's data
// directory ($XDG_DATA_HOME, or ".local/share" in the home). Ends in "/".
std::string GetVQDataLocation();

// The directory of the configuration domains that a save writes: the user's layer, or the host's
// for root and in set-user-ID programs. Ends in "/".
std::string GetConfigDomainsDir();

// The name of the configuration domain in use: $VQ_CONFIG_DOMAIN, without it "vq".
std::string GetConfigDomainName();

namespace vq {

// The directory "vq" in the user's settings directory ($XDG_CONFIG_HOME, or ".config" in the home).
// Ends in "/". Empty in a set-user-ID program.
std::string GetUserSettingsDirectory();

// The directories of the configuration domains, the strongest layer first: the user's
// (GetUserSettingsDirectory), which a set-user-ID program does not have, and the host's:
// "/etc/vq/", or $VQ_HOME + "/config/" where that is set. $VQ_CONFIG_DOMAINS replaces both by one.
// Each ends in
// "/".
std::vector<std::string> GetConfigDomainsDirs();

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H
