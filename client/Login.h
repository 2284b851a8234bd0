// Login: credentials, session, and messages for the user.
#ifndef VQ_CLIENT_LOGIN_H
#define VQ_CLIENT_LOGIN_H

#include <optional>

#include <client/CommandLine.h>

namespace vqclient {

// The options of the session that the command line asks for. Reads the password from its file or
// asks for it; raises Failure without one.
vq::SessionOptions OptionsOf(CommandLine& line, bool postLogin = false);

// Logs in and prints the server's message. On failure prints text and cause, and returns nothing.
std::optional<vq::Session> LogIn(CommandLine& line, vq::SessionOptions options,
                                 vq::LoginError& error);

// The same for commands that need a session: raises Failure without one.
vq::Session LogIn(CommandLine& line, vq::SessionOptions options);

inline constexpr const char* kUnknownSession = "The server does not know the session any more.";

// Logs out. Returns whether the server has confirmed that, which the result of GL_LogOut does not
// show, and prints the cause otherwise.
bool LogOut();

}  // namespace vqclient

#endif  // VQ_CLIENT_LOGIN_H
