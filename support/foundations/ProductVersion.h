// Which version of a product is installed here.
//
// The file "installed-products.ini" under the root (GetVQRootLocation) has one section a product:
//
//   [NFT]
//   version = 6.4.01
//   patches = PATCH.001, PATCH.002
#ifndef VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H
#define VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H

#include <list>
#include <string>

// A list of patches may continue on indented lines. A line that is no setting or has more than 197
// bytes is left out, and a line at level 1 names the first such line.
//
// Looks `product` up. Found: returns 1, `version` is its version and `patches` its patches in the
// order of the file, blanks around them dropped; none leaves an empty list. Otherwise - no file, no
// such product, or one without a version - returns 0 and leaves both as they are.
int GetProductVersion(const std::string& product, std::string& version,
                      std::list<std::string>& patches);

#endif  // VQ_SUPPORT_FOUNDATIONS_PRODUCTVERSION_H
