#include <support/foundations/ProductVersion.h>

#include <ctime>
#include <mutex>
#include <optional>
#include <string_view>

#include <sys/stat.h>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/IniFile.h>
#include <support/foundations/Locations.h>
#include <support/os_toolkit/os_tokenizer.h>

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

// A look-up and the state of the file: it differs whenever the file was written or replaced.
struct Key {
  std::string path, product;
  dev_t device;
  ino_t file;
  time_t seconds;
  long nanoseconds;
  bool operator==(const Key&) const = default;
};

// Nothing for a missing file, and for one that changed within the last two seconds: another change
// in the same tick of the file system's clock would not show.
std::optional<Key> KeyOf(const std::string& path, const std::string& product) {
  struct stat file {};
  if (::stat(path.c_str(), &file) != 0) return {};
  if (std::time(nullptr) - file.st_ctim.tv_sec <= 2) return {};
  return Key{path, product, file.st_dev, file.st_ino, file.st_ctim.tv_sec, file.st_ctim.tv_nsec};
}

// The last look-up, kept so that a login reads the file only when it has changed.
struct LookUp {
  std::optional<Key> key{};
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

std::string vq::InstalledProductsFile() {
  return GetVQRootLocation() + "installed-products.ini";
}

int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches) {
  static std::mutex mutex;
  static auto& last = *new LookUp;  // never destroyed
  const std::string path = vq::InstalledProductsFile();
  const std::lock_guard lock(mutex);
  const std::optional<Key> key = KeyOf(path, product);
  if (!key || key != last.key) last = LookUpProduct(path, product);
  if (last.version.empty()) return 0;
  version = last.version;
  patches = last.patches;
  return 1;
}
