// A table of names and their numbers, such as those of an enum.
//
//   TString2Enum colours;
//   colours.enum_register("RED", 1);
//   colours.enum_lookup("RED");  // 1
//   colours.enum_lookup("red");  // -1, not found: names are case sensitive
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H
#define VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <support/Export.h>

// Maps names to numbers. Names are compared byte by byte, up to their first zero byte.
class VQ_CLIENT_COMMON_API TString2Enum {
 public:
  // Stores `value` under `name`, and replaces an earlier value. Returns 1; 0, and stores nothing,
  // for the value -1.
  int enum_register(std::string name, int value);

  // The value of `name`; -1 when there is none.
  int enum_lookup(const std::string& name) const;

 private:
  std::map<std::string, std::int32_t, std::less<>> m_values;
};

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TSTRING2ENUM_H
