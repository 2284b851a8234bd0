#include <support/foundations/ProfileSettings.h>

#include <array>
#include <charconv>
#include <utility>

#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>
#include <support/foundations/Platform.h>

namespace {

bool ReadWholeNumber(const std::string& text, int& value) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end) return false;
  value = number;
  return true;
}

}  // namespace

bool GetProfileIntFromCurrentUserOrLocalMachine(const std::string& location,
                                                const std::string& section, const std::string& key,
                                                int& value, bool userFirst) {
  std::array directories{vq::GetUserSettingsDirectory(),
                         vq::Platform::Current().MachineSettingsDirectory()};
  if (!userFirst) std::swap(directories[0], directories[1]);
  const std::string inside = location.empty() ? "" : location + "/";
  for (const std::string& directory : directories) {
    if (directory.empty()) continue;
    const auto text = vq::IniFile(directory + inside + "profile.ini").Get(section, key);
    if (text && ReadWholeNumber(*text, value)) return true;
  }
  return false;
}
