// A session with the central server: logged in when it is made, logged out when it goes.
//
//   try {
//     vq::Session session({.server = "central",
//                          .user = "alice",
//                          .credentials = vq::AskForPassword(),
//                          .orbArguments = {argv, argv + argc}});
//     std::cout << session.Parameter("Language").value_or("not set") << '\n';
//     if (session.Authorizations()->IsAlertsAccessAllowed(UPDATE_ACCESS)) Show("alerts");
//   } catch (const vq::LoginError& e) {
//     std::cerr << e.what() << '\n' << e.Cause() << '\n';
//   }
//
// It makes the calls of GL_Login, GL_PostLogin and GL_LogOut (GlobalFuncs.h), and those functions
// see the same session. A process has one session at a time.
#ifndef VQ_CLIENT_COMMON_SESSION_SESSION_H
#define VQ_CLIENT_COMMON_SESSION_SESSION_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <support/Export.h>
#include <support/security/SecretString.h>
#include <vq_client_common/environment/UserPass.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/ServerId.h>

class UserAuthorizations;

namespace vq {

// Each has an initializer, so that a program may leave out any of them without a warning.
struct SessionOptions {
  std::string server{};                    // its name in the naming service
  SERVER_ID kind = E_GSR;                  // its kind there
  CLIENT_ID client = CLIENT_CLI;           // which program this is
  std::string user{};                      // left to `credentials` if empty
  SecretString password{};                 // likewise
  CredentialSource credentials = nullptr;  // called when the password is empty
  // Called when the password has expired, with the server's message: returns the new one, or an
  // empty one to give up.
  std::function<SecretString(const std::string& message)> newPassword = nullptr;
  // Of a session without keep-alives. The site's settings come first (GL_GetCRBRegisterTimeOut).
  std::chrono::seconds timeOut{600};
  std::string namingService{};              // "corbaloc:iiop:HOST:PORT/NameService"; empty: as set
  std::vector<std::string> orbArguments{};  // the command line, or nothing; read for -ORB options
  std::chrono::milliseconds deadline{0};    // for the whole login; 0: each call has its time-out

  // Above 0: a thread of the object's own keeps the session alive in this interval.
  std::chrono::milliseconds keepAlive{0};
  bool renew = false;  // that thread registers a lost session again
  // Called by that thread once for each loss that is not made good at once. Must not throw.
  std::function<void()> onLost = nullptr;
};

// Thread safety: every member may be called from any thread. Members that ask the server wait for
// each other; Authorizations, Message and IsLost wait for none. The GL_ functions do not take part
// in that. A moved-from object raises std::logic_error.
class VQ_CLIENT_COMMON_API Session {
 public:
  // Logs in, or raises LoginError. What was begun is then undone.
  explicit Session(SessionOptions options);
  // The same without exceptions: nothing, with the reason in `error`.
  static std::optional<Session> Open(SessionOptions options, LoginError& error);

  // Logs out, and ends the ORB if this object started it. Takes at most a time-out for the logout
  // and one for a call that another thread is making. Never throws. std::exit does the same.
  ~Session() = default;
  Session(Session&&) noexcept = default;
  Session& operator=(Session&&) noexcept = default;

  LoginResult Result() const;   // of the login: kSuccess or kPasswordAboutToExpire
  std::string Message() const;  // the last one from the server, for the user; mostly empty

  // A parameter of the server. Nothing when it has none of that name, or cannot be asked.
  std::optional<std::string> Parameter(const std::string& name,
                                       const std::string& section = "general") const;

  // What the user may do, as it was at the login (authorizations/UserAuthorizations.h). Questions
  // need no lock; the object may outlive the session.
  std::shared_ptr<const UserAuthorizations> Authorizations() const;

  // kSuccess, kFailed when the server does not know the session, or kNoServer without an answer.
  LoginResult KeepAlive();
  // The server does not know the session, or has answered no keep-alive for the session's time-out.
  bool IsLost() const;
  // Registers again with the same user and password, and returns the result of that login.
  LoginResult Renew();

  // Checks the site's policy and changes the password. kPasswordRefusedByPolicy: Message says why.
  LoginResult ChangePassword(const SecretString& newPassword);

  // The time left of the client's TLS certificate, once the site's parameter
  // WarningSSLExpirationDays asks for a warning; nothing before that and without a certificate.
  std::optional<std::chrono::days> CertificateWarning() const;

  // A server object, as GetCRBServant finds it (CorbaGlobalFuncs.h), as a reference of the caller's
  // own; nil when it cannot be found. For the two types of GetCRBServant.
  template <class T>
  typename T::_var_type Servant(const char* name) const;

 private:
  struct State;
  State& Get() const;

  std::shared_ptr<State> m_state;  // ends the session when it goes
};

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_SESSION_H
