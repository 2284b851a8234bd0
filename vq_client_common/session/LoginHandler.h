// The process's session with the central server.
//
// Terms. A *registration* is the server's record of a logged-in client; its *user ID* is a token
// that every later call contains. The *version gate* is the step in which client and server each
// check the other's version. LoginResult.h has the codes.
//
// Clients normally use vq::Session (Session.h) or the GL_ functions (GlobalFuncs.h), which turn the
// exceptions of this class into codes and texts:
//
//   std::string message;
//   int code = GL_Login("alice", password, "central", 600, message, CLIENT_CLI, E_GSR, argc, argv);
//   if (code == 1 || code == 50) code = GL_PostLogin(message);
//   /* ... */
//   GL_LogOut(true);
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINHANDLER_H
#define VQ_CLIENT_COMMON_SESSION_LOGINHANDLER_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/ServerId.h>

class ConnectionSettings;
class TDiagFunc;
class UserAuthorizations;

// Registers a user at the server, keeps the session alive and ends it.
//
// Thread safety: no lock. Only one operation may run at a time, and the first GetGlobal must not
// run on two threads at once. A client that calls ClientKeepAlive from a timer must not do so
// during a login, a logout or a change of password.
class VQ_CLIENT_COMMON_API LoginHandler {
 public:
  // The one instance, created by the first call and deleted by exit_vqclient_common; never null.
  static LoginHandler* GetGlobal();

  // An object without a session. Programs use GetGlobal.
  LoginHandler();
  // Each copies the settings and the authorizations.
  LoginHandler(const LoginHandler& other);
  LoginHandler& operator=(const LoginHandler& other);
  virtual ~LoginHandler();

  // Stores the data of a login, and reads the server parameter "general"/"PasswordEncode", a remote
  // call. Raises UserAuthEx when user, password or server is empty; the data are stored even then.
  void SetConnectionData(const std::string& user, const std::string& password,
                         const std::string& server, CLIENT_ID clientId, SERVER_ID serverId);

  // Registers with the stored data. `timeOut`: seconds without a keep-alive after which the server
  // ends the session. Returns 1, 50, 0 or a code of the server's own; `message` is the server's
  // text for the user. On 0 `message` is unchanged, or says why the version gate refused. Raises
  // NoServerEx, ServerTypeEx, UserAuthEx, UserLockedEx, UserPwdExpEx.
  int Login(std::string& message, unsigned int timeOut);

  // Completes a login: loads the authorizations, sends the session's time-out, sets the locale, and
  // reads the parameter that GetWait4Shutdown returns. Returns 1. Raises UserAuthEx when the
  // authorizations cannot be loaded, ServerTypeEx when the server fails at the time-out.
  int PostLogin();

  // Sends the session's time-out in seconds to the server; 0 and below sends nothing. Returns 1; or
  // on failure the server's result, or that of GetCRBServant. Raises ServerTypeEx.
  int RegisterTimeOut(long timeOut);

  // Sends a keep-alive. Returns the server's result: 1 while the server knows the session. Raises
  // NoServerEx, ServerTypeEx.
  int ClientKeepAlive();

  // Registers again with the stored data, then sends the session's time-out again. Returns and
  // raises as Login, and raises ServerTypeEx when the server fails at the time-out, although the
  // registration is then valid.
  int ReLogin(std::string& message, unsigned int timeOut);

  // Ends the registration and empties the user ID; does nothing without a session. Raises
  // CORBA::Exception when the server fails; the user ID is unchanged then.
  void Logout();

  // Sets `message` to a warning when the client's certificate expires within the number of days of
  // the server parameter "general"/"WarningSSLExpirationDays" (60 when it cannot be read), and to
  // the empty string otherwise, without a certificate too. Returns 1.
  int CheckSSLCertificateExpiration(std::string& message);

  // Owned by this object, valid as long as it, never null.
  ConnectionSettings* GetConnectionSettings() const { return m_connectionSettings; }
  UserAuthorizations* GetUserAuthorizations() const { return m_userAuthorizations; }
  std::string GetUserID() const;  // empty without a session
  // The kind of server that the last SetConnectionData or SetServedID stored; E_GSR before.
  SERVER_ID GetServerID() const { return m_serverId; }
  void SetServedID(SERVER_ID serverId) { m_serverId = serverId; }
  bool IsConnected() const;      // whether the user ID is not empty
  bool IsAdministrator() const;  // by the authorizations of the last PostLogin

  // Splits a version "X.Y.Z" at its second point into "X.Y" and "Z". Without a second point both
  // outputs become the whole text. Returns 1; 0, with the outputs unchanged, without a point.
  static int ParseVersion(const std::string& version, std::string& major, std::string& minor);
  // The same two parts as numbers; a part that does not begin with a number is 0.
  static int ParseVersion(const std::string& version, double& major, double& minor);

  // The version of the installed client product, alone and with its patches
  // ("8.0.00::PATCH1,PATCH2"), from the section "NFT" of installed-products.ini. Returns 1; 0, with
  // both outputs "0", when the product is not found; 20, with the outputs unchanged, for
  // CLIENT_QIMC and CLIENT_UNKNOWN, whose versions are not checked.
  int GetClientVersion(std::string& plain, std::string& withPatches) const;

  static LoginHandler* g_obLoginHandler;  // null until the first GetGlobal

 protected:
  // The registration of Login and ReLogin; returns and raises as Login.
  int Register(unsigned int timeOut, std::string& message);

  // The lowest version that min-accepted-servers.txt accepts for a server kind. Returns 1 when the
  // file was read to its end (`version` is unchanged without a line for that kind), 19 when it does
  // not open, 0 on a read error.
  int GetMinimumServerVersionAllowed(SERVER_ID serverId, std::string& version) const;

  // Whether the client accepts a server of that version: its major version equals that of the
  // minimum, and its minor version is at least that of the minimum. The minimum is the version from
  // the file, or the client's own version. True when a version cannot be compared.
  bool IsServerVersionPermitted(std::string& clientVersion, SERVER_ID serverId,
                                std::string& serverVersion) const;

 private:
  int Converse(const TDiagFunc& diag, unsigned int timeOut, std::string& message);

  std::string m_reserved;  // always empty
  SERVER_ID m_serverId = E_GSR;
  UserAuthorizations* m_userAuthorizations;  // owned
  ConnectionSettings* m_connectionSettings;  // owned
};

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINHANDLER_H
