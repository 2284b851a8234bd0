// The library's plain entry points: a client logs in, works, keeps its session alive and logs out.
//
//   std::string message;
//   int code = GL_Login(user, password, "central", 600, message, CLIENT_CLI, E_GSR, argc, argv);
//   if (code == 1 || code == 50) code = GL_PostLogin(message);
//   while (working) {
//     /* ... */
//     try {
//       GL_ClientKeepAlive();   // well within the session's time-out
//     } catch (BaseLoginEx& e) {
//       Show(e.handle());       // the session is lost
//       break;
//     }
//   }
//   GL_LogOut(true);
//   exit_vqclient_common();   // once, at the very end of the process
//
// Codes: 1 success; 0 refused or failed; 43 not authorized; 48 password expired; 49 account locked;
// 50 logged in, password about to expire; 54 no server; 55 the ORB cannot be brought up; others are
// the server's own. A `message` is for the user and is never shown by the library; several end in a
// tab that belongs to them.
//
// Thread contract: the library has no thread and no lock of its own here. One call at a time; a
// client that keeps alive from a timer thread keeps that apart from the other calls.
#ifndef VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H
#define VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/ServerId.h>

// Logs a user in. `server` is the server's logical name, under which the naming service knows it;
// `timeOut` the seconds after which the server drops a session that is not kept alive. `argc` and
// `argv` are the process's command line, read for -ORB options when the ORB is not up yet; `argv`
// may be null when `argc` is 0. `message` receives the text for the user; it is left as it was when
// the machine has no host or account name. On 1 and 50 the session is connected. The ORB stays up
// after a failure, and a repeated call takes it as it is. Call GL_LogOut(false) after a failure and
// before the next login.
VQ_CLIENT_COMMON_API int GL_Login(const std::string& user, const std::string& password,
                                  const std::string& server, unsigned int timeOut,
                                  std::string& message, CLIENT_ID clientId, SERVER_ID serverId,
                                  int argc, char** argv);

// Why the last GL_Login, GL_InitializeCORBA, GL_PostLogin, GL_ReLogin or GL_ClientKeepAlive of this
// thread failed, in one line for an administrator: "connection refused at 10.1.2.3:4711", "the
// value 'x' of -ORBCallTimeout is not ...". Empty after a success, and where the text for the user
// says it all, as with a wrong password.
VQ_CLIENT_COMMON_API std::string GL_GetFailureCause();

// Brings the session's ORB up, if it is not. GL_Login does it in any case; a client may do it
// earlier. True when the ORB is up. The ORB is named after the client ID of ConnectionSettings:
// without ConnectionSettings::SetClientID before, it is that of a pure client without a name.
VQ_CLIENT_COMMON_API bool GL_InitializeCORBA(int argc, char** argv);

// Finishes a login that gave 1 or 50: loads authorizations, tells the session's time-out, sets the
// language. Returns 1, or the code of the failure with `message` for the user. With the environment
// variable ENABLE_TEST_CALLBACK set and a troubleshooter installed it also tries whether the server
// can call this client back, which does not change the result.
VQ_CLIENT_COMMON_API int GL_PostLogin(std::string& message);

// Tells the server that the client is alive. Returns the server's result: 1 while it knows the
// session. BaseLoginEx is not turned into a code here: raises NoServerEx when the server cannot be
// found and ServerTypeEx when it does not answer.
VQ_CLIENT_COMMON_API int GL_ClientKeepAlive();

// Registers again with the data of the last GL_Login. Returns 1, 50, a code of the server's own, or
// 0 for every failure; its text is lost.
VQ_CLIENT_COMMON_API int GL_ReLogin(unsigned int timeOut);

// Ends the session and always clears what this process holds of it. With `destroyOrb` the ORB ends
// too, waiting for its threads as the server parameter "gui"/"OrbShutdownWait" says. Returns 1; 43
// when the server answers that the user is not authorized.
VQ_CLIENT_COMMON_API int GL_LogOut(bool destroyOrb);

// The session's time-out in seconds, from the first source that has one: the profile setting
// [Orb Parameters] RegisterTimeOut, as it stands; the server parameter "gui"/"RegisterTimeout", if
// above 0; 600.
VQ_CLIENT_COMMON_API long GL_GetCRBRegisterTimeOut();

// Warns of the expiry of the certificate in use; see LoginHandler. Returns 1.
VQ_CLIENT_COMMON_API int GL_CheckSSLCertificateExpiration(std::string& message);

// Installs what GL_PostLogin calls, with `data`, when the server cannot call this client back; null
// installs nothing. Returns the previous callback.
VQ_CLIENT_COMMON_API void (*GL_SetCallbackTroubleshooter(void (*callback)(void*),
                                                         void* data))(void*);

// Frees what the library holds: the cached references, the client properties, the session. Called
// once, at the very end; nothing of this library may be called after it. It does not end the ORB:
// GL_LogOut(true) does, before it.
VQ_CLIENT_COMMON_API void exit_vqclient_common();

#endif  // VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H
