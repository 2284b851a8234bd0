// Gets the user name and the password of a command-line client.
//
// A client passes what it has: a user name, a password, or the path of a password file. UserPass
// checks which of these may be combined, and reads what is missing from the file or the console. It
// does not log in.
//
//   UserPass credentials(user, "", "");
//   if (!credentials.Init()) {   // asks for the password on the console
//     std::cerr << credentials.GetStatStr() << '\n';
//     return 1;
//   }
//   std::string message;
//   int code = GL_Login(credentials.GetUsername(), credentials.GetPassword(),
//                       "central", 600, message,
//                       CLIENT_CLI, E_GSR, argc, argv);
//
// A password file has lines `user=...` and `password=...`; blank lines and lines that begin with
// "#" are comments. It must be a regular file, not a symbolic link, that the process's user owns
// and to which group and others have no access.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H

#include <functional>
#include <string>

#include <support/Export.h>
#include <support/security/SecretString.h>

// A user name, a password and the path of a password file, and the status of the last Init. The
// object overwrites its copies of the password when it discards them; a caller overwrites its own.
// No operation throws exceptions of its own.
class VQ_CLIENT_COMMON_API UserPass {
 public:
  // From 0 to 7 it is a sum: 1 for a user name, 2 for a password, 4 for a password file.
  enum eStatus {
    STAT_NOT_INITIALIZED = -1,
    STAT_MISSING_ALL = 0,
    STAT_MISSING_PASSWORD = 1,
    STAT_MISSING_USERNAME = 2,
    STAT_OK = 3,
    STAT_PASSWORD_FILE = 4,  // after Init: the file could not be read
    STAT_CONFLICT_USER_AND_FILE = 5,
    STAT_CONFLICT_PASSWORD_AND_FILE = 6,
    STAT_CONFLICT_ALL = 7,
    STAT_NO_DEFAULT_FILE = 8,  // the class never sets this one and the two below
    STAT_FILE_NOT_FOUND = 9,
    STAT_BAD_FILE_FORMAT = 10
  };

  // Copies the three strings; an empty one counts as not given.
  UserPass(const std::string& user, const std::string& password, const std::string& passFile);
  UserPass(const UserPass& other) = default;
  UserPass& operator=(const UserPass& other);
  ~UserPass();

  // Completes user name and password, and sets the status. True when both are there.
  // - Without a file, it asks on the console for what is missing.
  // - With a file only, it reads the file. It does not ask for what the file lacks.
  // - A file and anything else is a conflict, and nothing is read. So after a file was read, a
  //   second Init of the same object is a conflict.
  bool Init();

  // The status of the last Init; STAT_NOT_INITIALIZED before the first.
  eStatus GetStatus() const { return m_status; }

  // The text of the status: a static English text, never null.
  const char* GetStatStr() const;

  // Whether user name and password are complete.
  bool isValid() const { return m_status == STAT_OK; }

  // Whether something is missing that the caller may set before another Init.
  bool isCorrectable() const;

  // Copies of the current values; empty where not known. The caller overwrites its copy of the
  // password after use.
  std::string GetUsername() const { return m_user; }
  std::string GetPassword() const { return m_password; }
  std::string GetPassFile() const { return m_passFile; }

  // Each replaces a value. The status is unchanged until the next Init.
  void SetUsername(std::string user);
  void SetPassword(std::string password);
  void SetPassFile(std::string passFile);

  // Asks on the console for the user name and the password, where they are missing, and sets the
  // status without regard to the file. True when both are there. After a failed answer it does not
  // ask for the second.
  bool GetConsoleMissData();

 private:
  static constexpr char PATH_SEPARATORS[] = "/\\";  // not used here

  eStatus GetInitialStatus(bool ignoreFile) const;
  bool GetFromFile();

  std::string m_user;
  std::string m_password;
  std::string m_passFile;
  eStatus m_status = STAT_NOT_INITIALIZED;
};

namespace vq {

// A function that sets a user name and a password, where they are empty. Returns the reason when it
// cannot, and an empty string otherwise.
using CredentialSource = std::function<std::string(std::string& user, SecretString& password)>;

// A source that asks on the console for what is missing, as UserPass does.
VQ_CLIENT_COMMON_API CredentialSource AskForPassword();
// A source that reads a password file, as UserPass does. When the file is refused, the reason is a
// second line.
VQ_CLIENT_COMMON_API CredentialSource ReadPasswordFile(const std::string& path);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_USERPASS_H
