// Works out the user name and the password of a command-line client.
//
// The client gives what it was given: a name, a password, or the path of a password file. UserPass
// decides which of these may be combined, fills in what is missing from the file or the console,
// and tells in words what went wrong. It logs nobody in.
//
//   const CmdParser* const parser = CmdParser::Get();
//   UserPass credentials(parser->param("USER", "U"), "", "");
//   while (!credentials.Init()) {                      // asks for the password on the console
//     std::cerr << credentials.GetStatStr() << '\n';
//     if (!credentials.isCorrectable()) return 1;
//     /* ... */
//   }
//   std::string message;
//   GL_Login(credentials.GetUsername(), credentials.GetPassword(), "central", 600, message,
//            CLIENT_CLI, E_GSR, argc, argv);
//
// A password file has lines `user=...` and `password=...`; blank lines and lines that begin with
// "#" say nothing. It is read only if it is a regular file (not a link to one) that belongs to the
// process's user and gives no right to group or others.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H

#include <functional>
#include <string>

#include <support/Export.h>
#include <support/security/SecretString.h>

// A user name, a password and a password file, each of them empty when not given, with the status
// that the last Init came to. The object's own copies of the password are overwritten when it gives
// them up; a copy that a caller got is the caller's to wipe. No operation throws anything of its
// own.
// Thread contract: as a std::string; an object belongs to one thread.
class VQ_CLIENT_COMMON_API UserPass {
 public:
  // From 0 to 7 a sum: 1 for a user name, 2 for a password, 4 for a password file.
  enum eStatus {
    STAT_NOT_INITIALIZED = -1,
    STAT_MISSING_ALL = 0,
    STAT_MISSING_PASSWORD = 1,
    STAT_MISSING_USERNAME = 2,
    STAT_OK = 3,
    STAT_PASSWORD_FILE = 4,  // after Init: the file was not read
    STAT_CONFLICT_USER_AND_FILE = 5,
    STAT_CONFLICT_PASSWORD_AND_FILE = 6,
    STAT_CONFLICT_ALL = 7,
    STAT_NO_DEFAULT_FILE = 8,  // this one and the two below are never set by the class
    STAT_FILE_NOT_FOUND = 9,
    STAT_BAD_FILE_FORMAT = 10
  };

  // Copies the three; an empty one counts as not given.
  UserPass(const std::string& user, const std::string& password, const std::string& passFile);
  UserPass(const UserPass& other) = default;
  UserPass& operator=(const UserPass& other);
  ~UserPass();

  // Starts over from the three and sets the status. Returns true when user name and password are
  // complete.
  // - Without a file, what is missing is asked for on the console.
  // - With a file alone, the file is read; what it lacks is not asked for, but may be corrected.
  // - With a file and anything else nothing is read: that is a conflict. After a file was read its
  //   name still counts, so a second Init on the same object is one.
  bool Init();

  // What the last Init came to; STAT_NOT_INITIALIZED before the first.
  eStatus GetStatus() const { return m_status; }

  // The words for the status, static text in English; never null.
  const char* GetStatStr() const;

  // Whether user name and password are complete.
  bool isValid() const { return m_status == STAT_OK; }

  // Whether the caller may ask the user for what is missing and try again.
  bool isCorrectable() const;

  // Copies of what is known now; empty for what is not. The caller wipes its copy of the password.
  std::string GetUsername() const { return m_user; }
  std::string GetPassword() const { return m_password; }
  std::string GetPassFile() const { return m_passFile; }

  // Each replaces its value. The status stays until the next Init.
  void SetUsername(std::string user);
  void SetPassword(std::string password);
  void SetPassFile(std::string passFile);

  // Asks on the console for the user name and then the password, each if it is missing, and sets
  // the status without regard to the file. Returns true when both are there. When the first answer
  // fails, the second is not asked for.
  bool GetConsoleMissData();

 private:
  static constexpr char PATH_SEPARATORS[] = "/\\";  // nothing here reads it

  eStatus GetInitialStatus(bool ignoreFile) const;
  bool GetFromFile();

  std::string m_user;
  std::string m_password;
  std::string m_passFile;
  eStatus m_status = STAT_NOT_INITIALIZED;
};

namespace vq {

// Completes a user name and a password, of which one or both are empty. Returns why it cannot, and
// nothing when it could.
using CredentialSource = std::function<std::string(std::string& user, SecretString& password)>;

// Asks on the console for what is missing, as UserPass does.
VQ_CLIENT_COMMON_API CredentialSource AskForPassword();
// Reads a password file, as UserPass does.
VQ_CLIENT_COMMON_API CredentialSource ReadPasswordFile(const std::string& path);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H
