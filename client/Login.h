// Logging in: credentials, session, and messages for the user.
#ifndef VQ_CLIENT_LOGIN_H
#define VQ_CLIENT_LOGIN_H

#include <optional>

#include "CommandLine.h"

namespace vqclient {

// A session as the command line asks for it. The password is read from its file or asked for.
// Raises Failure when there is none.
vq::SessionOptions OptionsOf(const CommandLine& line, bool postLogin = false);

// Logs in, and prints the server's message; on failure its text and cause, and there is no session.
std::optional<vq::Session> LogIn(CommandLine& line, vq::SessionOptions options,
                                 vq::LoginError& error);

// The same for commands that end without a session: raises Failure.
vq::Session LogIn(CommandLine& line, vq::SessionOptions options);

void Tell(const vq::LoginError& error);  // its text and its cause

}  // namespace vqclient

#endif  // VQ_CLIENT_LOGIN_H
