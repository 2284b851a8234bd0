#include <vq_client_common/session/SystemParameterHandler.h>

#include <optional>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Environment.h>
#include <support/foundations/IniFile.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_idl/SystemConfigurationC.h>

namespace {

TDiagRegister diagModule("SystemParameterHandler");

constexpr const char* kService = "SystemConfiguration";
constexpr SEC_AUTHOR_LVL kLeastRestrictive = 1;
constexpr SEC_AUTHOR_LVL kMostRestrictive = 3;
constexpr long kDefaultTimeOut = 600;

// Intentional: here any value but "0" is true, in PermitManualUnlock only "1"; sites use both.
bool IsMandatory(const char* scope, const std::string& name) {
  const TDiagFunc diag(diagModule, scope);
  std::string value;
  const bool mandatory = GetSystemParameter(name, value, "general", E_GSR) && value != "0";
  VQ_LOG(diag, 5) << name << "=" << mandatory;
  return mandatory;
}

}  // namespace

bool GetSystemParameter(const std::string& name, std::string& value, const std::string& section,
                        SERVER_ID serverId) {
  const TDiagFunc diag(diagModule, "GetSystemParameter");
  VQCorbaSystemConfiguration_ptr configuration = VQCorbaSystemConfiguration::_nil();
  if (GetCRBServant<VQCorbaSystemConfiguration>(kService, configuration, serverId, true) != 1) {
    VQ_LOG(diag, 1) << "Couldn't get " << kService << " servant";
    return false;
  }
  VQ_LOG(diag, 5) << "Querying for system parameter: " << name;
  try {
    CORBA::String_var text;
    configuration->CRB_GetSystemParameterValue(section.c_str(), name.c_str(), text.out(),
                                               ConnectionSettings::Get()->GetUserID().c_str());
    value = text.in();
    VQ_LOG(diag, 5) << "System parameter: " << name << " = " << value;
    return true;
  } catch (const USER_NOT_FOUND&) {
    VQ_LOG(diag, 1) << "Corba Exception - USER_NOT_FOUND";
  } catch (const VQCorbaSystemConfiguration::PARAMETER_NOT_FOUND&) {
    VQ_LOG(diag, 4) << "CRB_GetSystemParameter exception - PARAMETER_NOT_FOUND - " << name;
  } catch (const VQCorbaSystemConfiguration::FAIL& e) {
    VQ_LOG(diag, 2) << "CRB_GetSystemParameter exception - FAIL reason: " << e.failReason;
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteFailedCall(e, configuration);
    VQ_LOG(diag, 2) << "CORBA::Exception - " << e;
  } catch (...) {
    VQ_LOG(diag, 1) << "CRB_GetSystemParameter - Failed with unrecognized exception";
  }
  return false;
}

int GetSecurityLevel(SEC_AUTHOR_LVL& level, std::string& message) {
  const TDiagFunc diag(diagModule, "UtilsCorbaServices::GetSecurityLevel");
  std::string value;
  if (!GetSystemParameter("AuthorSecurity", value, "gsr", E_GSR)) {
    message = "failed to receive system parameter";
    VQ_LOG(diag, 1) << "Failed to recieve system parameter MOST_RESTRICTIVE is assumed";
    level = kMostRestrictive;
    return 0;
  }
  level = vq::Atoi(value);
  if (level < kLeastRestrictive || level > kMostRestrictive) {
    VQ_LOG(diag, 2) << "Can't determine Author security level MOST_RESTRICTIVE is assumed";
    level = kMostRestrictive;
  }
  VQ_LOG(diag, 5) << "AuthorSecurity Level=" << level;
  return 1;
}

bool GetPermitManualUnLock() {
  const TDiagFunc diag(diagModule, "GetPermitManualUnLock");
  std::string value;
  const bool permitted =
      GetSystemParameter("PermitManualUnlock", value, "general", E_GSR) && value == "1";
  VQ_LOG(diag, 5) << "PermitManualUnlock=" << permitted;
  return permitted;
}

bool GetApplicationFieldIsMandatoryParameter() {
  return IsMandatory("GetApplicationFieldIsMandatoryParameter", "ApplicationFieldIsMandatory");
}

bool GetSubApplicationFieldIsMandatoryParameter() {
  return IsMandatory("GetSubApplicationFieldIsMandatoryParameter",
                     "SubApplicationFieldIsMandatory");
}

bool isAnnotationRequired(const std::string& operation) {
  const TDiagFunc diag(diagModule, "isAnnotationRequired");
  if (const std::optional<std::string> set = vq::GetEnv("AuditAnnotationRequired")) {
    return *set == "1";
  }
  VQCorbaSystemConfiguration_ptr configuration = VQCorbaSystemConfiguration::_nil();
  if (GetCRBServant<VQCorbaSystemConfiguration>(kService, configuration, E_GSR, true) != 1) {
    VQ_LOG(diag, 1) << "Couldn't get " << kService << " servant";
    return false;
  }
  try {
    const bool required = configuration->CRB_isAnnotationRequired(
        ConnectionSettings::Get()->GetUserID().c_str(), operation.c_str());
    VQ_LOG(diag, 5) << "isAnnotationRequired: " << required;
    return required;
  } catch (const USER_NOT_FOUND&) {
    VQ_LOG(diag, 1) << "Corba Exception - USER_NOT_FOUND";
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << vq::orb::NameAndMinorText(e);
  } catch (const CORBA::Exception& e) {
    VQ_LOG(diag, 2) << "CORBA::Exception - " << e;
  } catch (...) {
    VQ_LOG(diag, 1) << "CRB_isAnnotationRequired - Failed with unrecognized exception";
  }
  return false;
}

std::optional<int> vq::session::ProfileTimeOut() {
  int value = 0;
  if (!GetProfileIntFromCurrentUserOrLocalMachine("", "Orb Parameters", "RegisterTimeOut", value,
                                                  true)) {
    return std::nullopt;
  }
  return value;
}

long vq::session::ConfiguredTimeOut() {
  const TDiagFunc diag(diagModule, "GL_GetCRBRegisterTimeOut");
  if (const std::optional<int> profile = ProfileTimeOut()) return *profile;
  // Intentional: the two keys differ in one letter; both are in use.
  std::string text;
  if (GetSystemParameter("RegisterTimeout", text, "gui", E_GSR) && vq::Atoi(text) > 0) {
    return vq::Atoi(text);
  }
  return kDefaultTimeOut;
}
