// The version gate: the step of a login in which client and server each check the other's version.
//
// A version is a string "X.Y.Z" with the major part "X.Y" and the minor part "Z". (The versions of
// schedulers in TVltVersion.h have another form.)
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H

#include <string>

#include <support/diagnostics/TDiag.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::session {

// LoginHandler.h documents these: they are its ParseVersion, GetClientVersion,
// GetMinimumServerVersionAllowed and IsServerVersionPermitted.
int ParseVersion(const std::string& version, std::string& major, std::string& minor);
int ParseVersion(const std::string& version, double& major, double& minor);
int ClientVersion(CLIENT_ID clientId, std::string& plain, std::string& withPatches);
int MinimumServerVersion(SERVER_ID serverId, std::string& version);
bool IsServerVersionPermitted(const std::string& clientVersion, SERVER_ID serverId,
                              const std::string& serverVersion);

// Sends the client's version to the server and checks the server's version. False when one refuses
// the other; `message` then is the reason for the user. Raises ServerTypeEx when the remote call
// fails.
bool PassVersionGate(QCSCorbaUsersManager_ptr users, const std::string& clientVersion,
                     const ConnectionSettings& settings, SERVER_ID serverId, const TDiagFunc& diag,
                     std::string& message);

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H
