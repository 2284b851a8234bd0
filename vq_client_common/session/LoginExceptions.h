// The failures that carry a login out of LoginHandler.
//
// Members of LoginHandler raise them; the GL_ functions turn them into a return code and a text for
// the user. They have no base in common with std::exception.
//
//   try {
//     LoginHandler::GetGlobal()->ClientKeepAlive();
//   } catch (BaseLoginEx& e) {
//     Show(e.handle());               // logs the reason at level 1 and returns it
//     return e.GetReturnCode();
//   }
//
// The classes:
//
//   Class           Return code   Raised when
//   BadOrbixCfgEx   55            the ORB cannot be brought up
//   NoServerEx      54            the users manager cannot be reached
//   ServerTypeEx     0            the server fails during the conversation, or is too old
//   UserAuthEx       0            the server refuses the user, or user, password or server is empty
//   UserLockedEx    49            the account is locked
//   UserPwdExpEx    48            the password has expired
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H
#define VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H

#include <string>

#include <support/Export.h>

// Objects of the family are caught by value or reference and never deleted through a pointer to the
// base, which has no virtual destructor.
//
// Thread contract of the family: an object carries its own copies of all text and may be passed
// between threads. The constructors read ConnectionSettings and belong to the session's thread.
class VQ_CLIENT_COMMON_API BaseLoginEx {
 public:
  // A failure with this reason, the return code 0 and the error number 0.
  explicit BaseLoginEx(const std::string& reason);
  BaseLoginEx(const BaseLoginEx&) = default;
  BaseLoginEx& operator=(const BaseLoginEx&) = default;

  // Logs the reason at level 1 and returns it.
  virtual std::string handle();

  // The text for the user, as it was at construction.
  const std::string& GetReason() const { return m_reason; }
  int GetReturnCode() const { return m_returnCode; }    // what the GL_ functions return
  int GetErrorNumber() const { return m_errorNumber; }  // the suite's number of the failure

 protected:
  // For the classes of the family: reason and codes as they stand.
  BaseLoginEx(const std::string& reason, int returnCode, int errorNumber);
  // Replace what the constructor of a base class stored.
  void SetReason(const std::string& reason) { m_reason = reason; }
  void SetCodes(int returnCode, int errorNumber) {
    m_returnCode = returnCode;
    m_errorNumber = errorNumber;
  }

 private:
  std::string m_reason;
  int m_returnCode = 0;
  int m_errorNumber = 0;
};

// The ORB cannot be brought up: return code 55, error number 60008.
class VQ_CLIENT_COMMON_API BadOrbixCfgEx : public BaseLoginEx {
 public:
  // The reason is taken as it is, the empty one too.
  explicit BadOrbixCfgEx(const std::string& reason);
};

// The users manager cannot be reached: return code 54, error number 60007. With an empty reason it
// finds out more: it looks the server up once more, a remote call, and names the host and port that
// its reference holds.
class VQ_CLIENT_COMMON_API NoServerEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user, or empty. A look-up that fails leaves host and port out of it.
  explicit NoServerEx(const std::string& reason);
};

// The server fails during the conversation, or is too old: return code 0, error number 60009. An
// empty reason is replaced by a text that names the server.
class VQ_CLIENT_COMMON_API ServerTypeEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user, or empty.
  explicit ServerTypeEx(const std::string& reason);
};

// The server refuses the user: return code 0, error number 60010. An empty reason is replaced by a
// text that names the user, unless the name is longer than 45 characters. An empty user stands for
// the user name of ConnectionSettings.
class VQ_CLIENT_COMMON_API UserAuthEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user, or empty. `user`: whom the text names.
  UserAuthEx(const std::string& reason, const std::string& user);
};

// The account is locked: return code 49, error number 60006.
class VQ_CLIENT_COMMON_API UserLockedEx : public UserAuthEx {
 public:
  // An empty reason is replaced by "User account is locked." and a tab.
  explicit UserLockedEx(const std::string& reason);
};

// The password has expired: return code 48, error number 60011.
class VQ_CLIENT_COMMON_API UserPwdExpEx : public UserAuthEx {
 public:
  // An empty reason is replaced by "Password has expired." and a tab.
  explicit UserPwdExpEx(const std::string& reason);
};

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H
