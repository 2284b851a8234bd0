// The kinds of server a client may log in to.
//
//   GL_ResolveServerID(E_GSR)  -> "GSR", the kind under which the naming service knows the server
//   ServerIDtoString(E_GSR)    -> "VELTRA-M/VQ Server", the words for a user
#ifndef VQ_CLIENT_COMMON_SESSION_SERVERID_H
#define VQ_CLIENT_COMMON_SESSION_SERVERID_H

#include <string>

#include <support/Export.h>

// The kinds by number, as the wire and min-accepted-servers.txt know them.
enum SERVER_ID : int {
  E_GSR = 0,
  E_GAS = 1,
  E_QIMS = 2,
  E_FORECAST = 3,
  E_CMS = 4,
  E_SLS = 5,
};

// Both are pure functions over a table and safe on any thread.

// The server kind of the naming service; empty for a value that is no SERVER_ID.
VQ_CLIENT_COMMON_API std::string GL_ResolveServerID(SERVER_ID serverId);

// The server kind in words for a user; empty for E_SLS, which has none, and for a value that is no
// SERVER_ID.
VQ_CLIENT_COMMON_API std::string ServerIDtoString(SERVER_ID serverId);

#endif  // VQ_CLIENT_COMMON_SESSION_SERVERID_H
