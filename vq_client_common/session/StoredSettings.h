// Reads and changes the configuration domain as it is stored in files.
//
// A *layer* is one file of the domain: the user's file, whose values override those of the host's
// file. A *scope* is a named group of values in a file; an ORB reads "default" and the scope with
// its own name. docs/configuration.md describes the domain.
//
//   const vq::StoreResult stored =
//       vq::StoreSetting("default", "-ORBCallTimeout", "5000", vq::SettingsLayer::kOwn);
//   if (!stored.error.empty()) std::cerr << stored.error << '\n';
//
// vq::ReportSettings (SettingsReport.h) returns the values that a client would use.
#ifndef VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H
#define VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H

#include <list>
#include <optional>
#include <string>

#include <support/Export.h>

namespace vq {

// A setting that is stored in a file of the configuration domain.
struct StoredSetting {
  std::string scope;  // such as "default" or "GUI"
  std::string name;   // such as "-ORBCallTimeout"
  std::string value;  // may be empty
  std::string file;   // the path of the layer's file
};

// The layer to change. kOwn: the user's; for root and in set-user-ID programs the host's.
enum class SettingsLayer { kOwn, kHost };

// The result of StoreSetting.
struct StoreResult {
  std::string file;   // the path of the file to change
  std::string error;  // why the file was not changed; empty after a success
};

// All values of all layers: the user's layer first; in each layer the scope "default" first, the
// others by name; in each scope by name. A layer that cannot be read is left out; `error` has the
// reason of the first, and is empty without one. No thread may change the environment during this
// call and the next.
VQ_CLIENT_COMMON_API std::list<StoredSetting> ReadStoredSettings(std::string& error);

// Sets a value in one layer, or removes it there when `value` is std::nullopt; to remove a value
// that is not there is no error. `scope` and `name` must not be empty. The rest of the file is
// unchanged. After a success the value is on disk.
VQ_CLIENT_COMMON_API StoreResult StoreSetting(const std::string& scope, const std::string& name,
                                              const std::optional<std::string>& value,
                                              SettingsLayer layer);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_STOREDSETTINGS_H
