#include <support/foundations/IniFile.h>

#include <algorithm>
#include <cstring>
#include <fstream>

#include <ini.h>

namespace vq {

namespace {

std::string Folded(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return result;
}

struct Lines {
  std::istream& stream;
  int number = 0;
  int firstTooLong = 0;
};

// Hands the parser one whole line. Its own reader cuts a long line in two and takes the first half
// for the value, so a line that does not fit is handed over as an empty one.
char* NextLine(char* buffer, int size, void* context) {
  auto& lines = *static_cast<Lines*>(context);
  std::string line;
  if (size < 2 || !std::getline(lines.stream, line)) return nullptr;
  ++lines.number;
  if (line.size() + 2 >= static_cast<std::size_t>(size)) {
    if (lines.firstTooLong == 0) lines.firstTooLong = lines.number;
    line.clear();
  }
  std::memcpy(buffer, line.c_str(), line.size() + 1);
  return buffer;
}

}  // namespace

IniFile::IniFile(const std::string& path) {
  std::ifstream stream(path);
  Read(stream);
}

IniFile::IniFile(std::istream& stream) {
  Read(stream);
}

void IniFile::Read(std::istream& stream) {
  Lines lines{stream};
  m_firstBadLine = std::max(0, ini_parse_stream(&NextLine, &lines, &IniFile::Add, this));
  if (lines.firstTooLong != 0 && (m_firstBadLine == 0 || lines.firstTooLong < m_firstBadLine)) {
    m_firstBadLine = lines.firstTooLong;
  }
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
