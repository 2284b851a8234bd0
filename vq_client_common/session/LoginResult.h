// The results of the session's functions by name, and the exception of those that raise one.
//
//   std::string message;
//   int code = GL_Login(user, password, "central", 600, message, CLIENT_CLI, E_GSR, argc, argv);
//   if (code == vq::CodeOf(vq::LoginResult::kPasswordExpired)) Show("A new password, please.");
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H
#define VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H

#include <stdexcept>
#include <string>
#include <utility>

#include <support/Export.h>

namespace vq {

// Every code that the library gives a meaning. A server may answer with further codes of its own;
// such a code is a value of this type without a name.
enum class LoginResult : int {
  kFailed = 0,  // refused by the server, or failed
  kSuccess = 1,
  kNotAuthorized = 43,
  kPasswordExpired = 48,
  kAccountLocked = 49,
  kPasswordAboutToExpire = 50,    // logged in
  kPasswordRefusedByPolicy = 51,  // CheckPasswordValidity
  kNoServer = 54,
  kOrbNotUp = 55,
};

// The result as the functions with plain integers return it.
constexpr int CodeOf(LoginResult result) {
  return static_cast<int>(result);
}

// Whether a login with this result has a session.
constexpr bool IsLoggedIn(LoginResult result) {
  return result == LoginResult::kSuccess || result == LoginResult::kPasswordAboutToExpire;
}

// Why there is no session. what() is the text for the user, empty only in an object that was made
// without arguments.
class VQ_CLIENT_COMMON_API LoginError : public std::runtime_error {
 public:
  LoginError() : LoginError(LoginResult::kFailed, "", "") {}
  // Tabs, blanks and line ends behind `text` are left out.
  LoginError(LoginResult result, const std::string& text, std::string cause)
      : std::runtime_error(text.substr(0, text.find_last_not_of("\t\n ") + 1)),
        m_result(result),
        m_cause(std::move(cause)) {}

  // By name, and as a number; a code of the server's own keeps its number.
  LoginResult Result() const { return m_result; }
  int Code() const { return CodeOf(m_result); }
  // One line for an administrator, such as "connection refused at host:port"; may be empty.
  const std::string& Cause() const { return m_cause; }

 private:
  LoginResult m_result;
  std::string m_cause;
};

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H
