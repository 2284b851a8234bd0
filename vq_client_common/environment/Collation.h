// Comparing texts after the process's locale, and taking blanks off a text's ends.
//
// The locale is the one that setlocale put in force, with its order (LC_COLLATE), its letters and
// its encoding (LC_CTYPE). In CJK mode, which i18n_aux::init_globa_c sets, case counts.
//
//   stricoll("Ab", "aB", false)     0; in CJK mode not
//   stricoll("Ab", "aB", true)      0
//   strncoll("abc", "abd", 2)       0
//
// A *blank* is the character 32 alone: tabs and line ends stay, save where told.
//
//   i18n_aux::strtrim("  a b ")     "a b"
//   i18n_aux::strtrim("\t a")       "\t a"
//   i18n_aux::strtrim2("\t a \t")   "a"
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H

#include <string>

#include <support/Export.h>

// Both return a negative number, 0 or a positive one, as `a` comes before `b`, with it, or after
// it. Both may order a sequence: the result is consistent over all texts, well formed or not. A
// byte that begins no character of the encoding counts as a character of its own, whose place the
// locale settles. A null text counts as the empty one.
// Thread contract: may be called from any thread while none changes the locale.

// Without regard to case, character by character; but in CJK mode exactly, by strcoll, unless
// `caseInsensitiveAlways` is set.
VQ_CLIENT_COMMON_API int stricoll(const char* a, const char* b, bool caseInsensitiveAlways);

// Exactly, and no more than the first `n` characters (not bytes) of each; 0 when `n` is 0.
VQ_CLIENT_COMMON_API int strncoll(const char* a, const char* b, unsigned int n);

namespace i18n_aux {

// Each returns a new text; the empty one for null and for a text of nothing but what it takes off.

VQ_CLIENT_COMMON_API std::string strtrim(const char* text);        // blanks at both ends
VQ_CLIENT_COMMON_API std::string strtrim2(const char* text);       // blanks and tabs at both ends
VQ_CLIENT_COMMON_API std::string strtrim_left(const char* text);   // blanks at the start
VQ_CLIENT_COMMON_API std::string strtrim_right(const char* text);  // blanks at the end

}  // namespace i18n_aux

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
