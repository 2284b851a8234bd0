// Which locale belongs to a language, and setting it.
//
// The file "$VQ_HOME/ini/locale.ini" has one entry a line, language=locale, with language names in
// lower case. A line that begins with "#" is a comment; white space at a line's end does not count.
// A line counts up to its 254th character.
//
//   # language=locale
//   english=en_US.UTF-8
//   french=fr_FR.UTF-8
//
// An entry fits a language when its line *begins* with the language's name: "en" finds the line of
// "english" above, and the empty name finds the first line that is no comment.
//
//   char locale[255] = "";
//   get_locale("French", locale);          // 1, "fr_FR.UTF-8"
//   SetLocaleByLanguage("french");         // the process now has that locale
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H

#include <string>

#include <support/Export.h>

// Looks the language up and writes its locale, with a closing zero byte, to `locale`, which has
// room for 255 bytes. Returns
//    1  found; or the language is "use_account_locale", which leaves `locale` as it was and looks
//       at nothing: the account's own environment settles the locale
//   12  no line begins with the language
//   22  the first line that does has no "="
//   41  the environment variable VQ_HOME is not set (for a program that runs with more rights than
//       its caller it never is)
//   42  the file does not open
// Whatever is not found leaves `locale` as it was. The language is taken in lower case, letter by
// letter after the locale in force; null counts as the empty text. A null `locale` is not written.
// Thread contract: may be called from any thread while none changes the environment or the locale.
extern "C" VQ_CLIENT_COMMON_API int get_locale(const char* language, char* locale);

// Sets the locale of the whole process, for all categories, to the one that get_locale finds.
// Returns its name; the empty text where none is found or the account's own is asked for, and then
// it is the environment (LC_ALL, LC_..., LANG) that settles the locale. A locale that the machine
// does not have leaves the one in force, and its name is returned all the same. The outcome goes to
// the log at level 4.
// Thread contract: not while another thread runs that uses the locale.
VQ_CLIENT_COMMON_API std::string SetLocaleByLanguage(const std::string& language);

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_LANGUAGELOCALE_H
