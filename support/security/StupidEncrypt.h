// Hides a text from a casual look. It protects nothing.
//
// There is no key: whoever has these lines can read every text. It keeps the values of an archive
// from being read or edited by accident, and no more; a password has no place in it.
//
//   std::string hidden, shown;
//   StupidEncrypt("T1/T2", hidden);   // five bytes
//   StupidDecrypt(hidden, shown);     // "T1/T2"
//
// The line end 0x0A stays where it is and no other byte becomes one, so that a reader of lines
// finds the same lines in both forms. The other 255 byte values are taken as the numbers 0 to 254
// in their order (0x00 to 0x09 as 0 to 9, 0x0B to 0xFF as 10 to 254), and a state s from 0 to 15
// goes from byte to byte; at the start s = 0:
//
//   hidden number = (plain number + 195 + 4 s) mod 255     (a line end is taken as it is)
//   next s        = (s + hidden byte + 6) mod 16           (also behind a line end)
//
// Thread contract: both functions may be called from any thread.
#ifndef VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H
#define VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H

#include <string>

// Sets `out` to the hidden form of `in`, byte for byte as long. Every byte value is allowed, also
// zero, and `out` may be the same object as `in`. Fails only for want of memory.
void StupidEncrypt(const std::string& in, std::string& out);

// Sets `out` to the text that StupidEncrypt hid in `in`. Every text is the hidden form of one text,
// so this has no failure of its own.
void StupidDecrypt(const std::string& in, std::string& out);

#endif  // VQ_SUPPORT_SECURITY_STUPIDENCRYPT_H
