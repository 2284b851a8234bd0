#include <support/foundations/Locations.h>

#include <sys/auxv.h>
#include <unistd.h>

#include <support/foundations/Environment.h>

namespace {

std::string AsDirectory(std::string path) {
  if (!path.ends_with('/')) path += '/';
  return path;
}

// A directory of the user by the XDG rules: `variable` when it is an absolute path (a relative one
// is invalid), otherwise `inHome` under the home directory.
std::string UserDirectory(const char* variable, const char* inHome) {
  std::string base = vq::GetEnvOr(variable, "");
  if (!base.starts_with('/')) {
    base = AsDirectory(vq::GetEnvOr("HOME", vq::AccountHome())) + inHome;
  }
  return AsDirectory(base) + "vq/";
}

}  // namespace

std::string GetVQRootLocation() {
  return AsDirectory(vq::GetEnvOr("VQ_HOME", VQ_INSTALLED_SHARE_DIRECTORY));
}

std::string GetVQDataLocation() {
  if (const std::string data = vq::GetEnvOr("VQ_DATA", ""); !data.empty()) return AsDirectory(data);
  if (const std::string home = vq::GetEnvOr("VQ_HOME", ""); !home.empty()) {
    return AsDirectory(home) + "data/";
  }
  return UserDirectory("XDG_DATA_HOME", ".local/share");
}

std::string GetConfigDomainsDir() {
  const std::vector<std::string> layers = vq::GetConfigDomainsDirs();
  return ::geteuid() == 0 ? layers.back() : layers.front();
}

std::string GetConfigDomainName() {
  return vq::GetEnvOr("VQ_CONFIG_DOMAIN", "vq");
}

namespace vq {

std::string& HostSettingsDirectory() {
  static auto* const directory = new std::string("/etc/vq/");  // never destroyed
  return *directory;
}

std::string GetUserSettingsDirectory() {
  // Intentional: a set-user-ID program takes no settings from its caller, and none from the home of
  // the user that it runs as either: a user with those rights can change the host's settings.
  if (::getauxval(AT_SECURE) != 0) return {};
  return UserDirectory("XDG_CONFIG_HOME", ".config");
}

std::vector<std::string> GetConfigDomainsDirs() {
  if (const std::string only = GetEnvOr("VQ_CONFIG_DOMAINS", ""); !only.empty()) {
    return {AsDirectory(only)};
  }
  const std::string home = GetEnvOr("VQ_HOME", "");
  const std::string host = home.empty() ? HostSettingsDirectory() : AsDirectory(home) + "config/";
  std::vector<std::string> directories{host};
  const std::string user = GetUserSettingsDirectory();
  if (!user.empty()) directories.insert(directories.begin(), user);
  return directories;
}

}  // namespace vq
