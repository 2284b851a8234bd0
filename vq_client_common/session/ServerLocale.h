// The locale and the character handling that the server asks of its clients.
//
//   i18n_aux::init_globa_c(true, E_GSR);              // at login
//   SetLocaleBySystemParam("use_account_locale");     // after it
//
// What needs no server lies in environment/LanguageLocale.h and environment/Collation.h.
#ifndef VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H
#define VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

// Sets the process's locale to the one of the server's language: the system parameter "Language" of
// the section "general" at E_GSR, as SetLocaleByLanguage does it. Returns the language, not the
// locale; the empty text when the server does not tell, which stands for the first entry of
// locale.ini. The argument is not read.
// Thread contract: as SetLocaleByLanguage, and one synchronous remote call on the caller's thread.
VQ_CLIENT_COMMON_API std::string SetLocaleBySystemParam(const std::string&);

namespace i18n_aux {

// Sets up how the process treats text. The language mode is, first wins:
// - the environment variable SUPPORT_CJK, when it is set, empty included;
// - with `bIsOnline`, the system parameter "I18N" of "general" at `serverId`;
// - "latin1".
// The mode "cjk", in exactly these letters, switches CJK mode on, every other one switches it off;
// stricoll compares after it. The tables' directory is GetVQRootLocation() + "locale". The outcome
// goes to the log at level 4. May be called again; the last call holds.
// Thread contract: may be called from any thread; a synchronous remote call when online.
VQ_CLIENT_COMMON_API void init_globa_c(bool bIsOnline, SERVER_ID serverId);

}  // namespace i18n_aux

#endif  // VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H
