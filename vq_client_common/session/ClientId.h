// The client programs of the suite.
//
// A client has four faces that disagree on purpose: the name it registers under at the server, the
// short name its ORB bears, the words a user reads, and whether its ORB is that of a pure client.
// ConnectionSettings answers the first, second and fourth for the process's own client.
#ifndef VQ_CLIENT_COMMON_SESSION_CLIENTID_H
#define VQ_CLIENT_COMMON_SESSION_CLIENTID_H

#include <string>

#include <support/Export.h>

// The programs by number. A value outside of these counts as CLIENT_UNKNOWN, but for the words,
// which it lacks.
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

// The client program in words for a user; empty for a value that is no CLIENT_ID. Safe on any
// thread.
VQ_CLIENT_COMMON_API std::string ClientIDtoString(CLIENT_ID clientId);

#endif  // VQ_CLIENT_COMMON_SESSION_CLIENTID_H
