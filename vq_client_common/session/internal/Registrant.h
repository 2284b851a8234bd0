// The client's part of a registration: host, account and password as the server receives them.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H

#include <cstddef>
#include <string>

#include <support/diagnostics/TDiag.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::session {

// What a registration sends. Both steps return false, and log a line at level 1 in the caller's
// scope, when the registration cannot continue; GL_GetFailureCause then returns the cause.
struct Registrant {
  // Finds the names of the host and of the process's account. The account's name may have up to
  // `accountSize` - 1 bytes.
  bool FindNames(const TDiagFunc& diag, std::size_t accountSize);

  // Takes the password of the settings: plain, encoded, or as the response to a challenge, which it
  // gets from the server. Raises CORBA::SystemException.
  bool FindPassword(const ConnectionSettings& settings, QCSCorbaUsersManager_ptr users,
                    const TDiagFunc& diag);

  std::string host;
  std::string account;
  SecretString password;
};

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H
