// Functions that files of the session call and that files above them define. They are declared
// here, so that no lower file includes a higher one.
//
// A login loads authorizations and may test a callback; authorizations/ and connectivity/ define
// the functions for that. Within the session, the settings read a parameter, and the parameters
// need the settings.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H

#include <optional>
#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

class ConnectionSettings;
class UserAuthorizations;

// SystemParameterHandler.h documents it.
VQ_CLIENT_COMMON_API bool GetSystemParameter(const std::string& name, std::string& value,
                                             const std::string& section, SERVER_ID serverId);

namespace vq::session {

// Defined in LoginHandler.cpp: the settings and the server kind of the process's session.
ConnectionSettings* SessionSettings();
SERVER_ID SessionServerId();

// Defined in SystemParameterHandler.cpp: the profile setting [Orb Parameters] RegisterTimeOut,
// which may be 0 or negative; and what GL_GetCRBRegisterTimeOut returns. Both in seconds.
std::optional<int> ProfileTimeOut();
long ConfiguredTimeOut();

// Defined in authorizations/. The caller owns the result of New, for Delete.
UserAuthorizations* NewUserAuthorizations();
void DeleteUserAuthorizations(UserAuthorizations* authorizations);
void AssignUserAuthorizations(UserAuthorizations& target, const UserAuthorizations& source);
int LoadUserAuthorizations(UserAuthorizations& authorizations, const std::string& userId);
void ResetUserAuthorizations(UserAuthorizations& authorizations);
bool IsAdministrator(const UserAuthorizations& authorizations);

// Defined in connectivity/: whether the session's server can call this client back. Never raises.
bool TestSessionCallback();

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H
