// Where the library finds its files.
//
// The *root* has the installed files that a client only reads: product versions, accepted servers,
// locales, help. The *data* location has the files that a client writes: its properties, archives.
// A *configuration domain* is a named set of settings of the ORB. It has two layers: the host's,
// and over it the user's.
//
//   path = GetVQDataLocation() + "CommonClientConf.xml";   // the location ends in "/"
//
// The environment is read at every call; an empty variable counts as unset. Nothing here checks
// whether a directory exists, or creates one. Thread safety: no thread may change the environment
// at the same time.
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

// The directory of the settings that apply to the whole host, with a closing "/": "/etc/vq/". A
// test may replace it while no other thread reads it.
std::string& HostSettingsDirectory();

// The directory "vq" in the user's settings directory ($XDG_CONFIG_HOME, or ".config" in the home).
// Ends in "/". Empty in a set-user-ID program.
std::string GetUserSettingsDirectory();

// The directories of the configuration domains, the strongest layer first: the user's
// (GetUserSettingsDirectory), which a set-user-ID program does not have, and the host's:
// "/etc/vq/", or $VQ_HOME + "/config/" where that is set. $VQ_CONFIG_DOMAINS replaces both by one.
// Each ends in "/".
std::vector<std::string> GetConfigDomainsDirs();

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_LOCATIONS_H
