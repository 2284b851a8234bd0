// The versions of the installed products, which an INI file (IniFile.h) lists.
//
//   [NFT]
//   version = 6.4.01
//   patches = PATCH.001, PATCH.002
//       PATCH.003
//
//   std::string version;
//   std::list<std::string> patches;
//   if (GetProductVersion("NFT", version, patches) == 1) Show(version);   // "6.4.01"
#ifndef VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H
#define VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H

#include <list>
#include <string>

// Looks `product` up in vq::InstalledProductsFile(), which has one section per product. Found:
// returns 1, `version` is its version and `patches` its patches in the order of the file, without
// blanks around them; the list may be empty. Returns 0, with both unchanged, without such a file or
// product, or for a product without a version. A bad line of the file is ignored; a line of the log
// at level 1 names the first one. The file is read again only when it may have changed.
//
// May be called from any thread.
int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches);

namespace vq {

// The path of the list: "installed-products.ini" under the root (GetVQRootLocation).
std::string InstalledProductsFile();

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H
