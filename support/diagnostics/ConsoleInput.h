// Asks on the console for a user name and a password.
//
// The answer is one line of standard input. Where that is a terminal, a prompt is shown on the
// terminal (on the standard error stream of a process that has none), never on standard output, and
// a password is typed without echo. Where it is a pipe or a file, a line is read and nothing is
// shown, so that a script may write both:
//
//   printf 'operator\nsesame\n' | client        or        client < answers
//
//   std::string user, password;
//   if (getUserFromStdin(user) == 0 || getPasswdFromStdin(password) == 0) ...   // nobody answered
//
// Exactly one line is taken from standard input, byte by byte and past the buffers of <cstdio> and
// <iostream>; what those have read ahead is not seen.
#ifndef VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H
#define VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H

#include <string>

// Both return 1 and store the line without its line end; an empty line is an answer too. Both
// return 0, with the string untouched, when standard input is closed (also when a library has
// opened a pipe of its own in its place since), fails or ends before a first character, and for a
// line that is longer than 4096 bytes or holds a zero byte; the rest of such a line stays in
// standard input. Thread contract: may be called from any thread; two threads ask one after the
// other.

int getUserFromStdin(std::string& user);

// The terminal's echo is off from before the prompt until the answer is complete, and what was
// typed ahead is dropped. A signal that would end or stop the process meanwhile first puts the
// terminal back and then takes its course under the application's own handler or the default;
// - a process that goes on after SIGHUP, SIGINT, SIGQUIT, SIGTERM or SIGPIPE gets 0;
// - one that goes on after SIGTSTP, SIGALRM, SIGUSR1 or SIGUSR2 asks again;
// - a signal that the application ignores stays ignored.
// 0 also when the echo cannot be switched off: a password is never asked for in the open.
int getPasswdFromStdin(std::string& password);

#endif  // VQ_SUPPORT_DIAGNOSTICS_CONSOLEINPUT_H
