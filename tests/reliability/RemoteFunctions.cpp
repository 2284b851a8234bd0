#include <tests/reliability/RemoteFunctions.h>

#include <functional>
#include <new>

#include <support/diagnostics/Osl_UnicodeConfiguration.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::test {
namespace {

// The short names of the results with a text for users, and the part by which a text is known. The
// whole texts are tested with the exceptions and the password policy (tests/session).
constexpr struct {
  const char* name;
  int result;
  const char* part;
} kTexts[] = {{"<went down>", 0, "Server 'central' went down during login process."},
              {"<not running>", 54, "Server 'central' is not running on '127.0.0.2'."},
              {"<not found>", 54, "Server 'central' is not running."},
              {"<refused>", 0, "User 'alice' is not defined properly."},
              {"<no authorizations>", 0, "Failed to load user authorizations"},
              {"<too short>", 51, "Password minimum length should be 6."},
              {"<too simple>", 51, "Digit characters."},
              {"<no upper case>", 51, "Letters in upper case."}};

std::string Text(int result, const std::string& message) {
  for (const auto& text : kTexts) {
    if (result == text.result && message.find(text.part) != message.npos) return text.name;
  }
  return std::to_string(result) + (message.empty() ? "" : ": " + message);
}

template <class Call>
std::string OutcomeOf(Call call) {
  try {
    return call();
  } catch (BaseLoginEx& e) {
    return Text(e.GetReturnCode(), e.GetReason());
  } catch (const CORBA::Exception&) {
    return "raised";
  }
}

std::string AndConnected(std::string outcome) {
  return outcome + (LoginHandler::GetGlobal()->IsConnected() ? ", connected" : ", not connected");
}

// Calls a function of the library with what it asks for: a text for the user, a time-out,
// a new password.
template <auto function, class... Self>
std::string Call(Self&... self) {
  return OutcomeOf([&] {
    std::string message;
    long result = 0;
    if constexpr (std::is_invocable_v<decltype(function), Self&...>) {
      result = static_cast<long>(std::invoke(function, self...));
    } else if constexpr (std::is_invocable_v<decltype(function), Self&..., int>) {
      result = std::invoke(function, self..., 60);
    } else if constexpr (std::is_invocable_v<decltype(function), Self&..., std::string&>) {
      result = std::invoke(function, self..., message);
    } else if constexpr (std::is_invocable_v<decltype(function), Self&..., std::string,
                                             std::string&>) {
      result = std::invoke(function, self..., "abcde", message);
    } else {
      result = std::invoke(function, self..., message, 600);
    }
    return Text(static_cast<int>(result), message);
  });
}

template <auto member>
std::string OfSession() {
  return Call<member>(*LoginHandler::GetGlobal());
}

std::string LogIn() {
  std::string message;
  const int result =
      GL_Login("alice", "secret", "central", 600, message, CLIENT_CLI, E_GSR, 0, nullptr);
  return AndConnected(Text(result, message));
}

std::string LogOutOfSession() {
  return AndConnected(OutcomeOf([] {
    LoginHandler::GetGlobal()->Logout();
    return "done";
  }));
}

std::string SetData() {
  LoginHandler::GetGlobal()->SetConnectionData("alice", "secret", "central", CLIENT_RCI, E_GSR);
  const ConnectionSettings& stored = *ConnectionSettings::Get();
  return stored.getUserName() + " of " + stored.GetClientIDAsString();
}

std::string LoadEncodePassword() {
  ConnectionSettings::Get()->LoadEncodePassword(E_GSR);
  return ConnectionSettings::Get()->IsEncodePassword() ? "on" : "off";
}

template <class T>
std::string Servant(const char* name) {
  typename T::_ptr_type servant = T::_nil();
  return std::to_string(GetCRBServant<T>(name, servant, E_GSR, true));
}

std::string ReadParameter() {
  std::string value = "old";
  const bool found = GetSystemParameter("Language", value, "general", E_GSR);
  return Text(found, value);
}

std::string ReadSecurityLevel() {
  SEC_AUTHOR_LVL level = -1;
  std::string message;
  const int result = GetSecurityLevel(level, message);
  return std::to_string(level) + ", " + Text(result, message);
}

template <bool expired>
std::string ChangePassword() {
  const int result = SetUserPassword("new-password", expired);
  const bool stored = ConnectionSettings::Get()->GetPassword(ENC_PLAIN) == "new-password";
  return AndConnected(std::to_string(result) + (stored ? ", stored" : ", kept"));
}

std::string SetUpCharacters() {
  i18n_aux::init_globa_c(true, E_GSR);
  return i18n_aux::IsCJK_mode() ? "cjk" : "latin1";
}

std::string LoadAuthorizations() {
  const std::string userId = ConnectionSettings::Get()->GetUserID();
  return std::to_string(UserAuthorizations::Get()->LoadAuthorizations(userId));
}

std::string AskForQueries() {
  QCSCorbaUserDefinitionQueries_var definition;
  QCSCorbaUserActiveQueriesSeq* active = nullptr;
  const int result = UserAuthorizations::Get()->GetUserAuthQueries(
      {"PROD"}, "", true, true, definition.out(), active, ConnectionSettings::Get()->GetUserID());
  const QCSCorbaUserActiveQueriesSeq_var owned = active;
  return std::to_string(result);
}

std::string TryCallback() {
  std::string error;
  long roundTrip = 0;
  const bool ok = TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, roundTrip, 5000);
  return ok ? "yes" : "no";
}

std::string TryAddress() {
  long roundTrip = 0;
  const bool ok =
      TroubleshootConnection::ORBInitAndTestCallback(false, "127.0.0.1", roundTrip, false);
  return ok ? "yes" : "no";
}

constexpr RemoteCall On(const char* operation, const char* failed, const char* refused = nullptr) {
  return {operation, failed, refused};
}
// A parameter has no result that could refuse: the server raises, as in any other failure.
constexpr RemoteCall Parameter(const char* failed) {
  return On(kParameter, failed, failed);
}
constexpr RemoteCall kAnyway = Parameter("1");  // its failure changes nothing

template <class... Calls>
constexpr RemoteFunction Row(const char* name, State state, std::string (*run)(),
                             const char* success, const char* down, const char* unbound,
                             const Calls&... calls) {
  return {name, state, run, success, down, unbound, {calls...}};
}

constexpr RemoteCalls kPostLogin{{On(kLoad, "<no authorizations>", "<no authorizations>"),
                                  On(kJobLevel, "<no authorizations>", "1"), kAnyway, kAnyway,
                                  kAnyway, On(kReset, "<went down>", "1"), kAnyway, kAnyway}};
constexpr RemoteCalls kTrial{
    {On(kProbe, "no"), On(kProbe, "no"), On("CRB_RegisterCallback", "no", "no"),
     On("CRB_TryCallback", "no", "no"), On("CRB_UnregisterCallbackById", "yes", "yes")}};

// A function that reads one parameter.
constexpr RemoteFunction Reads(const char* name, std::string (*run)(), const char* success,
                               const char* failed) {
  return Row(name, kLoggedIn, run, success, failed, failed, Parameter(failed));
}

constexpr RemoteFunction kFunctions[] = {
    Row(
        "GL_InitializeCORBA", kLoggedIn, [] { return Text(GL_InitializeCORBA(0, nullptr), ""); },
        "1", "1", "1"),
    Row("GL_Login", kLoggedOut, LogIn, "1, connected", "<not running>, not connected",
        "<not found>, not connected", On(kProbe, "1, connected"), Parameter("1, connected"),
        Parameter("1, connected"), On(kProbe, "<not running>, not connected"),
        On(kVersion, "<went down>, not connected", "1, connected"),
        On(kChallenge, "<went down>, not connected", "0, not connected"),
        On(kRegister, "<went down>, not connected", "<refused>, not connected")),
    Row("GL_PostLogin", kLoggedIn, Call<GL_PostLogin>, "1", "<no authorizations>",
        "<no authorizations>", kPostLogin),
    Row("GL_ClientKeepAlive", kLoggedIn, Call<GL_ClientKeepAlive>, "1", "<went down>",
        "<not found>", On(kAlive, "<went down>", "0")),
    Row("GL_ReLogin", kLoggedIn, Call<GL_ReLogin>, "1", "0", "0", On(kVersion, "0", "1"),
        On(kChallenge, "0", "0"), On(kRegister, "0", "0"), kAnyway, On(kReset, "0", "1")),
    Row(
        "GL_LogOut", kLoggedIn, [] { return AndConnected(Text(GL_LogOut(false), "")); },
        "1, not connected", "1, not connected", "1, not connected",
        On(kUnregister, "1, not connected", "1, not connected")),
    Reads("GL_GetCRBRegisterTimeOut", Call<GL_GetCRBRegisterTimeOut>, "300", "600"),
    Reads("GL_CheckSSLCertificateExpiration", Call<GL_CheckSSLCertificateExpiration>, "1", "1"),
    Row("LoginHandler_SetConnectionData", kLoggedOut, SetData, "alice of RCI", "alice of RCI",
        "alice of RCI", On(kProbe, "alice of RCI"), Parameter("alice of RCI")),
    Row("LoginHandler_Login", kLoggedIn, OfSession<&LoginHandler::Login>, "1", "<went down>",
        "<not found>", On(kVersion, "<went down>", "1"), On(kChallenge, "<went down>", "0"),
        On(kRegister, "<went down>", "<refused>")),
    Row("LoginHandler_PostLogin", kLoggedIn, OfSession<&LoginHandler::PostLogin>, "1",
        "<no authorizations>", "<no authorizations>", kPostLogin),
    Row("LoginHandler_RegisterTimeOut", kLoggedIn, OfSession<&LoginHandler::RegisterTimeOut>, "1",
        "<went down>", "-3", On(kReset, "<went down>", "0")),
    Row("LoginHandler_ClientKeepAlive", kLoggedIn, OfSession<&LoginHandler::ClientKeepAlive>, "1",
        "<went down>", "<not found>", On(kAlive, "<went down>", "0")),
    Row("LoginHandler_ReLogin", kLoggedIn, OfSession<&LoginHandler::ReLogin>, "1", "<went down>",
        "<not found>", On(kVersion, "<went down>", "1"), On(kChallenge, "<went down>", "0"),
        On(kRegister, "<went down>", "<refused>"), kAnyway, On(kReset, "<went down>", "1")),
    Row("LoginHandler_Logout", kLoggedIn, LogOutOfSession, "done, not connected",
        "raised, connected", "done, connected",
        On(kUnregister, "raised, connected", "done, not connected")),
    Reads("LoginHandler_CheckSSLCertificateExpiration",
          OfSession<&LoginHandler::CheckSSLCertificateExpiration>, "1", "1"),
    Reads("ConnectionSettings_LoadEncodePassword", LoadEncodePassword, "on", "on"),
    Row(
        "GetCRBServant_UsersManager", kLoggedOut,
        [] { return Servant<QCSCorbaUsersManager>("UsersManager"); }, "1", "-3", "-3",
        On(kProbe, "-3")),
    Row(
        "GetCRBServant_SystemConfiguration", kLoggedOut,
        [] { return Servant<VQCorbaSystemConfiguration>("SystemConfiguration"); }, "1", "-3", "-3",
        On(kProbe, "-3")),
    Row(
        "NoServerEx", kLoggedOut, [] { return Text(54, NoServerEx("").GetReason()); },
        "<not running>", "<not running>", "<not found>"),
    Reads("GetSystemParameter", ReadParameter, "1: english", "0: old"),
    Reads("GetSecurityLevel", ReadSecurityLevel, "2, 1",
          "3, 0: failed to receive system parameter"),
    Reads("GetPermitManualUnLock", Call<GetPermitManualUnLock>, "1", "0"),
    Reads("GetApplicationFieldIsMandatoryParameter", Call<GetApplicationFieldIsMandatoryParameter>,
          "1", "0"),
    Reads("GetSubApplicationFieldIsMandatoryParameter",
          Call<GetSubApplicationFieldIsMandatoryParameter>, "1", "0"),
    Row(
        "isAnnotationRequired", kLoggedIn,
        [] { return Text(isAnnotationRequired("job.delete"), ""); }, "1", "0", "0",
        On(kAnnotation, "0", "0")),
    Reads("GetMinPasswordLength", Call<GetMinPasswordLength>, "3", "6"),
    Reads("GetMaxPasswordLength", Call<GetMaxPasswordLength>, "40", "32"),
    Reads("IsPasswordComplexityON", Call<IsPasswordComplexityON>, "1", "0"),
    Reads("GetPasswordComplexityRules", Call<GetPasswordComplexityRules>, "2", "15"),
    Row("CheckPasswordValidity", kLoggedIn, Call<CheckPasswordValidity>, "<no upper case>",
        "<too short>", "<too short>", Parameter("<too short>"), Parameter("<no upper case>"),
        Parameter("1"), Parameter("<too simple>")),
    Row("SetUserPassword", kLoggedIn, ChangePassword<false>, "1, stored, connected",
        "0, kept, connected", "0, kept, connected",
        On(kUpdate, "0, kept, connected", "0, kept, connected")),
    // What is left of asking for the client's version looks like success; nothing is stored.
    Row("SetUserPassword_expired", kExpired, ChangePassword<true>, "1, stored, connected",
        "0, kept, not connected", "0, kept, not connected",
        On(kChallenge, "0, kept, not connected", "0, kept, not connected"),
        On(kUpdateToo, "1, kept, not connected", "0, kept, not connected")),
    Reads(
        "SetLocaleBySystemParam", [] { return SetLocaleBySystemParam(""); }, "english", ""),
    Reads("init_globa_c", SetUpCharacters, "cjk", "latin1"),
    Row("UserAuthorizations_LoadAuthorizations", kLoggedIn, LoadAuthorizations, "1", "23", "0",
        On(kLoad, "23", "23"), On(kJobLevel, "23", "1"), kAnyway, kAnyway),
    Row("UserAuthorizations_GetUserAuthQueries", kFinished, AskForQueries, "1", "0", "1",
        On(kQueries, "0", "0")),
    Row("TroubleshootConnection_TestCallback", kLoggedIn, TryCallback, "yes", "no", "no", kTrial),
    Row("TroubleshootConnection_ORBInitAndTestCallback", kLoggedIn, TryAddress, "yes", "no", "no",
        kTrial),
};

}  // namespace

std::span<const RemoteFunction> RemoteFunctions() {
  return kFunctions;
}

std::string OutcomeOf(const RemoteFunction& function) {
  try {
    return function.run();
  } catch (const std::bad_alloc&) {
    return "no memory";
  }
}

}  // namespace vq::test
