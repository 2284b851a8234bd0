#include "ClientSession.h"

#include <cstring>

#include "ExitCodes.h"

namespace vqclient {
namespace {

// The line that begins so, or nothing.
std::string LineOf(const std::string& lines, const std::string& beginning) {
  const std::size_t at = lines.find(beginning);
  return at == std::string::npos ? "" : lines.substr(at, lines.find('\n', at) - at);
}

}  // namespace

ClientSession::~ClientSession() {
  Logout();
  Wipe(m_password);
}

bool ClientSession::FindCredentials() {
  LogReasons reasons;
  UserPass credentials(m_line.user, "", m_line.passwordFile);
  if (!credentials.Init()) {
    const std::string why = LineOf(reasons.Take(), "Password file ");
    Tell(credentials.GetStatStr() + (why.empty() ? "" : "\n" + why));
    return false;
  }
  m_user = credentials.GetUsername();
  m_password = credentials.GetPassword();
  m_hasCredentials = true;
  return true;
}

int ClientSession::Login() {
  if (!m_hasCredentials && !FindCredentials()) return kCredentialsMissing;
  std::vector<char*> arguments = m_line.OrbArguments();
  m_line.StartClock();
  m_begun = true;
  const int result =
      GL_Login(m_user, m_password, m_line.server, m_line.lifetime, m_message, CLIENT_CLI,
               m_line.kind, static_cast<int>(arguments.size()), arguments.data());
  Wipe(m_password);
  const bool isIn = IsIn(result);
  std::string text = m_message;
  if (text.empty() && !isIn) text = "The login failed with code " + std::to_string(result) + ".";
  if (const std::string cause = GL_GetFailureCause(); !isIn && !cause.empty()) {
    const std::size_t end = text.find_last_not_of("\t\n ");  // a tab may end the server's text
    text = text.substr(0, end + 1) + "\nCause: " + cause;
  }
  if (!text.empty() && !(isIn && Form().quiet)) Tell(text);
  return result;
}

int ClientSession::LoginAndFinish() {
  const int result = Login();
  if (!IsIn(result)) return result;
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

}  // namespace vqclient
