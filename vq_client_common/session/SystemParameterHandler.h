// Settings that the central server holds for its clients, addressed by section and name.
//
//   std::string value;
//   if (GetSystemParameter("Language", value, "general", E_GSR)) Show(value);
//
// Every call asks the server; nothing is kept. A read that fails never fails the client's
// operation: each function says what it then assumes.
//
// Thread contract of all functions here: synchronous remote calls on the caller's thread, without
// state beyond the reference cache (CorbaServerPackManager.h).
#ifndef VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H
#define VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

// How strictly the server checks the author of a change: 1 to 3, of which 3 is the most
// restrictive.
using SEC_AUTHOR_LVL = int;

// Reads one parameter. False, with `value` as it was, on any failure; the log tells which. Raises
// nothing.
VQ_CLIENT_COMMON_API bool GetSystemParameter(const std::string& name, std::string& value,
                                             const std::string& section, SERVER_ID serverId);

// Server parameter "gsr"/"AuthorSecurity". Returns 1; 0, with `message` saying so, when it cannot
// be read. `level` is 3 then, and also when the value is not within 1 to 3.
VQ_CLIENT_COMMON_API int GetSecurityLevel(SEC_AUTHOR_LVL& level, std::string& message);

// "general"/"PermitManualUnlock": true for exactly "1"; false when it cannot be read.
VQ_CLIENT_COMMON_API bool GetPermitManualUnLock();

// "general"/"ApplicationFieldIsMandatory" and "general"/"SubApplicationFieldIsMandatory": true for
// every value but "0"; false when it cannot be read.
VQ_CLIENT_COMMON_API bool GetApplicationFieldIsMandatoryParameter();
VQ_CLIENT_COMMON_API bool GetSubApplicationFieldIsMandatoryParameter();

// Whether the server wants a note from the user for an audited operation. The environment variable
// AuditAnnotationRequired, when it is set, answers instead of the server: "1" is yes, everything
// else no. False when the server cannot be asked.
VQ_CLIENT_COMMON_API bool isAnnotationRequired(const std::string& operation);

#endif  // VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H
