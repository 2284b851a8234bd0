// The version gate: the step of a login in which client and server judge each other's version.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H

#include <string>

#include <support/orb/Corba.h>
#include <vq_idl/UsersManagerC.h>

class LoginHandler;

namespace vq::session {

// Thread contract: as LoginHandler, whose session it serves.
class VersionGate {
 public:
  explicit VersionGate(const LoginHandler& session) : m_session(session) {}

  // Tells the server the client's version and judges the server's. False: the login is refused, and
  // `message` tells the user why. Raises ServerTypeEx when the server does not answer the question.
  bool Pass(QCSCorbaUsersManager_ptr users, const std::string& clientVersion,
            std::string& message) const;

 private:
  const LoginHandler& m_session;
};

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_VERSIONGATE_H
