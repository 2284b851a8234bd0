#include <support/foundations/IniFile.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <fstream>
#include <mutex>

#include <sys/stat.h>

#include <fmt/format.h>
#include <ini.h>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/Locations.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>

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
// the value, so in place of a line that does not fit it gets one that is no setting either.
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

namespace {

TDiagRegister diagModule("ProductVersion");

std::list<std::string> SplitPatches(const std::string& text) {
  constexpr std::string_view kBlanks = " \t\r";
  std::list<std::string> patches;
  for (std::string patch : os_tokenizer(text, ",\n")) {  // a list may go over several lines
    patch.erase(0, patch.find_first_not_of(kBlanks));
    patch.erase(patch.find_last_not_of(kBlanks) + 1);
    if (!patch.empty()) patches.push_back(patch);
  }
  return patches;
}

// Identifies a look-up and the state of the file: it differs whenever the file was written or
// replaced. Empty for a missing file, and for one that changed within the last two seconds: another
// change in the same tick of the file system's clock would not show.
std::string KeyOf(const std::string& path, const std::string& product) {
  struct stat file {};
  if (::stat(path.c_str(), &file) != 0) return {};
  if (std::time(nullptr) - file.st_ctim.tv_sec <= 2) return {};
  return fmt::format("{}\n{}\n{} {} {}.{:09}", path, product, file.st_dev, file.st_ino,
                     file.st_ctim.tv_sec, file.st_ctim.tv_nsec);
}

// The last look-up, kept so that a login reads the file only when it has changed.
struct LookUp {
  std::string key;
  std::string version{};
  std::list<std::string> patches{};
};

LookUp LookUpProduct(const std::string& path, const std::string& product) {
  // Before the content is read: a file that is replaced in between is read again next time.
  LookUp found{KeyOf(path, product)};
  const vq::IniFile content(path);
  if (content.FirstBadLine() != 0) {
    const TDiagFunc diag(diagModule, "GetProductVersion");
    VQ_LOG(diag, 1) << "Line " << content.FirstBadLine() << " of " << path
                    << " is left out: it is no setting or has more than "
                    << vq::IniFile::kLongestLine << " bytes";
  }
  found.version = content.Get(product, "version").value_or("");
  found.patches = SplitPatches(content.Get(product, "patches").value_or(""));
  return found;
}

}  // namespace

int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches) {
  static std::mutex mutex;
  static auto& last = *new LookUp;  // never destroyed
  const std::string path = GetVQRootLocation() + "installed-products.ini";
  const std::lock_guard lock(mutex);
  const std::string key = KeyOf(path, product);
  if (key.empty() || key != last.key) last = LookUpProduct(path, product);
  if (last.version.empty()) return 0;
  version = last.version;
  patches = last.patches;
  return 1;
}

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
