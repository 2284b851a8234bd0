#include <vq_client_common/session/SettingsReport.h>

#include <optional>
#include <stdexcept>
#include <vector>

#include <support/foundations/Environment.h>
#include <support/foundations/Locations.h>
#include <support/foundations/ProductVersion.h>
#include <support/orb/OrbSettings.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/internal/Collaborators.h>

namespace vq {
namespace {

// A location; its origin is the first of these variables that is set.
Setting Location(const char* name, const std::string& value,
                 std::initializer_list<const char*> variables) {
  for (const char* const variable : variables) {
    if (!GetEnvOr(variable, "").empty()) {
      return {"locations", name, value, std::string("environment, ") + variable};
    }
  }
  return {"locations", name, value, "built in"};
}

Setting Variable(const char* group, const char* name) {
  const std::optional<std::string> value = GetEnv(name);
  return {group, name, value.value_or(""), value ? "environment" : "not set"};
}

void AddLocations(std::list<Setting>& settings, const std::vector<std::string>& domainFiles) {
  settings.push_back(Location("root", GetVQRootLocation(), {"VQ_HOME"}));
  settings.push_back(
      Location("data", GetVQDataLocation(), {"VQ_DATA", "VQ_HOME", "XDG_DATA_HOME"}));
  settings.push_back(Location("user's settings", GetUserSettingsDirectory(), {"XDG_CONFIG_HOME"}));
  if (domainFiles.size() > 1) {
    settings.push_back(Location("user's configuration domain", domainFiles.front(),
                                {"VQ_CONFIG_DOMAIN", "XDG_CONFIG_HOME"}));
  }
  settings.push_back(Location("configuration domain", domainFiles.back(),
                              {"VQ_CONFIG_DOMAINS", "VQ_CONFIG_DOMAIN", "VQ_HOME"}));
}

void AddOrbSettings(std::list<Setting>& settings, const orb::DomainScopes& domain, int argc,
                    const char* const* argv) {
  if (!domain.error.empty()) {
    settings.push_back({"ORB", "configuration domain", domain.error, domain.files.back()});
    return;
  }
  try {
    const orb::OrbSettings resolved =
        orb::ResolveSettings(orb::SplitArguments(argc, argv), domain.scopes);
    for (const orb::ResolvedSetting& setting : resolved.table) {
      settings.push_back({"ORB", setting.name, setting.value, setting.origin});
    }
  } catch (const std::invalid_argument& e) {
    settings.push_back({"ORB", "malformed", e.what(), ""});
  }
}

void AddClientProduct(std::list<Setting>& settings) {
  std::string version;
  std::list<std::string> patches;
  const bool found = GetProductVersion("NFT", version, patches) == 1;
  for (const std::string& patch : patches) version += " " + patch;
  settings.push_back(
      {"client", "product NFT", version, found ? InstalledProductsFile() : "not set"});
}

}  // namespace

std::list<Setting> ReportSettings(CLIENT_ID clientId, int argc, const char* const* argv) {
  std::list<Setting> settings;
  orb::DomainScopes domain;
  ConnectionSettings client;
  client.SetClientID(clientId);
  orb::ReadDomainScopes(client.GetClientIDAsString(), domain);
  AddLocations(settings, domain.files);
  AddOrbSettings(settings, domain, argc, argv);
  settings.push_back(Variable("log", "VQ_DIAG_LEVEL"));
  settings.push_back(Variable("log", "VQ_DIAG_FILE"));

  const std::optional<int> profile = session::ProfileTimeOut();
  settings.push_back({"session", "[Orb Parameters] RegisterTimeOut",
                      profile ? std::to_string(*profile) : "",
                      profile ? "profile.ini" : "not set; the server is asked"});
  for (const char* const name :
       {"ENABLE_TEST_CALLBACK", "AuditAnnotationRequired", "SUPPORT_CJK"}) {
    settings.push_back(Variable("session", name));
  }
  AddClientProduct(settings);
  return settings;
}

}  // namespace vq
