// The client properties file: whatever it holds, reading it is safe. A table whose keys and values
// hold no mark of the line's template comes back as it was when it is written and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <support/configuration/XmlPlatform.h>
#include <support/diagnostics/TDiag.h>
#include <vq_client_common/environment/internal/PropertiesFormat.h>

namespace {

TDiagRegister diagModule("PropertiesFuzz");

bool SurvivesSaving(const std::string& text) {
  return text.find("%s") == std::string::npos && text.find('\r') == std::string::npos &&
         text.find('\x1A') == std::string::npos;  // what the locale's encoding does not have
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vq::XmlSession xml;  // Starting anew for each input would take most of the time.
  const TDiagFunc diag(diagModule, "PropertiesFuzz");
  vq::PropertiesTable table;
  if (!vq::ParseProperties({reinterpret_cast<const char*>(data), size}, diag, table)) return 0;
  bool survives = true;
  for (const auto& [key, value] : table) {
    survives = survives && SurvivesSaving(key) && SurvivesSaving(value);
  }
  vq::PropertiesTable again;
  const bool read = vq::ParseProperties(vq::PropertiesText(table), diag, again);
  if (survives && (!read || again != table)) std::abort();
  return 0;
}
