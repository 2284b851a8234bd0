// Checks a new password against the site's rules, and changes the password of the user.
//
//   std::string message;
//   if (CheckPasswordValidity(newPassword, message) != 1) {
//     Show(message);
//   } else if (SetUserPassword(newPassword, false) == 1) {
//     Show("The password is changed.");
//   }
//
// The rules are parameters of the central server, section "general". Each check reads them with
// remote calls.
#ifndef VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H
#define VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H

#include <string>

#include <support/Export.h>

// The kinds of characters that rules require, as bits of GetPasswordComplexityRules.
enum PasswordRule {
  PWD_RULE_DIGIT = 1,
  PWD_RULE_UPPER = 2,
  PWD_RULE_LOWER = 4,
  PWD_RULE_SPECIAL = 8,
};

// The least length in bytes, "MinPasswordLength"; 6 when it cannot be read, 0 for a value that is
// no number.
VQ_CLIENT_COMMON_API int GetMinPasswordLength();

// The greatest length in bytes, "MaxPasswordLength"; 32 when it cannot be read, 0 for a value that
// is no number.
VQ_CLIENT_COMMON_API int GetMaxPasswordLength();

// Whether the complexity rules apply, "PasswordComplexityOnOff": true for exactly "1", "Y" or "y";
// false when it cannot be read.
VQ_CLIENT_COMMON_API bool IsPasswordComplexityON();

// The complexity rules, "PasswordComplexityRules": the sum of the PasswordRule bits; 15 when it
// cannot be read. A rule is on when the value contains any single character of its name
// ("PWD_DIGIT", "PWD_UPPER", "PWD_LOW", "PWD_NON_LETDIG"). So a value with one full name switches
// all four rules on; "U" is the rule for upper case alone.
VQ_CLIENT_COMMON_API int GetPasswordComplexityRules();

// Checks a new password against the rules. Returns 1, with `message` empty, when it meets them; 51,
// with the reason in `message`, when it does not. A digit or special rule that is on refuses every
// password.
VQ_CLIENT_COMMON_API int CheckPasswordValidity(const std::string& password, std::string& message);

// Changes the password of the user of ConnectionSettings at the server. Without `expired` it does
// so in the running session; with `expired`, after a login that returned 48, it registers and
// changes the password in one call. The rules are not checked.
//
// Returns the server's result, 1 for success; 43 when the user is not authorized; 0 on a local
// failure, and when the server cannot be reached or fails. With `expired`, a failure during the
// call returns the result of LoginHandler::GetClientVersion instead: 1, 0 or 20. So with `expired`
// neither 1 nor 20 shows what happened; call WasPasswordChanged.
//
// After a success ConnectionSettings has the new password, and with `expired` the user ID of the
// new session. GL_PostLogin completes that login.
VQ_CLIENT_COMMON_API int SetUserPassword(const std::string& newPassword, bool expired);

// Whether the server confirmed the last SetUserPassword of this thread. False after a connection
// that broke during the call, although the server may have stored the new password.
VQ_CLIENT_COMMON_API bool WasPasswordChanged();

#endif  // VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H
