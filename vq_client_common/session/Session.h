// A session with the central server: the constructor logs in, the destructor logs out.
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
// A process has one session at a time. The functions of GlobalFuncs.h and the classes of this
// folder work on the same session.
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

// The options of a login. A program may leave out any of them.
struct SessionOptions {
  std::string server{};                    // the server's name in the naming service
  SERVER_ID kind = E_GSR;                  // the server's kind there
  CLIENT_ID client = CLIENT_CLI;           // which client program this is
  std::string user{};                      // empty: `credentials` returns it
  SecretString password{};                 // empty: `credentials` returns it
  CredentialSource credentials = nullptr;  // called when the password is empty
  // Called with the server's message when the password has expired. Returns the new password, or an
  // empty one to end the login.
  std::function<SecretString(const std::string& message)> newPassword = nullptr;
  // The server ends the session after this time without a keep-alive. With `postLogin` the site's
  // setting replaces it at the server (GL_GetCRBRegisterTimeOut).
  std::chrono::seconds timeOut{600};
  std::string namingService{};  // "corbaloc:iiop:HOST:PORT/NameService"; empty: from the settings
  // The command line, for its -ORB options; may be empty. Where the ORB is up already these, and
  // `namingService`, must be its own.
  std::vector<std::string> orbArguments{};
  std::chrono::milliseconds deadline{0};  // of the whole login; 0: each call has its own time-out
  bool postLogin = true;  // false: no GL_PostLogin, for clients that need no authorizations
  // Above 0: a thread of this object sends a keep-alive in this interval.
  std::chrono::milliseconds keepAlive{0};
  bool renew = false;  // whether that thread registers a lost session again, also after a restart
  // Called on that thread, once for each loss that is not repaired at once. Must not throw.
  std::function<void()> onLost = nullptr;
};

// Thread safety (docs/threads.md): every member may be called from any thread. Only one of those
// that call the server runs at a time; Authorizations, Message and IsLost never wait. The GL_
// functions are not part of this. Members of a moved-from object raise std::logic_error.
class VQ_CLIENT_COMMON_API Session {
 public:
  // Logs in. Raises LoginError on failure, after it has undone the steps that succeeded.
  explicit Session(SessionOptions options);
  // The same without exceptions: empty on failure, with the reason in `error`.
  static std::optional<Session> Open(SessionOptions options, LoginError& error);

  // Logs out, and ends the ORB if this object started it. Takes at most one call time-out for the
  // logout, and what a member that another thread has called, or the session's own thread, still
  // needs for its calls. Never throws. std::exit ends a session in the same way.
  ~Session() = default;
  Session(Session&&) noexcept = default;
  Session& operator=(Session&&) noexcept = default;

  LoginResult Result() const;   // of the login: kSuccess or kPasswordAboutToExpire
  std::string Message() const;  // the server's last text for the user; mostly empty

  // A system parameter of the server; empty when it does not exist or the server cannot be asked.
  std::optional<std::string> Parameter(const std::string& name,
                                       const std::string& section = "general") const;

  // What the user may do, as loaded at the login (authorizations/UserAuthorizations.h). A question
  // makes no remote call; the object may outlive the session. Null without `postLogin`.
  std::shared_ptr<const UserAuthorizations> Authorizations() const;

  // Returns kSuccess; kFailed when the server does not know the session; kNoServer without answer.
  LoginResult KeepAlive();
  // The server does not know the session, or has answered no keep-alive for the time-out.
  bool IsLost() const;
  // Registers again with the same user and password, and returns the result of that login. Ends the
  // session before, if the server has answered the last keep-alive and the renewals since. The
  // renewal that follows kNoServer looks the server up again: it may have moved.
  LoginResult Renew();

  // Checks the new password against the site's rules and changes the password. Returns kSuccess;
  // kPasswordRefusedByPolicy, with the reason in Message; or what SetUserPassword returns.
  LoginResult ChangePassword(const SecretString& newPassword);

  // The days until the client's TLS certificate expires, when they are fewer than the server
  // parameter "general"/"WarningSSLExpirationDays"; empty otherwise and without a certificate.
  std::optional<std::chrono::days> CertificateWarning() const;

  // A reference to a server object, owned by the caller; nil when it cannot be found. Exists for
  // the two types of GetCRBServant (CorbaGlobalFuncs.h).
  template <class T>
  typename T::_var_type Servant(const char* name) const;

 private:
  struct State;
  State& Get() const;
  std::shared_ptr<State> m_state;  // its deleter ends the session
};

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_SESSION_H
