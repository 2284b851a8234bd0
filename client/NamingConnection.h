// The naming service without a login.
#ifndef VQ_CLIENT_NAMINGCONNECTION_H
#define VQ_CLIENT_NAMINGCONNECTION_H

#include <string>

#include "CommandLine.h"

namespace vqclient {

// The session's ORB, which reaches the naming service when it starts. Ends it when it goes.
class NamingConnection {
 public:
  // Calls that no setting limits are limited to `limit` milliseconds. Raises Failure with the exit
  // code and the cause.
  NamingConnection(CommandLine& line, int limit, int exitCode);
  ~NamingConnection();
  NamingConnection(const NamingConnection&) = delete;
  NamingConnection& operator=(const NamingConnection&) = delete;
};

// Why a call failed, for a person; CauseOf after a call that leaves its cause (GL_GetFailureCause).
std::string InWords(const CORBA::Exception& exception);
std::string CauseOf(const CORBA::Exception& exception);

}  // namespace vqclient

#endif  // VQ_CLIENT_NAMINGCONNECTION_H
