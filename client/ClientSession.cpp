#include "ClientSession.h"

#include <cstring>
#include <iostream>
#include <vector>

#include "ExitCodes.h"

namespace vqclient {

ClientSession::~ClientSession() {
  Logout();
  Wipe(m_password);
}

bool ClientSession::FindCredentials() {
  UserPass credentials(m_line.user, "", m_line.passwordFile);
  if (!credentials.Init()) {
    Tell(credentials.GetStatStr());
    return false;
  }
  m_user = credentials.GetUsername();
  m_password = credentials.GetPassword();
  return true;
}

int ClientSession::Login() {
  if (!FindCredentials()) return kCredentialsMissing;
  std::vector<char*> arguments;
  for (std::string& argument : m_line.orb) arguments.push_back(argument.data());
  m_begun = true;
  const int result =
      GL_Login(m_user, m_password, m_line.server, m_line.timeOut, m_message, CLIENT_CLI,
               m_line.kind, static_cast<int>(arguments.size()), arguments.data());
  Wipe(m_password);
  if (!m_message.empty()) Tell(m_message);
  if (result != 1 && result != 50) {
    if (m_message.empty()) Tell("The login failed with code " + std::to_string(result) + ".");
    if (m_line.verbosity == 0) Tell("(-v shows the log.)");
  }
  return result;
}

int ClientSession::LoginAndFinish() {
  const int result = Login();
  if (result != 1 && result != 50) return result;
  const int finished = GL_PostLogin(m_message);
  if (finished == 1) return result;
  Tell(m_message);
  return finished;
}

int ClientSession::Logout() {
  if (!m_begun) return 1;
  m_begun = false;
  return GL_LogOut(true);
}

int ExitCodeOfSession(int result) {
  return result == ClientSession::kCredentialsMissing ? kNoCredentials : ExitCodeOf(result);
}

void Wipe(std::string& secret) {
  secret.resize(secret.capacity());
  explicit_bzero(secret.data(), secret.size());
  secret.clear();
}

void Tell(const std::string& message) {
  const std::size_t end = message.find_last_not_of("\t\n ");
  std::cerr << "vqclient: " << message.substr(0, end == std::string::npos ? 0 : end + 1) << '\n';
}

}  // namespace vqclient
