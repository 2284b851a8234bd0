#include <support/foundations/IniFile.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>

#include <ini.h>

#include <support/foundations/Locations.h>
#include <support/os_toolkit/Atoi.h>

namespace vq {

namespace {

std::string Folded(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return result;
}

// Passes the parser one complete line. Its own reader splits a long line and uses the first half as
// the value, so a line that does not fit is replaced by one that is no setting.
char* NextLine(char* buffer, int size, void* stream) {
  std::string line;
  if (size < 2 || !std::getline(*static_cast<std::istream*>(stream), line)) return nullptr;
  if (line.size() + 2 >= static_cast<std::size_t>(size)) line = "?";
  std::memcpy(buffer, line.c_str(), line.size() + 1);
  return buffer;
}

}  // namespace

IniFile::IniFile(const std::string& path) {
  std::ifstream stream(path);
  m_firstBadLine = std::max(
      0, ini_parse_stream(&NextLine, static_cast<std::istream*>(&stream), &IniFile::Add, this));
}

int IniFile::Add(void* self, const char* section, const char* name, const char* value) {
  auto& values = static_cast<IniFile*>(self)->m_values;
  const auto [at, isNew] = values.try_emplace({Folded(section), Folded(name)}, value);
  if (!isNew) at->second.append("\n").append(value);
  return 1;
}

std::optional<std::string> IniFile::Get(std::string_view section, std::string_view name) const {
  const auto found = m_values.find({Folded(section), Folded(name)});
  if (found == m_values.end()) return std::nullopt;
  return found->second;
}

}  // namespace vq

bool GetProfileIntFromCurrentUserOrLocalMachine(const std::string& location,
                                                const std::string& section, const std::string& key,
                                                int& value, bool userFirst) {
  std::array directories{vq::GetUserSettingsDirectory(), vq::HostSettingsDirectory()};
  if (!userFirst) std::swap(directories[0], directories[1]);
  const std::string inside = location.empty() ? "" : location + "/";
  for (const std::string& directory : directories) {
    if (directory.empty()) continue;
    const auto text = vq::IniFile(directory + inside + "profile.ini").Get(section, key);
    if (const auto number = vq::WholeNumber<int>(text.value_or(""))) {
      value = *number;
      return true;
    }
  }
  return false;
}
