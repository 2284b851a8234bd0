// Taking blanks off a text's ends.
//
// A *blank* is the character 32 alone: tabs and line ends stay, save where told.
//
//   i18n_aux::strtrim("  a b ")       "a b"
//   i18n_aux::strtrim("\t a")         "\t a"
//   i18n_aux::strtrim2("\t a \t")     "a"
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_TRIM_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_TRIM_H

#include <string>

#include <vq_client_common/Export.h>

namespace i18n_aux {

// Each returns a new text; the empty one for null and for a text of nothing but what it takes off.
// Thread contract: may be called from any thread.

VQ_CLIENT_COMMON_API std::string strtrim(const char* text);        // blanks at both ends
VQ_CLIENT_COMMON_API std::string strtrim2(const char* text);       // blanks and tabs at both ends
VQ_CLIENT_COMMON_API std::string strtrim_left(const char* text);   // blanks at the start
VQ_CLIENT_COMMON_API std::string strtrim_right(const char* text);  // blanks at the end

}  // namespace i18n_aux

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_TRIM_H
