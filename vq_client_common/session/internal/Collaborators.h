// What a file of the session calls of files that are built on it, so that it includes none of them.
//
// A login loads authorizations and may try a callback, and both of those need the session:
// authorizations/ and connectivity/ define these (authorizations/Collaborators.cpp,
// connectivity/Collaborators.cpp). Within the session the settings read a parameter, and a
// parameter is read with the settings.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

class ConnectionSettings;
class UserAuthorizations;

// SystemParameterHandler.h documents it.
VQ_CLIENT_COMMON_API bool GetSystemParameter(const std::string& name, std::string& value,
                                             const std::string& section, SERVER_ID serverId);

namespace vq::session {

// Defined in LoginHandler.cpp: settings and server kind of the process's session.
ConnectionSettings* SessionSettings();
SERVER_ID SessionServerId();

// Defined in authorizations/. The caller of New owns the result and gives it to Delete.
UserAuthorizations* NewUserAuthorizations();
void DeleteUserAuthorizations(UserAuthorizations* authorizations);
UserAuthorizations* CopyUserAuthorizations(const UserAuthorizations& authorizations);
int LoadUserAuthorizations(UserAuthorizations& authorizations, const std::string& userId);
void ResetUserAuthorizations(UserAuthorizations& authorizations);
bool IsAdministrator(const UserAuthorizations& authorizations);

// Defined in connectivity/: whether the session's server can call this client back.
bool TestSessionCallback();

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H
