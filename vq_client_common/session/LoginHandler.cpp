#include <vq_client_common/session/LoginHandler.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>
#include <vq_client_common/session/internal/Registrant.h>
#include <vq_client_common/session/internal/UsersManager.h>
#include <vq_client_common/session/internal/VersionGate.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("LoginHandler");

constexpr int kFailed = vq::CodeOf(vq::LoginResult::kFailed);

// The two sets of log texts for the end of a conversation.
enum class Wording { kRegistration, kUpkeep };

// Logs the exception; called in its handler. Returns kFailed for an exception that the interface
// definitions declare; raises ServerTypeEx for any other.
int ConversationEnded(const TDiagFunc& diag, Wording wording, const CORBA::Exception& exception) {
  const bool registration = wording == Wording::kRegistration;
  vq::orb::NoteFailedCall(exception, CorbaServerPackManager::Get()->FindItem(
                                         "UsersManager", vq::session::SessionServerId()));
  try {
    throw;
  } catch (const CORBA::SystemException& e) {
    if (registration) {
      VQ_LOG(diag, 1) << "CORBA::SystemException caught: " << e;
    } else {
      VQ_LOG(diag, 1) << "CORBA::SystemException has cought: " << e.minor();
    }
  } catch (const CosNaming::NamingContext::NotFound&) {
    VQ_LOG(diag, 2) << "Could not resolve CorbaUserAuthorizations";
  } catch (const CosNaming::NamingContext::InvalidName&) {
    VQ_LOG(diag, 2) << "Name CorbaUserAuthorizations is invalid.";
  } catch (const CORBA::UserException& e) {
    if (registration) {
      VQ_LOG(diag, 1) << "CORBA::UserException caught" << e;
    } else {
      VQ_LOG(diag, 1) << "CORBA::UserException has cought";
    }
    return kFailed;
  }
  throw ServerTypeEx("");
}

}  // namespace

namespace vq::session {

ConnectionSettings* SessionSettings() {
  return LoginHandler::GetGlobal()->GetConnectionSettings();
}

SERVER_ID SessionServerId() {
  return LoginHandler::GetGlobal()->GetServerID();
}

}  // namespace vq::session

LoginHandler* LoginHandler::g_obLoginHandler = nullptr;

LoginHandler* LoginHandler::GetGlobal() {
  if (g_obLoginHandler == nullptr) g_obLoginHandler = new LoginHandler;
  return g_obLoginHandler;
}

LoginHandler::LoginHandler()
    : m_userAuthorizations(vq::session::NewUserAuthorizations()),
      m_connectionSettings(new ConnectionSettings) {}

LoginHandler::LoginHandler(const LoginHandler& other) : LoginHandler() {
  *this = other;
}

LoginHandler& LoginHandler::operator=(const LoginHandler& other) {
  vq::session::AssignUserAuthorizations(*m_userAuthorizations, *other.m_userAuthorizations);
  *m_connectionSettings = *other.m_connectionSettings;
  m_serverId = other.m_serverId;
  return *this;
}

LoginHandler::~LoginHandler() {
  vq::session::DeleteUserAuthorizations(m_userAuthorizations);
  delete m_connectionSettings;
}

void LoginHandler::SetConnectionData(const std::string& user, const std::string& password,
                                     const std::string& server, CLIENT_ID clientId,
                                     SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "LoginHandler::SetConnectionData");
  m_connectionSettings->SetUserName(user);
  m_connectionSettings->SetPassword(password);
  m_connectionSettings->SetServerName(server);
  m_connectionSettings->LoadEncodePassword(serverId);
  m_connectionSettings->SetClientID(clientId);
  SetServedID(serverId);
  if (user.empty() || password.empty() || server.empty()) {
    vq::orb::NoteCause("the user, the password or the server's name is empty");
    throw UserAuthEx("", user);
  }
}

int LoginHandler::Login(std::string& message, unsigned int timeOut) {
  const TDiagFunc diag(diagModule, "LoginHandler::Login");
  return Register(timeOut, message);
}

int LoginHandler::Register(unsigned int timeOut, std::string& message) {
  const TDiagFunc diag(diagModule, "LoginHandler::Register");
  try {
    return Converse(diag, timeOut, message);
  } catch (const CORBA::Exception& e) {
    return ConversationEnded(diag, Wording::kRegistration, e);
  }
}

// The conversation with the users manager: version gate, password, registration.
int LoginHandler::Converse(const TDiagFunc& diag, unsigned int timeOut, std::string& message) {
  QCSCorbaUsersManager_ptr users;
  if (vq::session::GetUsersManager(users, m_serverId) != 1) throw NoServerEx("");

  vq::session::Registrant registrant;
  if (!registrant.FindNames(diag, 255)) return kFailed;

  std::string version = "0";
  std::string versionWithPatches = "0";
  if (GetClientVersion(version, versionWithPatches) == 1 &&
      !vq::session::PassVersionGate(users, version, *m_connectionSettings, m_serverId, diag,
                                    message)) {
    return kFailed;
  }

  if (!registrant.FindPassword(*m_connectionSettings, users, diag)) return kFailed;

  QCSCorbaLMInfoSeq_var loginMessages;
  CORBA::String_var serverMessage;
  CORBA::String_var userId;
  CORBA::String_var dbUser;
  const int result = users->CRB_Register(
      m_connectionSettings->getUserName().c_str(), registrant.password.Text().c_str(),
      registrant.host.c_str(), registrant.account.c_str(),
      m_connectionSettings->GetClientID4CRBRegister().c_str(), versionWithPatches.c_str(),
      loginMessages.out(), timeOut, serverMessage.out(), userId.out(), dbUser.out());
  vq::orb::TakeCause();  // from here on the server's message is the cause
  message = serverMessage.in();
  if (result == vq::CodeOf(vq::LoginResult::kPasswordAboutToExpire) && message.empty()) {
    message = "Your password is about to expire.\t";
  }
  m_connectionSettings->SetUserID(userId.in());
  m_connectionSettings->SetDBUserName(dbUser.in());

  switch (static_cast<vq::LoginResult>(result)) {
    case vq::LoginResult::kPasswordExpired:
      throw UserPwdExpEx(message);
    case vq::LoginResult::kFailed:
      throw UserAuthEx(message, m_connectionSettings->getUserName());
    case vq::LoginResult::kAccountLocked:
      throw UserLockedEx(message);
    default:  // 1, 50, and codes of the server's own
      return result;
  }
}

int LoginHandler::PostLogin() {
  const TDiagFunc diag(diagModule, "LoginHandler::PostLogin");
  if (vq::session::LoadUserAuthorizations(*m_userAuthorizations, GetUserID()) != 1) {
    throw UserAuthEx("Failed to load user authorizations", "");
  }
  if (RegisterTimeOut(vq::session::ConfiguredTimeOut()) != 1) {
    VQ_LOG(diag, 2) << "RegisterTimeOut failed.";
  }
  SetLocaleBySystemParam("use_account_locale");
  m_connectionSettings->SetUserID(GetUserID());  // logs the digest of the ID
  std::string value;
  if (GetSystemParameter("OrbShutdownWait", value, "gui", E_GSR)) {
    m_connectionSettings->SetWait4Shutdown(value != "0");
  }
  VQ_LOG(diag, 4) << "CORBA communication shut down, bWait4OrbShutDown="
                  << m_connectionSettings->GetWait4Shutdown();
  return 1;
}

int LoginHandler::RegisterTimeOut(long timeOut) {
  const TDiagFunc diag(diagModule, "LoginHandler::RegisterTimeOut");
  int result = 0;
  try {
    QCSCorbaUsersManager_ptr users;
    result = vq::session::GetUsersManager(users, m_serverId);
    // Without a reference nothing is sent; the result is that of the look-up.
    if (timeOut > 0 && result == 1) {
      VQ_LOG(diag, 4) << "Resetting timeout to: " << timeOut;
      result = users->CRB_ResetTimeout(GetUserID().c_str(), static_cast<CORBA::ULong>(timeOut));
    }
    if (result != 1) {
      VQ_LOG(diag, 1) << "CRB_ResetTimeout failed resulted with code:" << result;
    }
  } catch (const CORBA::Exception& e) {
    ConversationEnded(diag, Wording::kUpkeep, e);
  }
  return result;
}

int LoginHandler::ClientKeepAlive() {
  const TDiagFunc diag(diagModule, "LoginHandler::ClientKeepAlive");
  try {
    QCSCorbaUsersManager_ptr users;
    if (vq::session::GetUsersManager(users, m_serverId) != 1) {
      throw NoServerEx("");
    }
    const std::string userId = GetUserID();
    VQ_LOG(diag, 4) << "send ClientKeepAlive for UserID: '" << userId << "'.";
    try {
      return users->CRB_ClientKeepAlive(userId.c_str());
    } catch (const CORBA::Exception& e) {
      vq::orb::NoteFailedCall(e, users);
      VQ_LOG(diag, 1) << "CORBA::Exception was caught during Client Keep Alive (" << e << ").";
      throw ServerTypeEx("");
    }
  } catch (const CORBA::Exception& e) {
    return ConversationEnded(diag, Wording::kUpkeep, e);
  }
}

int LoginHandler::ReLogin(std::string& message, unsigned int timeOut) {
  const TDiagFunc diag(diagModule, "LoginHandler::ReLogin");
  const int result = Register(timeOut, message);
  // Intentional: the time-out is sent whatever the registration's result.
  if (RegisterTimeOut(vq::session::ConfiguredTimeOut()) != 1) {
    VQ_LOG(diag, 2) << "RegisterTimeOut failed.";
  }
  return result;
}

void LoginHandler::Logout() {
  const TDiagFunc diag(diagModule, "LoginHandler::Logout");
  if (!IsConnected()) return;
  try {
    QCSCorbaUsersManager_ptr users;
    if (vq::session::GetUsersManager(users, m_serverId) != 1) {
      VQ_LOG(diag, 1) << "Internal application error - we're supposed to be connected, but don't "
                         "have the servant reference set...";
      return;
    }
    users->CRB_Unregister(GetUserID().c_str());
    m_connectionSettings->SetUserID("");
  } catch (const CORBA::Exception& e) {
    // Intentional: the line says that the exception is ignored, and yet the caller receives it.
    VQ_LOG(diag, 2) << "CORBA::Exception caught: " << e << ", will be ignored.";
    throw;
  }
}

int LoginHandler::CheckSSLCertificateExpiration(std::string& message) {
  const TDiagFunc diag(diagModule, "LoginHandler::CheckSSLCertificateExpiration");
  std::string days;
  if (!GetSystemParameter("WarningSSLExpirationDays", days, "general", E_GSR)) days = "60";
  const int number = vq::Atoi(days);
  VQ_LOG(diag, 4) << "Days to warn on certificates: " << number;
  if (ORBCommon<1>::Get()->CheckCertificateExpiration(number) == -1) {
    message = "SSL Certificate is going to expire in less than " + days + "days.";
  } else {
    message.clear();
  }
  return 1;
}

std::string LoginHandler::GetUserID() const {
  return m_connectionSettings->GetUserID();
}

bool LoginHandler::IsConnected() const {
  return m_connectionSettings->IsConnected();
}

bool LoginHandler::IsAdministrator() const {
  return vq::session::IsAdministrator(*m_userAuthorizations);
}

int LoginHandler::ParseVersion(const std::string& version, std::string& major, std::string& minor) {
  return vq::session::ParseVersion(version, major, minor);
}

int LoginHandler::ParseVersion(const std::string& version, double& major, double& minor) {
  return vq::session::ParseVersion(version, major, minor);
}

int LoginHandler::GetClientVersion(std::string& plain, std::string& withPatches) const {
  return vq::session::ClientVersion(m_connectionSettings->GetClientID(), plain, withPatches);
}

int LoginHandler::GetMinimumServerVersionAllowed(SERVER_ID serverId, std::string& version) const {
  return vq::session::MinimumServerVersion(serverId, version);
}

bool LoginHandler::IsServerVersionPermitted(std::string& clientVersion, SERVER_ID serverId,
                                            std::string& serverVersion) const {
  return vq::session::IsServerVersionPermitted(clientVersion, serverId, serverVersion);
}
