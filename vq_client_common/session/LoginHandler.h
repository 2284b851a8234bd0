// The process's session with the central server.
//
// Terms. A *registration* is what the server keeps of a logged-in client; its *user ID* is the
// token that every later call carries. The *version gate* is the step in which client and server
// judge each other's version. The codes are those of LoginResult.h.
//
// Clients normally use the GL_ functions (GlobalFuncs.h), which turn this class's exceptions into
// codes and texts:
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

// Thread contract: no lock. One session operation at a time; the first use, which makes the
// instance, belongs to one thread. A client that calls ClientKeepAlive from a timer keeps that
// apart from login, logout and password change.
class VQ_CLIENT_COMMON_API LoginHandler {
 public:
  // The one instance, made on first use; deleted by exit_vqclient_common.
  static LoginHandler* GetGlobal();

  // Not logged in, with settings and authorizations of its own. Programs take GetGlobal.
  LoginHandler();
  // Copy settings and authorizations, so that each object owns its own.
  LoginHandler(const LoginHandler& other);
  LoginHandler& operator=(const LoginHandler& other);
  virtual ~LoginHandler();

  // Stores the data of a login, and asks the server whether passwords are encoded (the parameter
  // "general"/"PasswordEncode", a remote call). Raises UserAuthEx when user, password or server is
  // empty; the data are stored all the same.
  void SetConnectionData(const std::string& user, const std::string& password,
                         const std::string& server, CLIENT_ID clientId, SERVER_ID serverId);

  // Registers with the stored data. `timeOut`: seconds after which the server drops a session that
  // is not kept alive. Returns 1, 50, 0 or a code of the server's own; `message` is the server's.
  // Raises NoServerEx, ServerTypeEx, UserAuthEx, UserLockedEx, UserPwdExpEx.
  int Login(std::string& message, unsigned int timeOut);

  // Finishes a login: authorizations, session time-out, language, and how the ORB is to be ended.
  // Returns 1. Raises UserAuthEx when the authorizations cannot be loaded, ServerTypeEx when the
  // server fails while the time-out is set.
  int PostLogin();

  // Tells the server the session's time-out in seconds; 0 and below tells nothing. Returns 1, or
  // what failed: the server's result, or that of GetCRBServant. Raises ServerTypeEx.
  int RegisterTimeOut(long timeOut);

  // Tells the server that the client is alive. Returns the server's result: 1 while it knows the
  // session. Raises NoServerEx, ServerTypeEx.
  int ClientKeepAlive();

  // Registers again with the stored data and tells the server the time-out anew. Returns and raises
  // as Login.
  int ReLogin(std::string& message, unsigned int timeOut);

  // Ends the registration and empties the user ID; nothing happens while not connected. Raises
  // CORBA::Exception when the server fails, and the user ID then stays.
  void Logout();

  // Sets `message` to a warning when the certificate in use expires within the number of days that
  // the server's parameter "general"/"WarningSSLExpirationDays" holds (60 if it cannot be read),
  // and to the empty text otherwise. Returns 1.
  int CheckSSLCertificateExpiration(std::string& message);

  // Owned by this object and valid as long as it; never null.
  ConnectionSettings* GetConnectionSettings() const { return m_connectionSettings; }
  UserAuthorizations* GetUserAuthorizations() const { return m_userAuthorizations; }
  std::string GetUserID() const;  // empty while not connected
  // The kind of server of the last SetConnectionData or SetServedID.
  SERVER_ID GetServerID() const { return m_serverId; }
  void SetServedID(SERVER_ID serverId) { m_serverId = serverId; }
  bool IsConnected() const;      // the user ID is not empty
  bool IsAdministrator() const;  // as the authorizations of the last PostLogin say

  // Splits a version "X.Y.Z" at its second point into "X.Y" and "Z". Without a second point both
  // outputs receive the whole text. Returns 1; 0, with the outputs untouched, when there is no
  // point.
  static int ParseVersion(const std::string& version, std::string& major, std::string& minor);
  // The same two parts as numbers, read as far as they are numbers.
  static int ParseVersion(const std::string& version, double& major, double& minor);

  // The version of the installed client product, alone and followed by its patches
  // ("8.0.00::PATCH1,PATCH2"), from installed-products.ini under the product "NFT". Returns 1 when
  // the product is found; 20, with the outputs untouched, for clients that take no part in version
  // checks.
  int GetClientVersion(std::string& plain, std::string& withPatches) const;

  static LoginHandler* g_obLoginHandler;  // null until the first GetGlobal

 protected:
  // What Login and ReLogin do; returns and raises as Login.
  int Register(unsigned int timeOut, std::string& message);

  // The lowest version that min-accepted-servers.txt accepts of a server kind. Returns 1 when the
  // file was read through (`version` is assigned by a matching line only), 19 when it does not
  // open, 0 on a read error.
  int GetMinimumServerVersionAllowed(SERVER_ID serverId, std::string& version) const;

  // Whether the client accepts a server of that version: the same major version as the minimum, and
  // at least its minor one. The minimum is the client's own version unless the file names another.
  bool IsServerVersionPermitted(std::string& clientVersion, SERVER_ID serverId,
                                std::string& serverVersion) const;

 private:
  int Converse(const TDiagFunc& diag, unsigned int timeOut, std::string& message);

  std::string m_reserved;  // stays empty
  SERVER_ID m_serverId = E_GSR;
  UserAuthorizations* m_userAuthorizations;  // owned
  ConnectionSettings* m_connectionSettings;  // owned
};

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINHANDLER_H
