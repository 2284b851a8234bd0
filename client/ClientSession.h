// One session of vqclient with a server: credentials, login, and an orderly end whatever happens.
#ifndef VQ_CLIENT_CLIENTSESSION_H
#define VQ_CLIENT_CLIENTSESSION_H

#include <string>

#include "CommandLine.h"
#include "LogReasons.h"

namespace vqclient {

// Thread contract: one thread. Logs out and ends the ORB when it goes out of scope.
class ClientSession {
 public:
  explicit ClientSession(CommandLine& line) : m_line(line) {}
  ~ClientSession();
  ClientSession(const ClientSession&) = delete;
  ClientSession& operator=(const ClientSession&) = delete;

  // Finds user and password; tells the user why not when it returns false.
  bool FindCredentials();

  // Logs in, with FindCredentials before unless that was done. Returns the result of GL_Login,
  // after telling the user what went wrong or what the server says. Without credentials it returns
  // kCredentialsMissing.
  int Login();
  static constexpr int kCredentialsMissing = -1;

  // Login and GL_PostLogin.
  int LoginAndFinish();

  // Ends the session. Returns the result of GL_LogOut; 1 when there is none.
  int Logout();

  const std::string& Message() const { return m_message; }

 private:
  CommandLine& m_line;
  std::string m_user;
  std::string m_password;
  std::string m_message;
  bool m_hasCredentials = false;
  bool m_begun = false;
};

// Whether a result of the above says that the session is there.
constexpr bool IsIn(int result) {
  return result == 1 || result == 50;
}

// The exit code for a result of the above.
int ExitCodeOfSession(int result);

// Overwrites a text that held a password.
void Wipe(std::string& secret);

}  // namespace vqclient

#endif  // VQ_CLIENT_CLIENTSESSION_H
