#include <support/foundations/Locations.h>

#include <support/foundations/Environment.h>
#include <support/foundations/Platform.h>

namespace {

std::string AsDirectory(std::string path) {
  if (!path.ends_with('/')) path += '/';
  return path;
}

// A directory of the user as desktops on this system agree on them: `variable` when it holds an
// absolute path (a relative one is void), otherwise `inHome` under the home directory.
std::string UserDirectory(const char* variable, const char* inHome) {
  std::string base = vq::GetEnvOr(variable, "");
  if (!base.starts_with('/')) {
    base = AsDirectory(vq::GetEnvOr("HOME", vq::Platform::Current().AccountHome())) + inHome;
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
  const std::string directory = vq::GetEnvOr("VQ_CONFIG_DOMAINS", "");
  return directory.empty() ? GetVQRootLocation() + "config/" : AsDirectory(directory);
}

std::string GetConfigDomainName() {
  return vq::GetEnvOr("VQ_CONFIG_DOMAIN", "vq");
}

namespace vq {

std::string GetUserSettingsDirectory() {
  return UserDirectory("XDG_CONFIG_HOME", ".config");
}

}  // namespace vq
