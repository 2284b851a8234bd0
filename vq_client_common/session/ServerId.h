// The kinds of server that a client can log in to.
//
//   GL_ResolveServerID(E_GSR);   // "GSR", the kind in the naming service
//   ServerIDtoString(E_GSR);     // "VELTRA-M/VQ Server", the name for users
#ifndef VQ_CLIENT_COMMON_SESSION_SERVERID_H
#define VQ_CLIENT_COMMON_SESSION_SERVERID_H

#include <string>

#include <support/Export.h>

// The kinds of server. min-accepted-servers.txt uses the same numbers.
enum SERVER_ID : int {
  E_GSR = 0,
  E_GAS = 1,
  E_QIMS = 2,
  E_FORECAST = 3,
  E_CMS = 4,
  E_SLS = 5,
};

// The server's kind in the naming service; empty for a value that is no SERVER_ID.
VQ_CLIENT_COMMON_API std::string GL_ResolveServerID(SERVER_ID serverId);

// The server kind's name for users; empty for E_SLS, which has none, and for a value that is no
// SERVER_ID.
VQ_CLIENT_COMMON_API std::string ServerIDtoString(SERVER_ID serverId);

#endif  // VQ_CLIENT_COMMON_SESSION_SERVERID_H
