// Lists every setting that the library reads, with its value and its origin.
//
//   for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, argc, argv)) {
//     std::cout << setting.name << " = " << setting.value << " (" << setting.origin << ")\n";
//   }
//
// docs/configuration.md explains the settings.
#ifndef VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H
#define VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H

#include <list>
#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>

namespace vq {

// A setting, its value and the origin of the value.
struct Setting {
  std::string group;   // "locations", "ORB", "log", "session", "client"
  std::string name;    // as the user writes it
  std::string value;   // empty when it has none; the error for a setting that cannot be read
  std::string origin;  // a file, or words such as "command line", "environment, VQ_HOME", "not set"
};

// The settings that a client of that kind would find now with that command line; `argv` may be null
// when `argc` is 0. No ORB is started and no server is called. A malformed setting, or a file that
// cannot be read, has the error as its value. No thread may change the environment meanwhile.
VQ_CLIENT_COMMON_API std::list<Setting> ReportSettings(CLIENT_ID clientId, int argc,
                                                       const char* const* argv);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H
