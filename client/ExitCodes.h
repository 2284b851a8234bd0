// The exit codes of vqclient: 0 for success, 2 for a usage error, otherwise one code per cause. The
// codes of vq::LoginResult are exit codes, too.
#ifndef VQ_CLIENT_EXITCODES_H
#define VQ_CLIENT_EXITCODES_H

#include <stdexcept>
#include <string>
#include <string_view>

#include <vq_client_common/session/LoginResult.h>

namespace vqclient {

enum ExitCode : int {
  kSuccess = 0,
  kRefused = 1,  // refused or failed
  kUsage = 2,
  kServerCode = 3,     // a code of the server's own; it is printed
  kNoCredentials = 4,  // no user name or password
  kNoAnswer = 5,       // the server has no such value
  kSessionLost = 6,    // the server does not know the session, or does not answer
  kDenied = 7,         // the user is not authorized for what was asked
  kNoCallback = 8,     // the server cannot call this client back
  kNoServer = vq::CodeOf(vq::LoginResult::kNoServer),
  kOrbNotUp = vq::CodeOf(vq::LoginResult::kOrbNotUp),
};

constexpr int ExitCodeOf(vq::LoginResult result) {
  using Result = vq::LoginResult;
  if (vq::IsLoggedIn(result)) return kSuccess;
  if (result == Result::kFailed) return kRefused;
  for (const Result named :
       {Result::kNotAuthorized, Result::kPasswordExpired, Result::kAccountLocked,
        Result::kPasswordRefusedByPolicy, Result::kNoServer, Result::kOrbNotUp}) {
    if (result == named) return vq::CodeOf(result);
  }
  return kServerCode;
}

// Ends a command with this exit code. what() is printed; empty when the error is printed already.
struct Failure : std::runtime_error {
  Failure(int code, const std::string& text) : std::runtime_error(text), exitCode(code) {}
  int exitCode;
};

// For the help text.
inline constexpr std::string_view kExitCodeHelp =
    "Exit codes: 0 success, 1 refused or failed, 2 usage, 3 a code of the server's own,\n"
    "4 no credentials, 5 no such value, 6 session lost or logout not confirmed, 7 denied,\n"
    "8 no callback, 43 not authorized, 48 password expired, 49 account locked, 51 password\n"
    "refused by the policy, 54 no server, 55 ORB not up (naming service or its settings).\n";

}  // namespace vqclient

#endif  // VQ_CLIENT_EXITCODES_H
