#include <vq_client_common/datacenters/TString2Enum.h>

int TString2Enum::enum_register(std::string name, int value) {
  if (value == -1) return 0;
  m_values.insert_or_assign(name.c_str(), value);  // up to its first zero byte
  return 1;
}

int TString2Enum::enum_lookup(const std::string& name) const {
  const auto found = m_values.find(name.c_str());
  return found != m_values.end() ? found->second : -1;
}
