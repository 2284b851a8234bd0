// The form of the client properties file: the text of a table, and a table from a file.
//
//   std::string text = vq::PropertiesText({{"Width", "800"}});
//   // "<Properties>\n\t<Width>800</Width>\n</Properties>"
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_INTERNAL_PROPERTIESFORMAT_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_INTERNAL_PROPERTIESFORMAT_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

class TDiagFunc;

namespace vq {

using PropertiesTable = std::map<std::string, std::string>;

// Files above this size are refused: far more than settings need, and parsing takes memory many
// times as large.
inline constexpr std::size_t kLargestPropertiesFile = std::size_t{64} << 20U;

// The whole text but the line end that closes the file. Safe on any thread.
std::string PropertiesText(const PropertiesTable& table);

// Adds the entries of the file at `path` to `table`, where an entry that is there already stays.
// Returns false, and logs why through `diag`, when the file can't be read or is malformed; throws,
// after logging, what is no exception of XML or DOM. One thread at a time for a table.
bool ReadProperties(const std::string& path, const TDiagFunc& diag, PropertiesTable& table);

// The same from the content of a file.
bool ParseProperties(std::string_view content, const TDiagFunc& diag, PropertiesTable& table);

// A text of the XML library in the encoding of the process's locale; null gives the empty text. The
// XML library must be started, but for texts of ASCII alone.
std::string LocalText(const char16_t* text);

}  // namespace vq

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_INTERNAL_PROPERTIESFORMAT_H
