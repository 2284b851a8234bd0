// The password as a registration sends it: plain, encoded, or as the answer to a challenge.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRATIONPASSWORD_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRATIONPASSWORD_H

#include <support/diagnostics/TDiag.h>
#include <support/orb/Corba.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::session {

// Wipes what it holds when it goes out of scope. Thread contract: one thread.
class RegistrationPassword {
 public:
  explicit RegistrationPassword(const ConnectionSettings& settings);

  // Fetches a challenge and answers it, where the connection uses challenge and response. False,
  // with a line at level 1 in the caller's scope, when the server gives none. Raises
  // CORBA::SystemException.
  bool Answer(QCSCorbaUsersManager_ptr users, const TDiagFunc& diag);

  const char* Text() const { return m_password.Text().c_str(); }

 private:
  const bool m_challengeResponse;
  SecretString m_password;
};

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_REGISTRATIONPASSWORD_H
