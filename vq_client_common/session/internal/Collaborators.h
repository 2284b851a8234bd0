// What the session needs of the folders that are built on it.
//
// A login loads authorizations and may try a callback, and both of those need the session. So that
// the session's sources include neither, it declares here what it calls; authorizations/ and
// connectivity/ define it (authorizations/Collaborators.cpp, connectivity/Collaborators.cpp).
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_COLLABORATORS_H

#include <string>

class UserAuthorizations;

namespace vq::session {

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
