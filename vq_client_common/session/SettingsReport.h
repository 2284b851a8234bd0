// Every setting that the library reads, with its value and where that came from.
//
//   for (const vq::Setting& setting : vq::ReportSettings(CLIENT_CLI, argc, argv)) {
//     std::cout << setting.name << " = " << setting.value << " (" << setting.origin << ")\n";
//   }
//
// docs/configuration.md tells what each of them means.
#ifndef VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H
#define VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H

#include <list>
#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>

namespace vq {

// Thread contract: a plain value.
struct Setting {
  std::string group;   // "locations", "ORB", "log", "session", "client"
  std::string name;    // as it is written where it is set
  std::string value;   // empty when it has none
  std::string origin;  // "environment", "command line", a file, "built in", "not set"
};

// The settings as a client of that kind would find them now, with that command line. Nothing is
// started and no server is asked. A setting that is malformed, or a file that cannot be read,
// stands in the list with the error as its value. Thread contract: while no thread changes the
// environment.
VQ_CLIENT_COMMON_API std::list<Setting> ReportSettings(CLIENT_ID clientId, int argc,
                                                       const char* const* argv);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_SETTINGSREPORT_H
