// Obfuscates a string. It protects nothing.
//
// There is no key: anyone with this description can read every string. It keeps the values of an
// archive from being read or edited by accident, and no more; never use it for a password.
//
//   std::string hidden, shown;
//   StupidEncrypt("T1/T2", hidden);   // five bytes
//   StupidDecrypt(hidden, shown);     // "T1/T2"
//
// The line end 0x0A keeps its place and no other byte becomes one, so that both forms have the same
// lines. The other 255 byte values count as the numbers 0 to 254 in their order (0x00 to 0x09 as 0
// to 9, 0x0B to 0xFF as 10 to 254), and a state s from 0 to 15 is carried from byte to byte; at the
// start s = 0:
//
//   hidden number = (plain number + 195 + 4 s) mod 255     (a line end is unchanged)
//   next s        = (s + hidden byte + 6) mod 16           (also after a line end)
#ifndef VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H
#define VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H

#include <string>

// Sets `out` to the hidden form of `in`, which has the same length. Every byte value is allowed,
// also zero, and `out` may be the same object as `in`. Raises only std::bad_alloc.
void StupidEncrypt(const std::string& in, std::string& out);

// Sets `out` to the string that StupidEncrypt hid in `in`. Every string is the hidden form of one
// string, so this cannot fail.
void StupidDecrypt(const std::string& in, std::string& out);

#endif  // VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H
