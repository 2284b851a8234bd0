// Sets the locale and the character handling that the server's parameters define.
//
//   i18n_aux::init_globa_c(true, E_GSR);              // at login
//   SetLocaleBySystemParam("use_account_locale");     // after it
//
// environment/LanguageLocale.h and environment/Collation.h have the functions that need no server.
#ifndef VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H
#define VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

// Sets the process's locale to that of the server's language, by SetLocaleByLanguage. The language
// is the server parameter "general"/"Language" at E_GSR, a remote call; when it cannot be read, the
// first entry of locale.ini decides. Returns the language, not the locale; empty when it cannot be
// read. The argument is not used.
//
// Thread safety: no other thread may use the locale during the call.
VQ_CLIENT_COMMON_API std::string SetLocaleBySystemParam(const std::string&);

namespace i18n_aux {

// Sets the process's language mode. The first of these that exists is the mode:
// - the environment variable SUPPORT_CJK, also when it is empty;
// - with `bIsOnline`, the server parameter "general"/"I18N" at `serverId`, a remote call;
// - "latin1".
// The mode "cjk", in exactly these letters, switches CJK mode on, any other mode off; stricoll
// depends on it. The tables are expected in GetVQRootLocation() + "locale". The mode is logged at
// level 4. A second call replaces the result of the first.
VQ_CLIENT_COMMON_API void init_globa_c(bool bIsOnline, SERVER_ID serverId);

}  // namespace i18n_aux

#endif  // VQ_CLIENT_COMMON_SESSION_SERVERLOCALE_H
