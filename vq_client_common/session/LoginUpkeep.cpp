// The members of LoginHandler that finish, keep alive, renew and end a session.

#include <vq_client_common/session/LoginHandler.h>

#include <string>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/ORBCommon.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("LoginUpkeep");

}  // namespace

int LoginHandler::PostLogin() {
  const TDiagFunc diag(diagModule, "LoginHandler::PostLogin");
  if (vq::session::LoadUserAuthorizations(*m_userAuthorizations, GetUserID()) != 1) {
    throw UserAuthEx("Failed to load user authorizations", "");
  }
  if (RegisterTimeOut(GL_GetCRBRegisterTimeOut()) != 1) {
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
    QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
    result = GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, m_serverId, true);
    // Without a reference there is nobody to tell; the look-up's result is the answer.
    if (timeOut > 0 && result == 1) {
      VQ_LOG(diag, 4) << "Resetting timeout to: " << timeOut;
      result = users->CRB_ResetTimeout(GetUserID().c_str(), static_cast<CORBA::ULong>(timeOut));
    }
    if (result != 1) {
      VQ_LOG(diag, 1) << "CRB_ResetTimeout failed resulted with code:" << result;
    }
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << "CORBA::SystemException has cought: " << e.minor();
    throw ServerTypeEx("");
  } catch (const CORBA::UserException&) {
    VQ_LOG(diag, 1) << "CORBA::UserException has cought";
  }
  return result;
}

int LoginHandler::ClientKeepAlive() {
  const TDiagFunc diag(diagModule, "LoginHandler::ClientKeepAlive");
  try {
    QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
    if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, m_serverId, true) != 1) {
      throw NoServerEx("");
    }
    const std::string userId = GetUserID();
    VQ_LOG(diag, 4) << "send ClientKeepAlive for UserID: '" << userId << "'.";
    try {
      return users->CRB_ClientKeepAlive(userId.c_str());
    } catch (const CORBA::Exception& e) {
      VQ_LOG(diag, 1) << "CORBA::Exception was caught during Client Keep Alive (" << e << ").";
      throw ServerTypeEx("");
    }
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << "CORBA::SystemException has cought: " << e.minor();
    throw ServerTypeEx("");
  } catch (const CosNaming::NamingContext::NotFound&) {
    VQ_LOG(diag, 2) << "Could not resolve CorbaUserAuthorizations";
    throw ServerTypeEx("");
  } catch (const CosNaming::NamingContext::InvalidName&) {
    VQ_LOG(diag, 2) << "Name CorbaUserAuthorizations is invalid.";
    throw ServerTypeEx("");
  } catch (const CORBA::UserException&) {
    VQ_LOG(diag, 1) << "CORBA::UserException has cought";
    return 0;
  }
}

int LoginHandler::ReLogin(std::string& message, unsigned int timeOut) {
  const TDiagFunc diag(diagModule, "LoginHandler::ReLogin");
  const int result = Register(timeOut, message);
  // Meant to be so: the time-out is told whatever the registration's result.
  if (RegisterTimeOut(GL_GetCRBRegisterTimeOut()) != 1) {
    VQ_LOG(diag, 2) << "RegisterTimeOut failed.";
  }
  return result;
}

void LoginHandler::Logout() {
  const TDiagFunc diag(diagModule, "LoginHandler::Logout");
  if (!IsConnected()) return;
  try {
    QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
    if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, m_serverId, true) != 1) {
      VQ_LOG(diag, 1) << "Internal application error - we're supposed to be connected, but don't "
                         "have the servant reference set...";
      return;
    }
    users->CRB_Unregister(GetUserID().c_str());
    m_connectionSettings->SetUserID("");
  } catch (const CORBA::Exception& e) {
    // Meant to be so: the line says that it will be ignored, and the caller receives it.
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
