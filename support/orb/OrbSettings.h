// The settings of one ORB, and where each of them came from.
//
// A setting is looked for in this order, and the first place that has it wins:
//   1. the command line ("-ORBCallTimeout 5000"),
//   2. the user's layer of the configuration domain: its scope that is named like the ORB ("GUI"),
//      then its scope "default",
//   3. the host's layer, likewise,
//   4. the built-in value.
//
// ReadDomainScopes reads the files of the domain. Everything else here is plain data and pure
// functions, without ORB product, file or environment, so that a table can test it. The functions
// are not exported: programs use the names and ResolvedSetting (QCSOrbCommon::GetSettings).
#ifndef VQ_SUPPORT_ORB_ORBSETTINGS_H
#define VQ_SUPPORT_ORB_ORBSETTINGS_H

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <support/orb/ListenEndpoint.h>

namespace vq::orb {

// The names of the settings, on the command line and in the domain.
inline constexpr const char* kListenEndpoints = "-ORBListenEndpoints";
inline constexpr const char* kBiDirPolicy = "-BiDirPolicy";
inline constexpr const char* kPreferIpMask = "-PreferIPMask";
inline constexpr const char* kInitRef = "-ORBInitRef";
inline constexpr const char* kConnectTimeout = "-ORBConnectTimeout";
inline constexpr const char* kCallTimeout = "-ORBCallTimeout";
inline constexpr const char* kTcpKeepAlive = "-ORBTcpKeepAlive";
inline constexpr const char* kTcpUserTimeout = "-ORBTcpUserTimeout";
inline constexpr const char* kMaxMessageSize = "-ORBMaxMessageSize";
inline constexpr const char* kTlsCa = "-SSLCACertificate";
inline constexpr const char* kTlsCertificate = "-SSLCertificate";
inline constexpr const char* kTlsKey = "-SSLPrivateKey";
inline constexpr const char* kTlsVerifyPeer = "-SSLVerifyPeer";
inline constexpr const char* kTlsVerifyHost = "-SSLVerifyHost";
inline constexpr const char* kTlsServerNames = "-SSLServerNames";
inline constexpr const char* kTlsEncryptLookups = "-SSLEncryptLookups";
inline constexpr const char* kTlsRevocationList = "-SSLRevocationList";

// In a published endpoint: replaced by the own address that begins with the IP mask.
inline constexpr const char* kOwnAddressMark = "$IP";

// One setting with the value that applies.
struct ResolvedSetting {
  std::string name;    // as on the command line and in the domain, with its dash
  std::string value;   // empty where the setting has none
  std::string origin;  // "command line", "built in", or file and scope: "/etc/vq/vq.xml, GUI"
};

// The ORB's part of the command line: our own options by name, and everything else, which is passed
// to the ORB product.
struct OrbArguments {
  std::multimap<std::string, std::string> options;  // ours: value by name, repeats in order
  std::vector<std::string> rest;                    // everything else, program name first
};

// TLS trust and identity. An empty path is a setting that is not set.
struct TlsSettings {
  std::string caCertificate;             // file of the trusted CA certificates
  std::string certificate;               // file of the own certificate
  std::string privateKey;                // file of its key
  bool verifyPeer = true;                // refuse a certificate of another CA
  bool verifyHost = true;                // refuse a certificate of another host
  std::string revocationList;            // file of the revocation lists of all trusted CAs
  std::vector<std::string> serverNames;  // "*.site", "host.site" or an address; empty: any
  bool encryptLookups = false;           // the naming service must offer TLS, too

  // Whether TLS is used at all. A key alone counts, so that it is refused as incomplete instead of
  // ignored.
  bool IsOn() const {
    return !caCertificate.empty() || !certificate.empty() || !privateKey.empty();
  }
};

// All settings of one ORB, each in its own type.
struct OrbSettings {
  ListenEndpoint listenEndpoint;                // where to listen for callbacks
  bool biDirectional = false;                   // callbacks come over the client's own connection
  std::string preferIpMask;                     // text with which the preferred own address begins
  std::vector<std::string> initialRefs;         // NAME=REFERENCE
  std::chrono::milliseconds connectTimeout{0};  // how long to connect, over all addresses
  std::chrono::milliseconds callTimeout{0};     // how long a call may take, connecting included
  std::chrono::milliseconds tcpKeepAlive{0};    // probe a peer silent for so long; 0: never
  std::chrono::milliseconds tcpUserTimeout{0};  // how long sent data may stay unacknowledged; 0:
                                                // the system's default
  std::uint64_t maxMessageSize = 0;             // bytes
  TlsSettings tls;                              // trust and identity
  std::vector<ResolvedSetting> table;  // all of it as text, in the order of the known names
};

// The settings of one scope of one layer of the domain.
struct SettingScope {
  std::string origin;                         // as in ResolvedSetting
  std::map<std::string, std::string> values;  // by name
};

// Takes our own options with their values out of an argument vector. `argv` may be null when `argc`
// is 0. A known option without a value, and an unknown one that begins with -SSL, raise
// std::invalid_argument.
OrbArguments SplitArguments(int argc, const char* const* argv);

// The scopes of the configuration domain that concern one ORB: in each layer its own and "default".
struct DomainScopes {
  std::vector<std::string> files;    // the domain's, the strongest layer first; they need not exist
  std::vector<SettingScope> scopes;  // the strongest first
  std::string error;                 // why a file cannot be read
};

// Reads the domain that the environment names (docs/configuration.md) for the ORB of that scope. A
// domain without a file has empty scopes. False, with the reason in `error`, when a file cannot be
// read.
bool ReadDomainScopes(const std::string& scope, DomainScopes& domain);

// The settings of an ORB: each from the first source that has it, in the order above. `scopes` are
// those of the domain that apply, the strongest first. A value of another form raises
// std::invalid_argument with a text that names the setting, the value and the form.
OrbSettings ResolveSettings(const OrbArguments& arguments, const std::vector<SettingScope>& scopes);

// The first of the settings in force that the arguments give with another value; null without one.
// Raises as ResolveSettings.
const ResolvedSetting* FindOther(const OrbArguments& arguments,
                                 const std::vector<ResolvedSetting>& inForce);

// The references of the naming service: that of the initial reference NameService, or, where it is
// a corbaloc with several addresses, one for each of them. Empty when there is none.
std::vector<std::string> NamingReferences(const OrbSettings& settings);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_ORBSETTINGS_H
