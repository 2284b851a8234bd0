#include <vq_client_common/datacenters/TString2Enum.h>

#include <string_view>
#include <utility>

namespace {

constexpr int kNotFound = -1;

// The part of a name before its first zero byte.
std::string_view Significant(std::string_view name) {
  return name.substr(0, name.find('\0'));
}

}  // namespace

int TString2Enum::enum_register(std::string name, int value) {
  if (value == kNotFound) return 0;
  name.resize(Significant(name).size());
  m_values.insert_or_assign(std::move(name), value);
  return 1;
}

int TString2Enum::enum_lookup(const std::string& name) const {
  const auto found = m_values.find(Significant(name));
  return found != m_values.end() ? found->second : kNotFound;
}
