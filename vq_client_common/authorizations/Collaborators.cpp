// What the session calls of this folder, which it does not include.

#include <vq_client_common/session/internal/Collaborators.h>

#include <vq_client_common/authorizations/UserAuthorizations.h>

namespace vq::session {

UserAuthorizations* NewUserAuthorizations() {
  return new UserAuthorizations;
}

void DeleteUserAuthorizations(UserAuthorizations* authorizations) {
  delete authorizations;
}

UserAuthorizations* CopyUserAuthorizations(const UserAuthorizations& authorizations) {
  return new UserAuthorizations(authorizations);
}

int LoadUserAuthorizations(UserAuthorizations& authorizations, const std::string& userId) {
  return authorizations.LoadAuthorizations(userId);
}

void ResetUserAuthorizations(UserAuthorizations& authorizations) {
  authorizations.Reset();
}

bool IsAdministrator(const UserAuthorizations& authorizations) {
  return authorizations.IsAdministrator();
}

}  // namespace vq::session
