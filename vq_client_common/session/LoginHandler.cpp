#include <vq_client_common/session/LoginHandler.h>

#include <cstddef>
#include <new>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/LocalIdentity.h>
#include <vq_client_common/session/internal/RegistrationPassword.h>
#include <vq_client_common/session/internal/VersionGate.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("LoginHandler");

// Results of CRB_Register.
constexpr int kRefused = 0;
constexpr int kPasswordExpired = 48;
constexpr int kAccountLocked = 49;
constexpr int kPasswordAboutToExpire = 50;

}  // namespace

LoginHandler* LoginHandler::g_obLoginHandler = nullptr;

LoginHandler* LoginHandler::GetGlobal() {
  if (g_obLoginHandler == nullptr) g_obLoginHandler = new LoginHandler;
  return g_obLoginHandler;
}

LoginHandler::LoginHandler()
    : m_userAuthorizations(vq::session::NewUserAuthorizations()),
      m_connectionSettings(new ConnectionSettings) {}

LoginHandler::LoginHandler(const LoginHandler& other)
    : m_reserved(other.m_reserved),
      m_serverId(other.m_serverId),
      m_userAuthorizations(vq::session::CopyUserAuthorizations(*other.m_userAuthorizations)),
      m_connectionSettings(new ConnectionSettings(*other.m_connectionSettings)) {}

LoginHandler& LoginHandler::operator=(const LoginHandler& other) {
  if (this == &other) return *this;
  UserAuthorizations* const authorizations =
      vq::session::CopyUserAuthorizations(*other.m_userAuthorizations);
  vq::session::DeleteUserAuthorizations(m_userAuthorizations);
  m_userAuthorizations = authorizations;
  *m_connectionSettings = *other.m_connectionSettings;
  m_reserved = other.m_reserved;
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
  if (user.empty() || password.empty() || server.empty()) throw UserAuthEx("", user);
}

int LoginHandler::Login(std::string& message, unsigned int timeOut) {
  const TDiagFunc diag(diagModule, "LoginHandler::Login");
  return Register(timeOut, message);
}

int LoginHandler::Register(unsigned int timeOut, std::string& message) {
  const TDiagFunc diag(diagModule, "LoginHandler::Register");
  try {
    return Converse(timeOut, message);
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << "CORBA::SystemException caught: " << e;
    throw ServerTypeEx("");
  } catch (const CosNaming::NamingContext::NotFound&) {
    VQ_LOG(diag, 2) << "Could not resolve CorbaUserAuthorizations";
    throw ServerTypeEx("");
  } catch (const CosNaming::NamingContext::InvalidName&) {
    VQ_LOG(diag, 2) << "Name CorbaUserAuthorizations is invalid.";
    throw ServerTypeEx("");
  } catch (const CORBA::UserException& e) {
    VQ_LOG(diag, 1) << "CORBA::UserException caught" << e;
    return kRefused;
  }
}

// The conversation with the users manager, from its reference to the verdict on the registration.
int LoginHandler::Converse(unsigned int timeOut, std::string& message) {
  const TDiagFunc diag(diagModule, "LoginHandler::Register");
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, m_serverId, true) != 1) {
    throw NoServerEx("");
  }

  vq::session::LocalIdentity local;
  constexpr std::size_t kAccountSize = 255;
  if (!local.Find(diag, kAccountSize)) return kRefused;

  std::string version = "0";
  std::string versionWithPatches = "0";
  if (GetClientVersion(version, versionWithPatches) == 1 &&
      !vq::session::VersionGate(*this).Pass(users, version, message)) {
    return kRefused;
  }

  vq::session::RegistrationPassword password(*m_connectionSettings);
  if (!password.Answer(users, diag)) return kRefused;

  QCSCorbaLMInfoSeq_var loginMessages;
  CORBA::String_var serverMessage;
  CORBA::String_var userId;
  CORBA::String_var dbUser;
  const CORBA::Long result = users->CRB_Register(
      m_connectionSettings->getUserName().c_str(), password.Text(), local.host.c_str(),
      local.account.c_str(), m_connectionSettings->GetClientID4CRBRegister().c_str(),
      versionWithPatches.c_str(), loginMessages.out(), timeOut, serverMessage.out(), userId.out(),
      dbUser.out());
  message = serverMessage.in();
  if (result == kPasswordAboutToExpire && message.empty()) {
    message = "Your password is about to expire.\t";
  }
  try {
    m_connectionSettings->SetUserID(userId.in());
    m_connectionSettings->SetDBUserName(dbUser.in());
  } catch (const std::bad_alloc&) {  // Whoever hears of a failure is not connected.
    m_connectionSettings->SetUserID("");
    throw;
  }

  switch (result) {
    case kPasswordExpired:
      throw UserPwdExpEx(message);
    case kRefused:
      throw UserAuthEx(message, m_connectionSettings->getUserName());
    case kAccountLocked:
      throw UserLockedEx(message);
    default:  // 1, 50, and codes of the server's own
      return result;
  }
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
