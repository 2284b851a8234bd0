// The digest that is logged instead of a string which must not be logged itself.
//
//   char buffer[33];
//   CalcMD5("abc", 3, 0, buffer);  // "900150983cd24fb0d6963f7d28e17f72"
//
// It distinguishes strings in a log and protects nothing: MD5 is broken as a protection.
#ifndef VQ_SUPPORT_FOUNDATIONS_DIGEST_H
#define VQ_SUPPORT_FOUNDATIONS_DIGEST_H

#include <cstddef>

// Writes the MD5 digest of `length` bytes at `text` into `buffer`: 32 hexadecimal digits in lower
// case and a zero byte, so it must have room for 33 characters. `text` may be null when `length` is
// 0. `reserved` is ignored. Returns false, and leaves an empty string in `buffer`, when the host's
// cryptography policy offers no MD5.
bool CalcMD5(const char* text, std::size_t length, int reserved, char* buffer);

#endif  // VQ_SUPPORT_FOUNDATIONS_DIGEST_H
