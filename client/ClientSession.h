// One session of vqclient with a server: credentials, login, and an orderly end whatever happens.
#ifndef VQ_CLIENT_CLIENTSESSION_H
#define VQ_CLIENT_CLIENTSESSION_H

#include <string>

#include "CommandLine.h"

namespace vqclient {

// Thread contract: one thread. Logs out and ends the ORB when it goes out of scope.
class ClientSession {
 public:
  explicit ClientSession(CommandLine& line) : m_line(line) {}
  ~ClientSession();
  ClientSession(const ClientSession&) = delete;
  ClientSession& operator=(const ClientSession&) = delete;

  // Finds user and password, and logs in. Returns the result of GL_Login, after telling the user on
  // the standard error stream what went wrong or what the server says. Without credentials it
  // returns kCredentialsMissing.
  int Login();
  static constexpr int kCredentialsMissing = -1;

  // Login and GL_PostLogin.
  int LoginAndFinish();

  // Ends the session. Returns the result of GL_LogOut; 1 when there is none.
  int Logout();

  const std::string& Message() const { return m_message; }

 private:
  bool FindCredentials();

  CommandLine& m_line;
  std::string m_user;
  std::string m_password;
  std::string m_message;
  bool m_begun = false;
};

// The exit code for a result of the above.
int ExitCodeOfSession(int result);

// Overwrites a text that held a password.
void Wipe(std::string& secret);

// Prints a message for the user to the standard error stream, without the tab that may end it.
void Tell(const std::string& message);

}  // namespace vqclient

#endif  // VQ_CLIENT_CLIENTSESSION_H
