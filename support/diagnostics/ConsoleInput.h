// Asks on the console for a user name and a password.
//
// The answer is one line of standard input. Where that is a terminal, a prompt is shown on the
// terminal (on stderr in a process that has none), never on stdout, and a password is typed without
// echo. Where it is a pipe or a file, a line is read and nothing is shown, so that a script can
// supply both:
//
//   printf 'operator\nsesame\n' | client        or        client < answers
//
//   std::string user, password;
//   if (getUserFromStdin(user) == 0 || getPasswdFromStdin(password) == 0) ...   // no answer
//
// Exactly one line is taken from standard input, byte by byte and past the buffers of <cstdio> and
// <iostream>; input that those have read ahead is missed.
#ifndef VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H
#define VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H

#include <string>

// Both return 1 and store the line without its line end; an empty line is an answer too. Both
// return 0, with the string unchanged, when standard input is closed (also when a library has
// opened a pipe of its own in its place since), fails or ends before the first character, and for a
// line that is longer than 4096 bytes or contains a zero byte; the rest of such a line stays in
// standard input. Two threads ask one after the other.

int getUserFromStdin(std::string& user);

// The terminal's echo is off from before the prompt until the answer is complete, and input typed
// ahead is dropped. On a signal that would end or stop the process meanwhile, the terminal is
// restored first, and then the application's own handler or the default applies;
// - a process that continues after SIGHUP, SIGINT, SIGQUIT, SIGTERM or SIGPIPE gets 0;
// - one that continues after SIGTSTP, SIGALRM, SIGUSR1 or SIGUSR2 asks again;
// - a signal that the application ignores stays ignored.
// 0 also when the echo cannot be switched off: a password is never asked for visibly.
int getPasswdFromStdin(std::string& password);

#endif  // VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H
