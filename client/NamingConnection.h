// The naming service without a login.
#ifndef VQ_CLIENT_NAMINGCONNECTION_H
#define VQ_CLIENT_NAMINGCONNECTION_H

#include <string>

#include "CommandLine.h"

namespace vqclient {

// Brings the session's ORB up, and ends it when it goes out of scope. Thread contract: one thread.
class NamingConnection {
 public:
  // Calls that the settings do not limit are limited to `limit` milliseconds each.
  NamingConnection(CommandLine& line, int limit);
  ~NamingConnection();
  NamingConnection(const NamingConnection&) = delete;
  NamingConnection& operator=(const NamingConnection&) = delete;

  bool IsUp() const { return m_up; }
  const std::string& Error() const { return m_error; }  // why it is not up

 private:
  bool m_up = false;
  std::string m_error;
};

// Limits each call to that many milliseconds where nobody has set a limit.
void LimitCalls(CommandLine& line, int limit);

// What failed, for a person.
std::string FailureOf(const CORBA::Exception& exception);

}  // namespace vqclient

#endif  // VQ_CLIENT_NAMINGCONNECTION_H
