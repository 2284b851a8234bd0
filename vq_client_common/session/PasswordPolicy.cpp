#include <vq_client_common/session/PasswordPolicy.h>

#include <ctype.h>
#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/os_toolkit/Atoi.h>
#include <support/security/SecretString.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Registrant.h>
#include <vq_client_common/session/internal/UsersManager.h>

namespace {

TDiagRegister diagModule("PasswordPolicy");

constexpr int kFailed = vq::CodeOf(vq::LoginResult::kFailed);
constexpr int kPassed = vq::CodeOf(vq::LoginResult::kSuccess);
constexpr int kRefusedByPolicy = vq::CodeOf(vq::LoginResult::kPasswordRefusedByPolicy);

// Intentional: no password satisfies the rules for digits and special characters; sites use them to
// refuse every password.
int Never(int) {
  return 0;
}

struct Rule {
  PasswordRule bit;
  std::string_view parameterText;
  std::string_view messageLine;
  int (*isOfKind)(int character);  // one character of the password must be
};

constexpr std::array kRules{
    Rule{PWD_RULE_DIGIT, "PWD_DIGIT", "Digit characters.\n", Never},
    Rule{PWD_RULE_UPPER, "PWD_UPPER", "Letters in upper case.\n", ::isupper},
    Rule{PWD_RULE_LOWER, "PWD_LOW", "Letters in lower case.\n", ::islower},
    Rule{PWD_RULE_SPECIAL, "PWD_NON_LETDIG", "Special characters.", Never},
};
constexpr int kAllRules = PWD_RULE_DIGIT | PWD_RULE_UPPER | PWD_RULE_LOWER | PWD_RULE_SPECIAL;

bool ReadParameter(const TDiagFunc& diag, const std::string& name, std::string& value) {
  if (GetSystemParameter(name, value, "general", E_GSR)) return true;
  VQ_LOG(diag, 1) << "Can't read parameter <" << name << "> from system parameters table";
  return false;
}

int ReadLength(const TDiagFunc& diag, const std::string& name, int assumed) {
  std::string value;
  return ReadParameter(diag, name, value) ? vq::Atoi(value) : assumed;
}

std::string WithNumber(std::string text, int number) {
  vq::ReplaceFirst(text, "%d", std::to_string(number));
  return text;
}

thread_local bool passwordChanged = false;  // by the last SetUserPassword

// Registers with the old password and stores the new one, in one remote call. Before the call,
// `result` is that of GetClientVersion, normally 1; it stays if the call raises.
void RegisterAndUpdate(QCSCorbaUsersManager_ptr users, const vq::SecretString& newPassword,
                       int& result, const TDiagFunc& diag) {
  ConnectionSettings* const settings = ConnectionSettings::Get();
  vq::session::Registrant registrant;
  if (!registrant.FindNames(diag, 256)) return;
  if (!registrant.FindPassword(*settings, users, diag)) return;

  std::string version = "0";
  std::string versionWithPatches = "0";
  result = LoginHandler::GetGlobal()->GetClientVersion(version, versionWithPatches);

  QCSCorbaLMInfoSeq_var loginMessages;
  CORBA::String_var text;
  CORBA::String_var userId;
  CORBA::String_var dbUser;
  constexpr CORBA::ULong kSessionTimeOut = 600;  // seconds
  result = users->CRB_RegisterAndUpdatePassword(
      settings->getUserName().c_str(), registrant.password.Text().c_str(),
      newPassword.Text().c_str(), registrant.host.c_str(), registrant.account.c_str(),
      settings->GetClientID4CRBRegister().c_str(), versionWithPatches.c_str(), loginMessages.out(),
      kSessionTimeOut, text.out(), userId.out(), dbUser.out());
  if (result == 1) settings->SetUserID(userId.in());
}

}  // namespace

int GetMinPasswordLength() {
  const TDiagFunc diag(diagModule, "GetMinPasswordLength");
  return ReadLength(diag, "MinPasswordLength", 6);
}

int GetMaxPasswordLength() {
  const TDiagFunc diag(diagModule, "GetMaxPasswordLength");
  return ReadLength(diag, "MaxPasswordLength", 32);
}

bool IsPasswordComplexityON() {
  const TDiagFunc diag(diagModule, "IsPasswordComplexityON");
  std::string value;
  if (!ReadParameter(diag, "PasswordComplexityOnOff", value)) return false;
  return value == "1" || value == "Y" || value == "y";
}

int GetPasswordComplexityRules() {
  const TDiagFunc diag(diagModule, "GetPasswordComplexityRules");
  std::string value;
  if (!ReadParameter(diag, "PasswordComplexityRules", value)) return kAllRules;
  int rules = 0;
  for (const Rule& rule : kRules) {
    // Intentional: any character of the name switches the rule on, not only the whole name.
    if (value.find_first_of(rule.parameterText) != std::string::npos) rules |= rule.bit;
  }
  VQ_LOG(diag, 5) << "Complexity rule is set to " << rules;
  return rules;
}

int CheckPasswordValidity(const std::string& password, std::string& message) {
  const TDiagFunc diag(diagModule, "CheckPasswordValidity");
  message.clear();
  const auto length = static_cast<std::ptrdiff_t>(password.size());
  if (const int minimum = GetMinPasswordLength(); length < minimum) {
    message =
        WithNumber("New password is too short.\nPassword minimum length should be %d.", minimum);
    return kRefusedByPolicy;
  }
  if (const int maximum = GetMaxPasswordLength(); length > maximum) {
    message =
        WithNumber("New password is too long.\nPassword maximum length should be %d.", maximum);
    return kRefusedByPolicy;
  }
  if (!IsPasswordComplexityON()) return kPassed;
  const int rules = GetPasswordComplexityRules();
  if (rules < 1) return kPassed;

  const bool violated = std::ranges::any_of(kRules, [&](const Rule& rule) {
    const auto isOfKind = [&](unsigned char character) { return rule.isOfKind(character) != 0; };
    return (rules & rule.bit) != 0 && std::ranges::none_of(password, isOfKind);
  });
  if (!violated) return kPassed;
  message =
      "To select a password that complies with the Password Policy you\n"
      "must choose a word that contains the following types of characters:\n";
  for (const Rule& rule : kRules) {
    if ((rules & rule.bit) != 0) message += rule.messageLine;
  }
  return kRefusedByPolicy;
}

int SetUserPassword(const std::string& newPassword, bool expired) {
  const TDiagFunc diag(diagModule, "SetUserPassword");
  passwordChanged = false;
  ConnectionSettings* const settings = ConnectionSettings::Get();
  const vq::SecretString wirePassword(
      settings->IsEncodePassword() ? ConnectionSettings::EncodePassword(newPassword) : newPassword);
  int result = kFailed;
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  try {
    const SERVER_ID serverId = LoginHandler::GetGlobal()->GetServerID();
    if (vq::session::GetUsersManager(users, serverId) != 1) return kFailed;
    if (expired) {
      RegisterAndUpdate(users, wirePassword, result, diag);
    } else {
      result =
          users->CRB_UpdateUserPassword(settings->getUserName().c_str(),
                                        wirePassword.Text().c_str(), settings->GetUserID().c_str());
    }
    if (result == kPassed) {
      passwordChanged = true;
      settings->SetPassword(newPassword);
    }
    return result;
  } catch (const USER_NOT_FOUND&) {
    VQ_LOG(diag, 1) << "Failed with USER_NOT_FOUND exception.";
  } catch (const USER_NOT_AUTHORIZED&) {
    VQ_LOG(diag, 1) << "Failed with USER_NOT_AUTHORIZED exception.";
    result = vq::CodeOf(vq::LoginResult::kNotAuthorized);
  } catch (const CORBA::SystemException& e) {
    vq::orb::NoteFailedCall(e, users);
    VQ_LOG(diag, 1) << vq::orb::NameAndMinorText(e);
  } catch (...) {
    VQ_LOG(diag, 1) << "Failed with unrecognized exception";
  }
  // Intentional: after a failed registration this is the result of GetClientVersion, so the caller
  // may get 1 although neither user ID nor password was stored.
  return result;
}

bool WasPasswordChanged() {
  return passwordChanged;
}
