// Comparing texts after the process's locale.
//
// The locale is the one that setlocale put in force, with its order (LC_COLLATE), its letters and
// its encoding (LC_CTYPE). In CJK mode, which i18n_aux::init_globa_c sets, case counts.
//
//   stricoll("Ab", "aB", false)     0; in CJK mode not
//   stricoll("Ab", "aB", true)      0
//   strncoll("abc", "abd", 2)       0
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H

#include <vq_client_common/Export.h>

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

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_COLLATION_H
