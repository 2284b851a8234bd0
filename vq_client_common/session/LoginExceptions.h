// The exceptions of LoginHandler.
//
// The GL_ functions turn them into a return code and a text for the user, except for
// GL_ClientKeepAlive. They do not derive from std::exception.
//
//   try {
//     LoginHandler::GetGlobal()->ClientKeepAlive();
//   } catch (BaseLoginEx& e) {
//     Show(e.handle());   // logs the reason at level 1 and returns it
//     return e.GetReturnCode();
//   }
//
// The classes:
//
//   Class           Return code   Raised when
//   BadOrbixCfgEx   55            the ORB cannot be started
//   NoServerEx      54            the users manager cannot be reached
//   ServerTypeEx     0            the server fails during the conversation, or is too old
//   UserAuthEx       0            the server refuses the user, or user, password or server is empty
//   UserLockedEx    49            the account is locked
//   UserPwdExpEx    48            the password has expired
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H
#define VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H

#include <string>

#include <support/Export.h>

// The base class of these exceptions. Catch by non-const reference, since `handle` is not const.
// The destructor is not virtual: do not delete an object through a pointer to the base.
//
// Objects hold copies of all strings and may be passed to another thread. The constructors read
// ConnectionSettings, so they run on the thread of the session.
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
  // Stores reason and codes. For derived classes.
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

// The ORB cannot be started: return code 55, error number 60008.
class VQ_CLIENT_COMMON_API BadOrbixCfgEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user; an empty one stays empty.
  explicit BadOrbixCfgEx(const std::string& reason);
};

// The users manager cannot be reached: return code 54, error number 60007.
class VQ_CLIENT_COMMON_API NoServerEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user. An empty one is replaced by a text that names the server and,
  // where the naming service has its reference, host and port; that look-up is a remote call.
  explicit NoServerEx(const std::string& reason);
};

// The server fails during the conversation, or is too old: return code 0, error number 60009.
class VQ_CLIENT_COMMON_API ServerTypeEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user. An empty one is replaced by a text that names the server.
  explicit ServerTypeEx(const std::string& reason);
};

// The server refuses the user: return code 0, error number 60010.
class VQ_CLIENT_COMMON_API UserAuthEx : public BaseLoginEx {
 public:
  // `reason`: the text for the user. An empty one is replaced by a text that names `user`, or the
  // user of ConnectionSettings where `user` is empty; names of more than 45 bytes are left out.
  UserAuthEx(const std::string& reason, const std::string& user);
};

// The account is locked: return code 49, error number 60006.
class VQ_CLIENT_COMMON_API UserLockedEx : public UserAuthEx {
 public:
  // `reason`: the text for the user. An empty one is replaced by "User account is locked.\t".
  explicit UserLockedEx(const std::string& reason);
};

// The password has expired: return code 48, error number 60011.
class VQ_CLIENT_COMMON_API UserPwdExpEx : public UserAuthEx {
 public:
  // `reason`: the text for the user. An empty one is replaced by "Password has expired.\t".
  explicit UserPwdExpEx(const std::string& reason);
};

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINEXCEPTIONS_H
