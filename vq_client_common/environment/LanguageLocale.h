// Finds the locale of a language, and sets it.
//
// The file "$VQ_HOME/ini/locale.ini" has one entry a line, language=locale, with the language in
// lower case. A line that begins with "#" is a comment. Only the first 254 characters of a line
// count, without white space at its end.
//
//   # language=locale
//   english=en_US.UTF-8
//   french=fr_FR.UTF-8
//
// An entry belongs to a language when its line *begins* with the language's name: "en" finds the
// line of "english", and the empty name finds the first line that is no comment.
//
//   char locale[255] = "";
//   if (get_locale("French", locale) == 1) Show(locale);   // "fr_FR.UTF-8"
//   SetLocaleByLanguage("french");                         // sets the process's locale
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H

#include <string>

#include <support/Export.h>

// Finds the locale of a language and writes it, with a zero byte, to `locale`, which must have room
// for 255 bytes. Returns
//    1  found. For the language "use_account_locale" also 1, with `locale` unchanged: the
//       environment of the account defines the locale
//   12  no line begins with the language
//   22  the first line that does has no "="
//   41  the environment variable VQ_HOME is not set (it is ignored in set-user-ID programs)
//   42  the file does not open
// On failure `locale` is unchanged. `language` is changed to lower case by the current locale; null
// counts as empty. A null `locale` is not written. No other thread may change the environment or
// the locale meanwhile.
extern "C" VQ_CLIENT_COMMON_API int get_locale(const char* language, char* locale);

// Sets the locale of the process, for all categories, to the one that get_locale finds. Returns its
// name. When none is found, and for "use_account_locale", it sets the locale of the environment
// (LC_ALL, LC_..., LANG) and returns an empty string. For a locale that the host does not have, the
// current locale stays, and the name is returned nevertheless. The result is logged at level 4. No
// other thread may use the locale meanwhile.
VQ_CLIENT_COMMON_API std::string SetLocaleByLanguage(const std::string& language);

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H
