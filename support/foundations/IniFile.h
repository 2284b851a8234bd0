// A settings file of sections with names and values.
//
//   ; a comment
//   [NFT]
//   version = 6.4.01
//   patches = PATCH.001, PATCH.002
//       PATCH.003                       ; an indented line continues the value before it
//
// Sections and names are told apart without regard to the case of ASCII letters. Blanks around
// names and values do not count. A value ends before a blank that a semicolon follows.
#ifndef VQ_SUPPORT_FOUNDATIONS_INIFILE_H
#define VQ_SUPPORT_FOUNDATIONS_INIFILE_H

#include <cstddef>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vq {

// The content of one file as it was when it was read. A line that is not of the form above, or has
// more than kLongestLine bytes, is left out alone; FirstBadLine tells which.
class IniFile {
 public:
  // Bytes of a line: what the parser's buffer takes.
  static constexpr std::size_t kLongestLine = 197;

  // Reads the file at `path`; one that is missing or does not open reads as empty.
  explicit IniFile(const std::string& path);
  explicit IniFile(std::istream& stream);

  // The value, which may be empty; nothing when the section has no such name. A value of several
  // lines, and the values of a name that occurs more than once, are joined by a line end.
  std::optional<std::string> Get(std::string_view section, std::string_view name) const;

  // The number, from 1, of the first line that was left out; 0 when none was.
  int FirstBadLine() const { return m_firstBadLine; }

 private:
  void Read(std::istream& stream);
  static int Add(void* self, const char* section, const char* name, const char* value);

  std::map<std::pair<std::string, std::string>, std::string> m_values;
  int m_firstBadLine = 0;
};

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_INIFILE_H
