// Who registers: host and account of this process, and the password as a registration sends it.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H

#include <cstddef>
#include <string>

#include <support/diagnostics/TDiag.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::session {

// Both steps return false, with a line at level 1 in the caller's scope, when the registration
// cannot go on.
class Registrant {
 public:
  // Asks the host for its name and the account's. An account name of `accountSize` bytes, its
  // closing zero byte included, still fits.
  bool FindNames(const TDiagFunc& diag, std::size_t accountSize);

  // The password of the settings: plain, encoded, or as the answer to a challenge of the server.
  // Raises CORBA::SystemException.
  bool FindPassword(const ConnectionSettings& settings, QCSCorbaUsersManager_ptr users,
                    const TDiagFunc& diag);

  const std::string& Host() const { return m_host; }
  const std::string& Account() const { return m_account; }
  const std::string& Password() const { return m_password.Text(); }

 private:
  std::string m_host;
  std::string m_account;
  SecretString m_password;
};

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRANT_H
