#include <support/orb/OrbSettings.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include <fmt/format.h>

#include <support/configuration/ConfigAPI.h>
#include <support/foundations/Locations.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>

namespace vq::orb {
namespace {

struct KnownSetting {
  std::string_view name;
  std::string_view builtIn;
};

constexpr const char* kCommandLine = "command line";

// A dead network must never block a client for ever, so both time-outs are finite. The message size
// has room for an authorization snapshot of some hundred thousand grants.
constexpr std::array kKnown{
    KnownSetting{kListenEndpoints, "iiop://"},
    KnownSetting{kBiDirPolicy, "0"},
    KnownSetting{kPreferIpMask, ""},
    KnownSetting{kInitRef, ""},
    KnownSetting{kConnectTimeout, "10000"},
    KnownSetting{kCallTimeout, "60000"},
    KnownSetting{kTcpKeepAlive, "60000"},
    KnownSetting{kTcpUserTimeout, "0"},
    KnownSetting{kMaxMessageSize, "268435456"},
    KnownSetting{kTlsCa, ""},
    KnownSetting{kTlsCertificate, ""},
    KnownSetting{kTlsKey, ""},
    KnownSetting{kTlsVerifyPeer, "1"},
    KnownSetting{kTlsVerifyHost, "1"},
    KnownSetting{kTlsServerNames, ""},
    KnownSetting{kTlsEncryptLookups, "0"},
    KnownSetting{kTlsRevocationList, ""},
};

[[noreturn]] void Refuse(const ResolvedSetting& setting, std::string_view form) {
  throw std::invalid_argument(fmt::format("the value '{}' of {} ({}) is not {}", setting.value,
                                          setting.name, setting.origin, form));
}

std::uint64_t Number(const ResolvedSetting& setting, std::string_view unit, std::uint64_t lowest,
                     std::uint64_t highest) {
  const auto value = WholeNumber<std::uint64_t>(setting.value);
  if (value && *value >= lowest && *value <= highest) return *value;
  Refuse(setting, fmt::format("a number of {} from {} to {}", unit, lowest, highest));
}

std::chrono::milliseconds Time(const ResolvedSetting& setting, std::uint64_t lowest) {
  constexpr std::uint64_t kDay = 86'400'000;
  return std::chrono::milliseconds(Number(setting, "milliseconds", lowest, kDay));
}

bool Flag(const ResolvedSetting& setting) {
  if (setting.value != "0" && setting.value != "1") Refuse(setting, "0 or 1");
  return setting.value == "1";
}

// Host names and addresses, separated by commas. A wildcard is the whole first part of a name.
std::vector<std::string> HostPatterns(const ResolvedSetting& setting) {
  std::vector<std::string> patterns;
  for (std::string_view list = setting.value; !list.empty();) {
    const std::string_view pattern = Cut(list, ',');
    const std::string_view name = pattern.substr(pattern.starts_with("*.") ? 2 : 0);
    if (name.empty() || name.front() == '.' || name.find_first_of("* \t") != std::string::npos) {
      Refuse(setting,
             "a list of host names, *.DOMAIN and addresses, such as *.site.example,10.0.0.1");
    }
    patterns.emplace_back(pattern);
  }
  return patterns;
}

ResolvedSetting Resolve(const KnownSetting& known, const OrbArguments& arguments,
                        const std::vector<SettingScope>& scopes) {
  const std::string name(known.name);
  if (const auto found = arguments.options.find(name); found != arguments.options.end()) {
    return {name, found->second, kCommandLine};
  }
  for (const SettingScope& scope : scopes) {
    const auto found = scope.values.find(name);
    if (found != scope.values.end()) return {name, found->second, scope.origin};
  }
  return {name, std::string(known.builtIn), "built in"};
}

// A value may have several, separated by blanks, and the command line several values. The last one
// of a name applies.
std::vector<std::string> InitialRefs(const ResolvedSetting& setting,
                                     const OrbArguments& arguments) {
  std::vector<std::string> refs;
  const auto add = [&](std::string_view list) {
    while (!list.empty()) {
      const std::string ref(Cut(list, ' '));
      if (ref.empty()) continue;
      const std::size_t equals = ref.find('=');
      if (equals == 0 || equals == std::string::npos || equals + 1 == ref.size()) {
        Refuse({setting.name, ref, setting.origin}, "of the form NAME=REFERENCE");
      }
      const std::string name = ref.substr(0, equals + 1);
      std::erase_if(refs, [&](const std::string& known) { return known.starts_with(name); });
      refs.push_back(ref);
    }
  };
  if (setting.origin == kCommandLine) {
    for (const auto& [name, ref] : arguments.options) {
      if (name == setting.name) add(ref);
    }
  } else {
    add(setting.value);
  }
  return refs;
}

}  // namespace

OrbArguments SplitArguments(int argc, const char* const* argv) {
  OrbArguments arguments;
  for (int i = 0; argv != nullptr && i < argc && argv[i] != nullptr; ++i) {
    const std::string argument = argv[i];
    if (std::ranges::find(kKnown, argument, &KnownSetting::name) == kKnown.end()) {
      if (argument.starts_with("-SSL")) {  // Ignored, it could leave a login unencrypted.
        throw std::invalid_argument("the option " + argument + " is unknown");
      }
      arguments.rest.push_back(argument);
      continue;
    }
    if (i + 1 >= argc || argv[i + 1] == nullptr) {
      throw std::invalid_argument("the option " + argument + " lacks its value");
    }
    arguments.options.emplace(argument, argv[++i]);
  }
  return arguments;
}

bool ReadDomainScopes(const std::string& scope, DomainScopes& domain) {
  const std::string name = GetConfigDomainName();
  for (const std::string& directory : GetConfigDomainsDirs()) {
    const std::string& file = domain.files.emplace_back(directory + name + ".xml");
    ConfigAPI layer(directory, name);
    if (!layer.Load()) {
      domain.error = "The configuration domain " + file +
                     " cannot be read; correct the file or remove it: " + layer.Error();
      return false;
    }
    for (const std::string& from : {scope, std::string(vq::kDefaultScope)}) {
      SettingScope& values = domain.scopes.emplace_back();
      values.origin = file + ", " + from;
      for (const KnownSetting& known : kKnown) {
        const std::string setting(known.name);
        if (const auto value = layer.GetVar(from, setting)) values.values[setting] = *value;
      }
    }
  }
  return true;
}

OrbSettings ResolveSettings(const OrbArguments& arguments,
                            const std::vector<SettingScope>& scopes) {
  OrbSettings settings;
  for (const KnownSetting& known : kKnown) {
    settings.table.push_back(Resolve(known, arguments, scopes));
  }
  const auto find = [&](std::string_view name) -> ResolvedSetting& {
    return *std::ranges::find(settings.table, name, &ResolvedSetting::name);
  };

  std::string error;
  const auto endpoint = ParseListenEndpoint(find(kListenEndpoints).value, error);
  if (!endpoint) Refuse(find(kListenEndpoints), "a listen endpoint: " + error);
  settings.listenEndpoint = *endpoint;
  settings.biDirectional = Flag(find(kBiDirPolicy));
  settings.preferIpMask = find(kPreferIpMask).value;
  settings.initialRefs = InitialRefs(find(kInitRef), arguments);
  find(kInitRef).value = fmt::format("{}", fmt::join(settings.initialRefs, " "));
  settings.connectTimeout = Time(find(kConnectTimeout), 1);
  settings.callTimeout = Time(find(kCallTimeout), 1);
  settings.tcpKeepAlive = Time(find(kTcpKeepAlive), 0);
  settings.tcpUserTimeout = Time(find(kTcpUserTimeout), 0);
  settings.maxMessageSize = Number(find(kMaxMessageSize), "bytes", 8192, 0x7FFFFFFF);
  settings.tls.caCertificate = find(kTlsCa).value;
  settings.tls.certificate = find(kTlsCertificate).value;
  settings.tls.privateKey = find(kTlsKey).value;
  settings.tls.verifyPeer = Flag(find(kTlsVerifyPeer));
  settings.tls.verifyHost = Flag(find(kTlsVerifyHost));
  settings.tls.serverNames = HostPatterns(find(kTlsServerNames));
  settings.tls.encryptLookups = Flag(find(kTlsEncryptLookups));
  settings.tls.revocationList = find(kTlsRevocationList).value;
  return settings;
}

const ResolvedSetting* FindOther(const OrbArguments& arguments,
                                 const std::vector<ResolvedSetting>& inForce) {
  const OrbSettings wanted = ResolveSettings(arguments, {});
  for (std::size_t i = 0; i < inForce.size(); ++i) {
    const ResolvedSetting& setting = inForce[i];
    const auto has = [&](const std::string& reference) {
      return (" " + setting.value + " ").find(" " + reference + " ") != std::string::npos;
    };
    const bool isInForce = setting.name == kInitRef ? std::ranges::all_of(wanted.initialRefs, has)
                                                    : wanted.table[i].value == setting.value;
    if (arguments.options.contains(setting.name) && !isInForce) return &setting;
  }
  return nullptr;
}

std::vector<std::string> NamingReferences(const OrbSettings& settings) {
  constexpr std::string_view kName = "NameService=";
  constexpr std::string_view kScheme = "corbaloc:";
  std::vector<std::string> references;
  for (const std::string& initial : settings.initialRefs) {
    if (!initial.starts_with(kName)) continue;
    const std::string reference = initial.substr(kName.size());
    const std::size_t key = reference.find('/');
    if (!reference.starts_with(kScheme) || key == std::string::npos) return {reference};
    for (std::size_t at = kScheme.size(); at <= key;) {
      const std::size_t end = std::min(reference.find(',', at), key);
      references.push_back(std::string(kScheme) + reference.substr(at, end - at) +
                           reference.substr(key));
      at = end + 1;
    }
  }
  return references;
}

}  // namespace vq::orb
