#include <support/foundations/ProductVersion.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <mutex>
#include <string_view>

#include <sys/stat.h>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>

namespace {

TDiagRegister diagModule("ProductVersion");

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

// What tells one state of a file from another.
std::array<std::int64_t, 7> StateOf(const struct stat& file) {
  return {static_cast<std::int64_t>(file.st_dev),
          static_cast<std::int64_t>(file.st_ino),
          file.st_size,
          file.st_mtim.tv_sec,
          file.st_mtim.tv_nsec,
          file.st_ctim.tv_sec,
          file.st_ctim.tv_nsec};
}

// What the file said of the product that was looked up last, so that a login reads it only when it
// has changed. A file that changed within the last two seconds is read again: another change in the
// same tick of the file system's clock would not show.
class LastProduct {
 public:
  // Never destroyed.
  static LastProduct& Instance() {
    static auto* const last = new LastProduct;
    return *last;
  }

  bool Get(const std::string& path, const std::string& product, std::string& version,
           std::list<std::string>& patches) {
    const std::lock_guard lock(m_mutex);
    struct stat file {};
    const bool there = ::stat(path.c_str(), &file) == 0;
    if (!there || !m_settled || product != m_product || path != m_path ||
        StateOf(file) != m_state) {
      const vq::IniFile content(path);
      if (content.FirstBadLine() != 0) {
        const TDiagFunc diag(diagModule, "GetProductVersion");
        VQ_LOG(diag, 1) << "Line " << content.FirstBadLine() << " of " << path
                        << " is left out: it is no setting or has more than "
                        << vq::IniFile::kLongestLine << " bytes";
      }
      m_version = content.Get(product, "version").value_or("");
      m_patches = SplitPatches(content.Get(product, "patches").value_or(""));
      m_product = product;
      m_path = path;
      m_state = StateOf(file);
      m_settled = there && std::time(nullptr) - file.st_ctim.tv_sec > 2;
    }
    if (m_version.empty()) return false;
    version = m_version;
    patches = m_patches;
    return true;
  }

 private:
  std::mutex m_mutex;
  std::string m_path;
  std::string m_product;
  std::array<std::int64_t, 7> m_state{};
  bool m_settled = false;
  std::string m_version;
  std::list<std::string> m_patches;
};

}  // namespace

int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches) {
  const std::string path = GetVQRootLocation() + "installed-products.ini";
  return LastProduct::Instance().Get(path, product, version, patches) ? 1 : 0;
}
