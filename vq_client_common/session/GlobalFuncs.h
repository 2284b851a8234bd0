// The functions of a session: log in, keep the session alive, log out.
//
//   std::string message;
//   int code = GL_Login(user, password, "central", 600, message, CLIENT_CLI, E_GSR, argc, argv);
//   if (code == 1 || code == 50) code = GL_PostLogin(message);
//   while (working) {
//     /* ... */
//     try {
//       GL_ClientKeepAlive();   // several times within the session's time-out
//     } catch (BaseLoginEx& e) {
//       Show(e.handle());       // the session is lost
//       break;
//     }
//   }
//   GL_LogOut(true);
//   exit_vqclient_common();   // once, at the very end of the process
//
// vq::Session (Session.h) makes these calls for a program and undoes them.
//
// Codes: 1 success; 0 refused or failed; 43 not authorized; 48 password expired; 49 account locked;
// 50 logged in, password about to expire; 54 no server; 55 the ORB cannot be started; any other
// code is the server's own. A `message` is a text for the user; the library does not display it.
// Several messages end in a tab.
//
// Thread safety: no lock. Only one of these functions may run at a time; a client that sends
// keep-alives from a second thread has to ensure that.
#ifndef VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H
#define VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/ServerId.h>

// Logs a user in. On 1 and 50 the session is connected.
//
// `server`: the server's name in the naming service. `timeOut`: seconds without a keep-alive after
// which the server ends the session. `argc` and `argv`: the command line, whose -ORB options are
// read unless the ORB is up already; the login then fails if they give other values of the -SSL
// options. `argv` may be null when `argc` is 0.
//
// `message` receives the text for the user. It is unchanged, with the code 0, when the host or the
// account has no name, when the server gives no challenge for the password (CRB_AquireChallenge),
// and after an unexpected exception. GL_GetFailureCause returns the cause then, too.
//
// After a failure the ORB stays up, and the next call uses it as it is. Call GL_LogOut(false)
// between a failure and the next login.
VQ_CLIENT_COMMON_API int GL_Login(const std::string& user, const std::string& password,
                                  const std::string& server, unsigned int timeOut,
                                  std::string& message, CLIENT_ID clientId, SERVER_ID serverId,
                                  int argc, char** argv);

// The cause of the failure of this thread's last GL_Login, GL_InitializeCORBA, GL_PostLogin,
// GL_ReLogin, GL_ClientKeepAlive or GetSystemParameter, in one line for an administrator:
// "connection refused at 10.1.2.3:4711", "the value 'x' of -ORBCallTimeout is not ...". What to do
// next follows a semicolon, where it is known. Empty after a success, and where `message` already
// has the cause, such as a wrong password.
VQ_CLIENT_COMMON_API std::string GL_GetFailureCause();

// Starts the session's ORB unless it is up. GL_Login does so, too; a client may do it earlier. True
// when the ORB is up, with the -SSL options of `argv` if it has any. Call
// ConnectionSettings::SetClientID before: the ORB gets its name and kind from the client ID, and
// without one it is that of a pure client without a name.
VQ_CLIENT_COMMON_API bool GL_InitializeCORBA(int argc, char** argv);

// Completes a login that returned 1 or 50: loads the authorizations, sends the session's time-out
// to the server, sets the locale. Returns 1, or the code of the failure with `message` for the
// user; `message` is unchanged on 1.
//
// When the environment variable ENABLE_TEST_CALLBACK is set and a troubleshooter is installed, it
// also tests whether the server can call this client back. That does not change the result.
VQ_CLIENT_COMMON_API int GL_PostLogin(std::string& message);

// Sends a keep-alive. Returns the server's result: 1 while the server knows the session.
//
// Unlike the other functions, it raises exceptions of the BaseLoginEx family (LoginExceptions.h),
// which are no std::exception: NoServerEx when the server cannot be found, ServerTypeEx when it
// does not answer. An exception that is not caught ends the process.
VQ_CLIENT_COMMON_API int GL_ClientKeepAlive();

// Registers again with the data of the last GL_Login. Returns 1, 50, or a code of the server's own;
// 0 for every other failure, without a text for the user.
//
// 0 does not prove that there is no new session: after the registration the function sends the
// session's time-out, and when the server fails at that point the result is 0 although the
// registration is valid. ConnectionSettings::GetUserID then returns the new user ID.
VQ_CLIENT_COMMON_API int GL_ReLogin(unsigned int timeOut);

// Ends the session at the server, and in any case clears what this process stores of it. With
// `destroyOrb` the ORB ends, too, and waits for its threads as the server parameter
// "gui"/"OrbShutdownWait" defines. Returns 1, also when the server cannot be reached.
//
// 43 means USER_NOT_AUTHORIZED. The interface of today's servers does not declare that
// exception for the logout, so no server can send it, and the result is always 1.
VQ_CLIENT_COMMON_API int GL_LogOut(bool destroyOrb);

// The session's time-out in seconds, from the first source that has one: the profile setting
// [Orb Parameters] RegisterTimeOut, which may be 0 or negative; the server parameter
// "gui"/"RegisterTimeout", if above 0; 600. May make a remote call.
VQ_CLIENT_COMMON_API long GL_GetCRBRegisterTimeOut();

// Sets `message` to a warning when the client's certificate expires soon, and to the empty string
// otherwise; LoginHandler::CheckSSLCertificateExpiration has the details. Returns 1.
VQ_CLIENT_COMMON_API int GL_CheckSSLCertificateExpiration(std::string& message);

// Installs the function that GL_PostLogin calls with `data` when the server cannot call this client
// back; null installs none. Returns the previous function, or null. It must not throw.
VQ_CLIENT_COMMON_API void (*GL_SetCallbackTroubleshooter(void (*callback)(void*),
                                                         void* data))(void*);

// Frees the objects of the process: the cached references, the client properties, the session. Call
// it once, at the very end; no function of this library may be called after it. It does not end the
// ORB: call GL_LogOut(true) before.
VQ_CLIENT_COMMON_API void exit_vqclient_common();

#endif  // VQ_CLIENT_COMMON_SESSION_GLOBALFUNCS_H
