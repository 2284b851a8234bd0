// SetUserPassword: changing a password in a running session, or by registering anew after it has
// expired.

#include <vq_client_common/session/PasswordPolicy.h>

#include <cstddef>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/internal/LocalIdentity.h>
#include <vq_client_common/session/internal/RegistrationPassword.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("PasswordChange");

constexpr int kFailed = 0;
constexpr int kNotAuthorized = 43;
constexpr std::size_t kAccountSize = 256;
constexpr CORBA::ULong kSessionTimeOut = 600;  // seconds

// Registers with the old password and stores the new one, in one call. `result` holds what the call
// will leave if it raises: the outcome of GetClientVersion, normally 1.
void RegisterAndUpdate(QCSCorbaUsersManager_ptr users, const vq::SecretString& newPassword,
                       int& result, const TDiagFunc& diag) {
  ConnectionSettings* const settings = ConnectionSettings::Get();
  vq::session::LocalIdentity local;
  if (!local.Find(diag, kAccountSize)) return;
  vq::session::RegistrationPassword oldPassword(*settings);
  if (!oldPassword.Answer(users, diag)) return;

  std::string version = "0";
  std::string versionWithPatches = "0";
  result = LoginHandler::GetGlobal()->GetClientVersion(version, versionWithPatches);

  QCSCorbaLMInfoSeq_var loginMessages;
  CORBA::String_var text;
  CORBA::String_var userId;
  CORBA::String_var dbUser;
  result = users->CRB_RegisterAndUpdatePassword(
      settings->getUserName().c_str(), oldPassword.Text(), newPassword.Text().c_str(),
      local.host.c_str(), local.account.c_str(), settings->GetClientID4CRBRegister().c_str(),
      versionWithPatches.c_str(), loginMessages.out(), kSessionTimeOut, text.out(), userId.out(),
      dbUser.out());
  if (result == 1) settings->SetUserID(userId.in());
}

}  // namespace

int SetUserPassword(const std::string& newPassword, bool expired) {
  const TDiagFunc diag(diagModule, "SetUserPassword");
  ConnectionSettings* const settings = ConnectionSettings::Get();
  std::string wireText =
      settings->IsEncodePassword() ? ConnectionSettings::EncodePassword(newPassword) : newPassword;
  const vq::SecretString wirePassword(wireText);
  vq::Wipe(wireText);
  int result = kFailed;
  try {
    QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
    const SERVER_ID serverId = LoginHandler::GetGlobal()->GetServerID();
    if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, serverId, true) != 1) {
      return kFailed;
    }
    if (expired) {
      RegisterAndUpdate(users, wirePassword, result, diag);
    } else {
      result =
          users->CRB_UpdateUserPassword(settings->getUserName().c_str(),
                                        wirePassword.Text().c_str(), settings->GetUserID().c_str());
    }
    if (result == 1) settings->SetPassword(newPassword);
    return result;
  } catch (const USER_NOT_FOUND&) {
    VQ_LOG(diag, 1) << "Failed with USER_NOT_FOUND exception.";
  } catch (const USER_NOT_AUTHORIZED&) {
    VQ_LOG(diag, 1) << "Failed with USER_NOT_AUTHORIZED exception.";
    result = kNotAuthorized;
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << vq::orb::NameAndMinorText(e);
  } catch (...) {
    VQ_LOG(diag, 1) << "Failed with unrecognized exception";
  }
  // Meant to be so: after a failed registration this is still the outcome of GetClientVersion, so 1
  // reaches the caller although neither the user ID nor the password was stored.
  return result;
}
