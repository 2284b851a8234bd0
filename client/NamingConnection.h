// The naming service without a login.
#ifndef VQ_CLIENT_NAMINGCONNECTION_H
#define VQ_CLIENT_NAMINGCONNECTION_H

#include <string>
#include <vector>

#include <client/CommandLine.h>

namespace vqclient {

// The ORB of a session. Its start calls the naming service. The destructor ends it.
class NamingConnection {
 public:
  // Calls that no setting limits are limited to `limit` milliseconds, if it is not 0. Raises
  // Failure with the exit code and the cause.
  NamingConnection(CommandLine& line, int limit, int exitCode);
  ~NamingConnection();
  NamingConnection(const NamingConnection&) = delete;
  NamingConnection& operator=(const NamingConnection&) = delete;

  // The names of all servers. Raises CORBA::Exception, and Failure for an endless list.
  std::vector<CosNaming::Name> Servers() const;

  // The name of the only server of that kind; empty, with the reason, if there is none or more than
  // one.
  std::string OnlyServer(SERVER_ID kind, std::string& reason) const;
};

// Everything in a naming context. Raises as NamingConnection::Servers.
std::vector<CosNaming::Binding> ListContext(CosNaming::NamingContext_ptr context);

// The cause of a failed call: the one that the call left, otherwise the exception in a few words.
std::string CauseOf(const CORBA::Exception& exception);

}  // namespace vqclient

#endif  // VQ_CLIENT_NAMINGCONNECTION_H
