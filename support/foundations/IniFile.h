// INI files: their reader, and the profile settings, which are stored in two of them.
//
//   ; a comment
//   [NFT]
//   version = 6.4.01
//   patches = PATCH.001, PATCH.002
//       PATCH.003                       ; an indented line continues the value before it
//
// Sections and names are compared without regard to the case of ASCII letters. Blanks around names
// and values do not count. A value ends before a blank that a semicolon follows.
#ifndef VQ_SUPPORT_FOUNDATIONS_INIFILE_H
#define VQ_SUPPORT_FOUNDATIONS_INIFILE_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

// Reads a whole decimal number from the profile settings, two files "profile.ini": the user's in
// vq::GetUserSettingsDirectory(), which a set-user-ID program does not read, and the host's in
// "/etc/vq/". True when one of them has it; `value` is then the number, and otherwise unchanged.
// With `userFirst` the user's value wins over the host's, without it the host's over the user's.
// `location` is a subdirectory of both directories; empty for none. A value that is not a whole
// number, or does not fit an int, counts as missing.
bool GetProfileIntFromCurrentUserOrLocalMachine(const std::string& location,
                                                const std::string& section, const std::string& key,
                                                int& value, bool userFirst);

namespace vq {

// The content of one file as it was when it was read. A line that is not of the form above, or has
// more than kLongestLine bytes, is left out; FirstBadLine returns its number.
class IniFile {
 public:
  // Bytes of a line: the size of the parser's buffer.
  static constexpr std::size_t kLongestLine = 197;

  // Reads the file at `path`; one that is missing or does not open reads as empty.
  explicit IniFile(const std::string& path);

  // The value, which may be empty; nothing when the section has no such name. A value of several
  // lines, and the values of a name that occurs more than once, are joined by a line end.
  std::optional<std::string> Get(std::string_view section, std::string_view name) const;

  // The number, from 1, of the first line that was left out; 0 when none was.
  int FirstBadLine() const { return m_firstBadLine; }

 private:
  static int Add(void* self, const char* section, const char* name, const char* value);

  std::map<std::pair<std::string, std::string>, std::string> m_values;
  int m_firstBadLine = 0;
};

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_INIFILE_H
