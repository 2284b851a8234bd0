// The numbers of the suite's client programs.
//
// Each client program has a name in its registration at the server, a short name for its ORB, and a
// name for users. No name can be derived from another. ClientIDtoString returns the name for users,
// ConnectionSettings the others. The ORB of a *pure client* does not listen for callbacks when it
// starts.
//
//   std::cout << ClientIDtoString(CLIENT_CLI) << '\n';   // VELTRA-M/VQ CLI
#ifndef VQ_CLIENT_COMMON_SESSION_CLIENTID_H
#define VQ_CLIENT_COMMON_SESSION_CLIENTID_H

#include <string>

#include <support/Export.h>

// The client programs. A value that is none of these counts as CLIENT_UNKNOWN, but has no name for
// users.
enum CLIENT_ID : int {
  CLIENT_GUI = 0,
  CLIENT_DESKTOP = 1,
  CLIENT_XMLUTIL = 2,
  CLIENT_CLI = 3,
  CLIENT_REPORT = 4,
  CLIENT_QIMC = 5,
  CLIENT_VCM = 6,
  CLIENT_SWEEP = 7,
  CLIENT_VCM_CLI = 8,
  CLIENT_SIMULATOR = 9,
  CLIENT_RCI = 10,
  CLIENT_UNKNOWN = 11,
};

// The client program's name for users; empty for a value that is no CLIENT_ID.
VQ_CLIENT_COMMON_API std::string ClientIDtoString(CLIENT_ID clientId);

#endif  // VQ_CLIENT_COMMON_SESSION_CLIENTID_H
