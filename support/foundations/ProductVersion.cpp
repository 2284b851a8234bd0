#include <support/foundations/ProductVersion.h>

#include <algorithm>
#include <string_view>

#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>

namespace {

std::list<std::string> SplitPatches(std::string_view text) {
  constexpr std::string_view kSeparators = ",\n";  // a list may go over several lines
  constexpr std::string_view kBlanks = " \t\r";
  std::list<std::string> patches;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kSeparators), text.size());
    std::string_view patch = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    patch.remove_prefix(std::min(patch.find_first_not_of(kBlanks), patch.size()));
    patch.remove_suffix(patch.size() - (patch.find_last_not_of(kBlanks) + 1));
    if (!patch.empty()) patches.emplace_back(patch);
  }
  return patches;
}

}  // namespace

int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches) {
  const vq::IniFile file(GetVQRootLocation() + "installed-products.ini");
  const auto found = file.Get(product, "version");
  if (!found || found->empty()) return 0;
  version = *found;
  patches = SplitPatches(file.Get(product, "patches").value_or(""));
  return 1;
}
