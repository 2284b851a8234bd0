// The configuration domain as it is stored: what each scope of each layer holds, and a way to
// change it.
//
// A *layer* is one file of the domain: the user's, and below it the host's. A *scope* is a named
// group of values in it; ORBs read "default" and the scope that is named like them, and other
// scopes belong to the programs that write them. docs/configuration.md has the whole of it.
//
//   const vq::StoreResult stored =
//       vq::StoreSetting("default", "-ORBCallTimeout", "5000", vq::SettingsLayer::kOwn);
//   if (!stored.error.empty()) std::cerr << stored.error << '\n';
//
// vq::ReportSettings() tells which value is in force.
#ifndef VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H
#define VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H

#include <list>
#include <optional>
#include <string>

#include <support/Export.h>

namespace vq {

// Thread contract of these: plain values.
struct StoredSetting {
  std::string scope;  // such as "default" or "GUI"
  std::string name;   // such as "-ORBCallTimeout"
  std::string value;  // may be empty
  std::string file;   // the layer's
};

// kOwn is the user's layer; for root and in set-user-ID programs it is the host's.
enum class SettingsLayer { kOwn, kHost };

// What StoreSetting did.
struct StoreResult {
  std::string file;   // the one that was changed
  std::string error;  // why it was not; empty after a success
};

// All values of all layers, the strongest layer first; within one by scope and name. Layers that
// cannot be read are left out, and `error` tells of the first of them; it is empty otherwise. Safe
// on any thread while none changes the environment, as both.
VQ_CLIENT_COMMON_API std::list<StoredSetting> ReadStoredSettings(std::string& error);

// Sets a value in one layer, or without one removes it there; removing what is not there is no
// error. Returns when the value is on disk. The file keeps all else that it holds.
VQ_CLIENT_COMMON_API StoreResult StoreSetting(const std::string& scope, const std::string& name,
                                              const std::optional<std::string>& value,
                                              SettingsLayer layer);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H
