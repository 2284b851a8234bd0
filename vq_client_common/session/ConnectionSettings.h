// The data of the process's connection: server, user, password, client program, and the user ID of
// the session.
//
//   ConnectionSettings* settings = ConnectionSettings::Get();
//   if (settings->IsConnected()) std::cout << settings->getUserName() << '\n';
//
// GL_Login fills it; a registration adds the user ID and the database user name; GL_LogOut empties
// the user ID. "Connected" means that the user ID is not empty.
#ifndef VQ_CLIENT_COMMON_SESSION_CONNECTIONSETTINGS_H
#define VQ_CLIENT_COMMON_SESSION_CONNECTIONSETTINGS_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/ServerId.h>

// The form in which GetPassword returns the password.
enum eEncodingType : int {
  ENC_PLAIN = 0,          // as given
  ENC_ENCODED = 1,        // EncodePassword of it
  ENC_AS_CONFIGURED = 2,  // encoded if the server requires it
};

// The data of one connection. Programs use the instance that Get returns.
//
// Thread safety: no lock. A client that sends keep-alives from a second thread must not do so while
// another thread logs in, changes the password or logs out.
class VQ_CLIENT_COMMON_API ConnectionSettings {
 public:
  // The settings of the process's session, owned by LoginHandler; never null.
  static ConnectionSettings* Get();

  ConnectionSettings() = default;
  ConnectionSettings(const ConnectionSettings&) = default;
  ConnectionSettings& operator=(const ConnectionSettings&) = default;
  ~ConnectionSettings();

  // ---- What GL_Login stored and the server returned; empty before a login. The user ID is empty
  // after a logout, too.
  std::string GetServerName() const { return m_serverName; }
  std::string getUserName() const { return m_userName; }
  std::string GetDBUserName() const { return m_dbUserName; }
  std::string GetUserID() const { return m_userId; }
  // CLIENT_UNKNOWN before a login.
  CLIENT_ID GetClientID() const { return m_clientId; }

  // Whether the end of the ORB waits for its threads. True until GL_PostLogin sets it by the server
  // parameter "gui"/"OrbShutdownWait".
  bool GetWait4Shutdown() const { return m_wait4OrbShutDown; }

  // Whether there is a session: the user ID is not empty.
  bool IsConnected() const { return !m_userId.empty(); }

  // Whether passwords are sent encoded, and whether a login answers a challenge. Both follow the
  // server parameter "general"/"PasswordEncode".
  bool IsEncodePassword() const { return m_encodePassword; }
  bool IsChallengeResponse() const { return m_encodePassword; }

  // Whether the client's ORB is started as a pure client's.
  bool isPureClient() const;

  // Each stores a value. All but SetPassword log it at level 4; the user ID is logged as a digest.
  void SetServerName(const std::string& serverName);
  void SetUserName(const std::string& userName);
  void SetDBUserName(const std::string& dbUserName);
  void SetUserID(const std::string& userId);
  void SetPassword(const std::string& password);

  // Each stores a value; nothing is logged, and the server is not informed.
  void SetClientID(CLIENT_ID clientId) { m_clientId = clientId; }
  void SetIsConnected(bool connected) { m_connected = connected; }
  void SetWait4Shutdown(bool wait) { m_wait4OrbShutDown = wait; }

  // A copy of the password in the form that is asked for; a value that is no eEncodingType counts
  // as ENC_PLAIN. The caller overwrites the copy when it needs it no more (vq::SecretString does).
  std::string GetPassword(eEncodingType encoding) const;

  // The encoded form of a password: the first 8 characters of its checksum.
  static std::string EncodePassword(const std::string& password);

  // Reads "general"/"PasswordEncode" from the server, a remote call: "0" switches encoding and
  // challenge/response off, any other value on. A failed read changes nothing.
  void LoadEncodePassword(SERVER_ID serverId);

  // The client program's name in a registration, such as "vq_cli"; and that of its ORB, "CLI".
  std::string GetClientID4CRBRegister() const;
  std::string GetClientIDAsString() const { return ResolveClientID(m_clientId); }

 protected:
  // The name of the ORB of such a client, such as "GUI".
  static std::string ResolveClientID(CLIENT_ID clientId);

 private:
  std::string m_serverName;
  std::string m_userName;
  std::string m_dbUserName;
  std::string m_password;
  std::string m_encodedPassword;  // measured by SetPassword; GetPassword encodes again
  CLIENT_ID m_clientId = CLIENT_UNKNOWN;
  std::string m_userId;
  bool m_connected = false;  // not read: IsConnected tests the user ID
  bool m_encodePassword = true;
  bool m_wait4OrbShutDown = true;
};

#endif  // VQ_CLIENT_COMMON_SESSION_CONNECTIONSETTINGS_H
