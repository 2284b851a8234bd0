// The site's rules for passwords, and changing one.
//
//   std::string message;
//   if (CheckPasswordValidity(newPassword, message) == 1) {
//     int result = SetUserPassword(newPassword, false);
//   } else {
//     Show(message);
//   }
//
// The rules are parameters of the central server, section "general", read anew at each check.
//
// Thread contract: synchronous remote calls on the caller's thread; no lock.
#ifndef VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H
#define VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H

#include <string>

#include <support/Export.h>

// Kinds of characters that a rule asks for, as bits of GetPasswordComplexityRules.
enum PasswordRule {
  PWD_RULE_DIGIT = 1,
  PWD_RULE_UPPER = 2,
  PWD_RULE_LOWER = 4,
  PWD_RULE_SPECIAL = 8,
};

// Number of characters: "MinPasswordLength" and "MaxPasswordLength"; 6 and 32 when they cannot be
// read, 0 for a value that is no number.
VQ_CLIENT_COMMON_API int GetMinPasswordLength();
VQ_CLIENT_COMMON_API int GetMaxPasswordLength();

// "PasswordComplexityOnOff": true for exactly "1", "Y" or "y"; false when it cannot be read.
VQ_CLIENT_COMMON_API bool IsPasswordComplexityON();

// "PasswordComplexityRules": the sum of the PasswordRule bits; 15 when it cannot be read. A rule is
// on when any single character of its name ("PWD_DIGIT", "PWD_UPPER", "PWD_LOW", "PWD_NON_LETDIG")
// occurs in the value, so a value that holds one name in full switches all four on.
VQ_CLIENT_COMMON_API int GetPasswordComplexityRules();

// Returns 1 when the password meets the rules, 51 when it does not; `message` then says why, and is
// empty otherwise. A digit or special rule that is on refuses every password.
VQ_CLIENT_COMMON_API int CheckPasswordValidity(const std::string& password, std::string& message);

// Changes the password of the user of ConnectionSettings at the server: in the running session, or
// with `expired` by registering and changing in one step after a login that gave 48. Returns the
// server's result, 1 for success; 43 when the user is not authorized; 0 on a local failure, and
// when the server cannot be reached or fails. With `expired`, a server that fails in mid call
// leaves the result of LoginHandler::GetClientVersion, which is 1 or 20: ask WasPasswordChanged. On
// success ConnectionSettings holds the new password, and with `expired` the user ID of the new
// session, which GL_PostLogin then finishes.
VQ_CLIENT_COMMON_API int SetUserPassword(const std::string& newPassword, bool expired);

// Whether the server confirmed the last SetUserPassword of this thread. After a connection that
// broke in mid call it is false, although the server may have stored the new password.
VQ_CLIENT_COMMON_API bool WasPasswordChanged();

#endif  // VQ_CLIENT_COMMON_SESSION_PASSWORDPOLICY_H
