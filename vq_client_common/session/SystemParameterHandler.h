// Reads the system parameters of the central server, which have a section and a name.
//
//   std::string value;
//   if (GetSystemParameter("Language", value, "general", E_GSR)) Show(value);
//
// Every call is a remote call; nothing is cached. No function raises an exception: where a
// parameter cannot be read, each returns what its comment says.
#ifndef VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H
#define VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

// How strictly the server checks the author of a change: 1 to 3, where 3 is the most restrictive.
using SEC_AUTHOR_LVL = int;

// Reads one parameter into `value`. False, with `value` unchanged, on any failure, which is logged.
VQ_CLIENT_COMMON_API bool GetSystemParameter(const std::string& name, std::string& value,
                                             const std::string& section, SERVER_ID serverId);

// Sets `level` to the parameter "gsr"/"AuthorSecurity", and to 3 when its value is not 1 to 3.
// Returns 1; 0, with `level` 3 and a text in `message`, when it cannot be read.
VQ_CLIENT_COMMON_API int GetSecurityLevel(SEC_AUTHOR_LVL& level, std::string& message);

// Whether a user may unlock manually, "general"/"PermitManualUnlock": true for exactly "1"; false
// when it cannot be read.
VQ_CLIENT_COMMON_API bool GetPermitManualUnLock();

// Whether a field is mandatory, "general"/"ApplicationFieldIsMandatory" and
// "general"/"SubApplicationFieldIsMandatory": true for every value but "0"; false when it cannot be
// read.
VQ_CLIENT_COMMON_API bool GetApplicationFieldIsMandatoryParameter();
VQ_CLIENT_COMMON_API bool GetSubApplicationFieldIsMandatoryParameter();

// Whether the server requires the user to annotate an audited operation. The environment variable
// AuditAnnotationRequired replaces the server's answer when it is set: true for "1", false for any
// other value. False when the server cannot be asked.
VQ_CLIENT_COMMON_API bool isAnnotationRequired(const std::string& operation);

#endif  // VQ_CLIENT_COMMON_SESSION_SYSTEMPARAMETERHANDLER_H
