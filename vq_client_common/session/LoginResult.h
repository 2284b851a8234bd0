// The results of the session's functions by name.
//
//   int code = GL_Login(...);
//   if (code == vq::CodeOf(vq::LoginResult::kPasswordExpired)) AskForNewPassword();
#ifndef VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H
#define VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H

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

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_SESSION_LOGINRESULT_H
