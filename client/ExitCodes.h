// What vqclient tells its caller by its exit code: 0 for success, 2 for a command line that is not
// understood, and one code a cause otherwise. The suite's own codes are kept where there is one.
#ifndef VQ_CLIENT_EXITCODES_H
#define VQ_CLIENT_EXITCODES_H

#include <array>
#include <string_view>

namespace vqclient {

enum ExitCode : int {
  kSuccess = 0,
  kRefused = 1,  // refused, or failed during the conversation
  kUsage = 2,
  kServerCode = 3,     // a code of the server's own; it is printed
  kNoCredentials = 4,  // no user name or password to be had
  kNoAnswer = 5,       // a value that the server does not give
  kSessionLost = 6,    // the server no longer knows the session, or no longer answers
  kDenied = 7,         // the answer to a question of authorization is no
  kNoCallback = 8,     // the server reaches this client in no way
  kNotAuthorized = 43,
  kPasswordExpired = 48,
  kAccountLocked = 49,
  kPasswordRefused = 51,  // by the password policy
  kNoServer = 54,
  kOrbNotUp = 55,
};

// The exit code for a result of GL_Login, GL_PostLogin or SetUserPassword.
constexpr ExitCode ExitCodeOf(int result) {
  if (result == 1 || result == 50) return kSuccess;
  if (result == 0) return kRefused;
  constexpr std::array kKept{kNotAuthorized,   kPasswordExpired, kAccountLocked,
                             kPasswordRefused, kNoServer,        kOrbNotUp};
  for (const ExitCode code : kKept) {
    if (result == code) return code;
  }
  return kServerCode;
}

// One line a code, for the help text.
inline constexpr std::string_view kExitCodeHelp =
    "Exit codes: 0 success, 1 refused or failed, 2 usage, 3 a code of the server's own,\n"
    "4 no credentials, 5 value not available, 6 session lost, 7 denied, 8 no callback,\n"
    "43 not authorized, 48 password expired, 49 account locked, 51 password refused by the\n"
    "policy, 54 no server, 55 ORB not up (naming service or its configuration).\n";

}  // namespace vqclient

#endif  // VQ_CLIENT_EXITCODES_H
