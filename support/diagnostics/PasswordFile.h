// Reads a user name and a password from a file.
//
// The file is text. A line is `user=` or `password=` and then the value: every character up to the
// line end, blanks and further "=" included. Blank lines and lines that begin with "#" are ignored.
//
//   # credentials of the nightly run
//   user=operator
//   password=open = sesame
//
//   std::string user, password;
//   if (getUsrAndPasswdFromFile("/home/operator/.vq-credentials", user, password) == 0) ...
#ifndef VQ_SUPPORT_DIAGNOSTICS_PASSWORDFILE_H
#define VQ_SUPPORT_DIAGNOSTICS_PASSWORDFILE_H

#include <string>
#include <string_view>

// Returns 1 when the file was read. `user` and `password` then have the values of the file; one
// that the file does not contain is unchanged, so a file may contain one of them, or neither.
// Returns 0, with both unchanged, when the file
// - does not open, or is not a regular file. A symbolic link as the last part of the path is
//   refused, too, since the rights that are checked must be those of the file that the user named;
//   directories above it may be links;
// - belongs to another user than the process's effective one;
// - gives group or others any right at all. A right to write would let them choose the credentials,
//   and the group's bits also cover the rights that an access control list grants;
// - is longer than 64 KiB, has a line of another form, has a value twice, or contains a zero byte.
// The reason goes to the log at level 1, without any of the file's content.
// Owner and rights are those of the open file, so it cannot be exchanged between check and reading.
int getUsrAndPasswdFromFile(const std::string& path, std::string& user, std::string& password);

namespace vq {

// Why the function above refuses a file; empty when it does not.
std::string WhyPasswordFileIsRefused(const std::string& path);

// Reads the text of such a file. Returns why it is refused, with both strings unchanged; empty when
// it was read.
std::string ParsePasswordFile(std::string_view text, std::string& user, std::string& password);

}  // namespace vq

#endif  // VQ_SUPPORT_DIAGNOSTICS_PASSWORDFILE_H
