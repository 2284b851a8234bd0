// The result codes of the session by name, and the exception of vq::Session.
//
//   std::string message;
//   int code = GL_Login(user, password, "central", 600, message, CLIENT_CLI, E_GSR, argc, argv);
//   if (code == vq::CodeOf(vq::LoginResult::kPasswordExpired)) Show("Choose a new password.");
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H
#define VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H

#include <stdexcept>
#include <string>
#include <utility>

#include <support/Export.h>

namespace vq {

// The codes that the library defines. A server may return other codes; such a code is a value of
// this type without a name.
enum class LoginResult : int {
  kFailed = 0,  // refused by the server, or any failure without a code of its own
  kSuccess = 1,
  kNotAuthorized = 43,
  kPasswordExpired = 48,
  kAccountLocked = 49,
  kPasswordAboutToExpire = 50,    // logged in
  kPasswordRefusedByPolicy = 51,  // CheckPasswordValidity
  kNoServer = 54,
  kOrbNotUp = 55,
};

// The code of a result, as the functions that return an int give it.
constexpr int CodeOf(LoginResult result) {
  return static_cast<int>(result);
}

// Whether a login with this result opened a session.
constexpr bool IsLoggedIn(LoginResult result) {
  return result == LoginResult::kSuccess || result == LoginResult::kPasswordAboutToExpire;
}

// The failure of a login. what() is the text for the user; it is empty only in a
// default-constructed object.
class VQ_CLIENT_COMMON_API LoginError : public std::runtime_error {
 public:
  LoginError() : LoginError(LoginResult::kFailed, "", "") {}
  // `text`: the text for the user; tabs, blanks and line ends at its end are removed. `cause`: one
  // line for an administrator, or empty.
  LoginError(LoginResult result, const std::string& text, std::string cause)
      : std::runtime_error(text.substr(0, text.find_last_not_of("\t\n ") + 1)),
        m_result(result),
        m_cause(std::move(cause)) {}

  // The code by name and as a number.
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
