#include <vq_client_common/session/GlobalFuncs.h>

#include <algorithm>
#include <exception>
#include <map>
#include <stdexcept>
#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Environment.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>
#include <vq_client_common/environment/ClientProperties.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>
#include <vq_idl/SharedTypesC.h>

namespace {

TDiagRegister diagModule("GlobalFuncs");

constexpr const char* kOrbNotUpText =
    "CORBA initialization failed\n"
    "This error can occur for any of the following reasons:\n"
    "- The CORBA Naming Service is not running.\n"
    "- The CORBA Naming Service listening port is blocked by the firewall.\t\n"
    "- The CORBA configuration file is invalid.\t\n"
    "  [Edit and save the file. Restart the application to apply the new settings].\t";

void (*troubleshooter)(void*) = nullptr;
void* troubleshooterData = nullptr;

void TestCallbackIfAsked(const TDiagFunc& diag) {
  if (troubleshooter == nullptr) return;
  if (!vq::GetEnv("ENABLE_TEST_CALLBACK")) {
    VQ_LOG(diag, 4) << "ENABLE_TEST_CALLBACK environment variable is not set : no test callback "
                       "performed";
    return;
  }
  VQ_LOG(diag, 4) << "ENABLE_TEST_CALLBACK environment variable is set : starting test callback";
  if (!vq::session::TestSessionCallback()) troubleshooter(troubleshooterData);
  VQ_LOG(diag, 4) << "ENABLE_TEST_CALLBACK environment variable is set : test callback ended";
}

// Why the ORB that is up cannot serve a login with these -SSL options; "" if it can. It keeps its
// settings, and a login that requires TLS could be unencrypted.
std::string WhyOtherTls(int argc, char** argv, const QCSOrbCommon& orb) {
  try {
    vq::orb::OrbArguments given = vq::orb::SplitArguments(argc, argv);
    std::erase_if(given.options, [](const auto& one) { return !one.first.starts_with("-SSL"); });
    if (given.options.empty()) return "";
    const vq::orb::ResolvedSetting* const other = vq::orb::FindOther(given, orb.GetSettings());
    if (other == nullptr) return "";
    return other->name + " is '" + other->value +
           "' in the ORB that is up; end it with GL_LogOut(true) before the login";
  } catch (const std::invalid_argument& e) {
    return e.what();
  }
}

}  // namespace

int GL_Login(const std::string& user, const std::string& password, const std::string& server,
             unsigned int timeOut, std::string& message, CLIENT_ID clientId, SERVER_ID serverId,
             int argc, char** argv) {
  const TDiagFunc diag(diagModule, "GL_Login");
  vq::orb::TakeCause();
  try {
    // First, because the ORB gets its name from the client ID.
    ConnectionSettings::Get()->SetClientID(clientId);
    if (!GL_InitializeCORBA(argc, argv)) throw BadOrbixCfgEx(kOrbNotUpText);
    LoginHandler* const session = LoginHandler::GetGlobal();
    session->SetConnectionData(user, password, server, clientId, serverId);
    VQ_LOG(diag, 5) << "Setting connection info as follow: User=" << user << " Server=" << server
                    << " ClinetID=" << ConnectionSettings::Get()->GetClientIDAsString();
    i18n_aux::init_globa_c(true, serverId);
    return session->Login(message, timeOut);
  } catch (BaseLoginEx& e) {
    message = e.handle();
    return e.GetReturnCode();
  } catch (const std::exception& e) {
    vq::orb::NoteCause(e.what());
    VQ_LOG(diag, 1) << "failed with excepion: " << e.what();
    return 0;
  }
}

std::string GL_GetFailureCause() {
  std::string cause = vq::orb::TakeCause();
  vq::orb::NoteCause(cause);  // for the next call
  std::replace_if(
      cause.begin(), cause.end(), [](char c) { return c == '\n' || c == '\t'; }, ' ');
  return cause;
}

bool GL_InitializeCORBA(int argc, char** argv) {
  const TDiagFunc diag(diagModule, "GL_InitializeCORBA");
  auto* const orb = ORBCommon<1>::Get();
  if (orb->IsInitialized()) {
    const std::string cause = WhyOtherTls(argc, argv, *orb);
    if (cause.empty()) return true;
    VQ_LOG(diag, 1) << cause;
    vq::orb::NoteCause(cause);
    return false;
  }
  const std::string name = ConnectionSettings::Get()->GetClientIDAsString();
  if (ConnectionSettings::Get()->isPureClient()) {
    orb->InitCorba4Client(argc, argv, name.c_str());
  } else {
    orb->InitCorba(argc, argv, name.c_str());
  }
  return orb->IsInitialized();
}

int GL_PostLogin(std::string& message) {
  const TDiagFunc diag(diagModule, "GL_PostLogin");
  int result = 0;
  try {
    result = LoginHandler::GetGlobal()->PostLogin();
  } catch (BaseLoginEx& e) {
    message = e.handle();
    return e.GetReturnCode();
  }
  if (result == 1) TestCallbackIfAsked(diag);
  vq::orb::TakeCause();  // of steps whose failure does not matter
  return result;
}

int GL_ClientKeepAlive() {
  const TDiagFunc diag(diagModule, "GL_ClientKeepAlive");
  try {
    // Intentional: BaseLoginEx, which is no std::exception, reaches the caller.
    return LoginHandler::GetGlobal()->ClientKeepAlive();
  } catch (const std::exception& e) {
    VQ_LOG(diag, 1) << "failed with excepion: " << e.what();
    return 0;
  }
}

int GL_ReLogin(unsigned int timeOut) {
  const TDiagFunc diag(diagModule, "GL_ReLogin");
  if (!ORBCommon<1>::Get()->IsInitialized()) {
    VQ_LOG(diag, 1) << "CORBA communication is down";
    return 0;
  }
  try {
    std::string message;
    return LoginHandler::GetGlobal()->ReLogin(message, timeOut);
  } catch (BaseLoginEx& e) {
    e.handle();  // Intentional: only logs the text; every failure is 0.
    return 0;
  }
}

int GL_LogOut(bool destroyOrb) {
  const TDiagFunc diag(diagModule, "GL_LogOut");
  int result = 1;
  LoginHandler* const session = LoginHandler::GetGlobal();
  try {
    if (session->IsConnected()) {
      VQ_LOG(diag, 4) << "User was connected - must unregister...";
      session->Logout();
    } else {
      VQ_LOG(diag, 4) << "User was not connected...";
    }
  } catch (const USER_NOT_AUTHORIZED& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotAuthorized Exception - " << e.Message.in();
    result = vq::CodeOf(vq::LoginResult::kNotAuthorized);
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 2) << "Caught a CORBA System Exception - " << e;
  } catch (const CORBA::Exception& e) {
    VQ_LOG(diag, 2) << "Caught a CORBA exception - " << e;
  } catch (const std::bad_alloc& e) {
    VQ_LOG(diag, 2) << "The server was not told of the logout - " << e.what();
  }
  CorbaServerPackManager::Get()->Reset();
  vq::session::ResetUserAuthorizations(*session->GetUserAuthorizations());
  ConnectionSettings* const settings = session->GetConnectionSettings();
  settings->SetUserID("");
  if (destroyOrb) ORBCommon<1>::Get()->DestroyOrb(settings->GetWait4Shutdown());
  return result;
}

long GL_GetCRBRegisterTimeOut() {
  return vq::session::ConfiguredTimeOut();
}

int GL_CheckSSLCertificateExpiration(std::string& message) {
  return LoginHandler::GetGlobal()->CheckSSLCertificateExpiration(message);
}

void (*GL_SetCallbackTroubleshooter(void (*callback)(void*), void* data))(void*) {
  troubleshooterData = data;
  return std::exchange(troubleshooter, callback);
}

// The pointers become null, so that a later call does not use a deleted object.
void exit_vqclient_common() {
  delete std::exchange(CorbaServerPackManager::pCorbaServerPackManager, nullptr);
  ClientProperties::ReleaseStaticObject();
  delete std::exchange(LoginHandler::g_obLoginHandler, nullptr);
}
