// What the process knows about its connection: server, user, password, who the client is, and the
// user ID that the server gave it.
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

// How GetPassword gives the password out.
enum eEncodingType : int {
  ENC_PLAIN = 0,          // as given
  ENC_ENCODED = 1,        // EncodePassword of it
  ENC_AS_CONFIGURED = 2,  // encoded if the server wants it so
};

// Thread contract: no lock. Reads and writes belong to one thread at a time; a client that keeps
// its session alive from a second thread keeps that apart from a login.
class VQ_CLIENT_COMMON_API ConnectionSettings {
 public:
  // The settings of the process's session, owned by LoginHandler; never null.
  static ConnectionSettings* Get();

  ConnectionSettings() = default;
  ConnectionSettings(const ConnectionSettings&) = default;
  ConnectionSettings& operator=(const ConnectionSettings&) = default;
  ~ConnectionSettings();

  // ---- What GL_Login stored and the server answered; empty before that and, for the user ID,
  // after a logout.
  std::string GetServerName() const { return m_serverName; }
  std::string getUserName() const { return m_userName; }
  std::string GetDBUserName() const { return m_dbUserName; }
  std::string GetUserID() const { return m_userId; }
  // CLIENT_UNKNOWN before a login.
  CLIENT_ID GetClientID() const { return m_clientId; }

  // Whether ending the ORB waits for its threads; the server parameter "gui"/"OrbShutdownWait"
  // decides after a login, true until then.
  bool GetWait4Shutdown() const { return m_wait4OrbShutDown; }

  // Whether there is a session: the user ID is not empty.
  bool IsConnected() const { return !m_userId.empty(); }

  // One setting decides both: the server parameter "general"/"PasswordEncode".
  bool IsEncodePassword() const { return m_encodePassword; }
  bool IsChallengeResponse() const { return m_encodePassword; }

  // Whether the client's ORB is started as a pure client's.
  bool isPureClient() const;

  // Each logs its change at level 4; the user ID is logged as a digest, the password not at all.
  void SetServerName(const std::string& serverName);
  void SetUserName(const std::string& userName);
  void SetDBUserName(const std::string& dbUserName);
  void SetUserID(const std::string& userId);
  void SetPassword(const std::string& password);

  // Store a value; nothing is logged and nothing told to the server.
  void SetClientID(CLIENT_ID clientId) { m_clientId = clientId; }
  void SetIsConnected(bool connected) { m_connected = connected; }
  void SetWait4Shutdown(bool wait) { m_wait4OrbShutDown = wait; }

  // The password in the asked form, computed anew; a value that is no eEncodingType acts like
  // ENC_PLAIN. The caller wipes what it no longer needs.
  std::string GetPassword(eEncodingType encoding) const;

  // The first 8 characters of the password's checksum, which is what a server stores.
  static std::string EncodePassword(const std::string& password);

  // Reads "general"/"PasswordEncode" from the server: everything but "0" switches encoding and
  // challenge/response on. A failed read changes nothing.
  void LoadEncodePassword(SERVER_ID serverId);

  // The name that the server sees in a registration, and the short name the ORB bears.
  std::string GetClientID4CRBRegister() const;
  std::string GetClientIDAsString() const { return ResolveClientID(m_clientId); }

 protected:
  // The short name that the ORB of such a client bears, "GUI" say.
  static std::string ResolveClientID(CLIENT_ID clientId);

 private:
  std::string m_serverName;
  std::string m_userName;
  std::string m_dbUserName;
  std::string m_password;
  std::string m_encodedPassword;
  CLIENT_ID m_clientId = CLIENT_UNKNOWN;
  std::string m_userId;
  bool m_connected = false;  // written and copied; IsConnected looks at the user ID
  bool m_encodePassword = true;
  bool m_wait4OrbShutDown = true;
};

#endif  // VQ_CLIENT_COMMON_SESSION_CONNECTIONSETTINGS_H
