// Compares strings by the process's locale, and removes blanks at the ends of a string.
//
// The locale of setlocale defines order (LC_COLLATE), letters and encoding (LC_CTYPE). In CJK mode,
// which i18n_aux::init_globa_c sets, case matters. A *blank* is the character 0x20; tabs and line
// ends are no blanks.
//
//   stricoll("Ab", "aB", true);      // 0
//   strncoll("abc", "abd", 2);       // 0
//   i18n_aux::strtrim("  a b ");     // "a b"
//   i18n_aux::strtrim("\t a");       // "\t a"
//   i18n_aux::strtrim2("\t a \t");   // "a"
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H

#include <string>

#include <support/Export.h>

// Compares without regard to case; in CJK mode with regard to case, by strcoll, unless
// `caseInsensitiveAlways` is set. Returns a negative number, 0 or a positive number when `a` comes
// before `b`, is equal, or comes after it.
//
// The result is a consistent order of all strings. A byte that begins no character of the encoding
// counts as a character of its own. Null counts as an empty string. No other thread may change the
// locale meanwhile.
VQ_CLIENT_COMMON_API int stricoll(const char* a, const char* b, bool caseInsensitiveAlways);

// Compares the first `n` characters (not bytes) with regard to case; 0 when `n` is 0. The rest is
// as in stricoll.
VQ_CLIENT_COMMON_API int strncoll(const char* a, const char* b, unsigned int n);

namespace i18n_aux {

// A copy of the string without blanks at both ends. Each of these returns an empty string for null.
VQ_CLIENT_COMMON_API std::string strtrim(const char* text);
// A copy of the string without blanks and tabs at both ends.
VQ_CLIENT_COMMON_API std::string strtrim2(const char* text);
// A copy of the string without blanks at its start.
VQ_CLIENT_COMMON_API std::string strtrim_left(const char* text);
// A copy of the string without blanks at its end.
VQ_CLIENT_COMMON_API std::string strtrim_right(const char* text);

}  // namespace i18n_aux

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
