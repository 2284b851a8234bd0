// A registry of names with the numbers they stand for, such as the enumerators of an enum.
//
//   TString2Enum colours;
//   colours.enum_register("RED", 1);
//   colours.enum_lookup("RED");  // 1
//   colours.enum_lookup("red");  // -1: not found
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H
#define VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <support/Export.h>

// Names are compared byte by byte, case and all, up to their first zero byte. Copies are
// independent of each other.
//
// Thread contract: lookups side by side, or one registration alone.
class VQ_CLIENT_COMMON_API TString2Enum {
 public:
  // Stores `value` under `name` in place of any value that the name had, and returns 1. The value
  // -1 means "not found": it is refused with 0, and the name keeps what it had.
  int enum_register(std::string name, int value);

  // The value stored under `name`, or -1.
  int enum_lookup(const std::string& name) const;

 private:
  std::map<std::string, std::int32_t, std::less<>> m_values;
};

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H
