// How the process handles text: the language mode, the directory of its tables, the encoding.
//
// Terms. The *mode* is the language mode that the site's server names: "latin1" for the languages
// of western Europe, "cjk" for Chinese, Japanese and Korean. *CJK mode* is a separate flag, set
// when character handling is set up; it decides how strings are compared.
//
//   Osl_UnicodeConfiguration::Init({.mode = "cjk", .directory = "/opt/vq/locale"});
//   Osl_UnicodeConfiguration::SetCJKMode(true);
//   i18n_aux::IsCJK_mode();                           // true
//   Osl_UnicodeConfiguration::GetCurrentEncoding();   // "UTF-8"
#ifndef VQ_SUPPORT_DIAGNOSTICS_OSL_UNICODECONFIGURATION_H
#define VQ_SUPPORT_DIAGNOSTICS_OSL_UNICODECONFIGURATION_H

#include <string>

// The process's one configuration. Thread safety: every operation may be called from any thread.
class Osl_UnicodeConfiguration {
 public:
  struct InitParameters {
    std::string mode;       // "latin1", "cjk" or "utf8"; any other string counts as "latin1"
    std::string directory;  // kept as given; nothing is read from it
  };

  // May be called again; the last call applies. Leaves the CJK mode as it is. Before the first call
  // the mode is "latin1" and the directory empty.
  static void Init(const InitParameters& parameters);

  // The mode and the directory as the last Init gave them.
  static InitParameters GetParameters();

  // Whether this is a 32-bit process, whose locale tables lie in a directory of their own.
  static constexpr bool is32BitEncapsolatedMode() { return sizeof(void*) == 4; }

  // False until set.
  static void SetCJKMode(bool isCJK);

  // The name of the encoding that belongs to the mode: "ISO-8859-1" or "UTF-8".
  static std::string GetCurrentEncoding();

  Osl_UnicodeConfiguration() = delete;
};

namespace i18n_aux {

// What SetCJKMode stored last.
bool IsCJK_mode();

}  // namespace i18n_aux

#endif  // VQ_SUPPORT_DIAGNOSTICS_OSL_UNICODECONFIGURATION_H
