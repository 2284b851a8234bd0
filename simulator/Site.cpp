#include <simulator/Site.h>

#include <algorithm>

namespace vq::sim {

const User* Site::FindUser(const std::string& name) const {
  const auto found = users.find(name);
  return found == users.end() ? nullptr : &found->second;
}

const Parameter* Site::FindParameter(const std::string& section, const std::string& name) const {
  const auto names = parameters.find(section);
  if (names == parameters.end()) return nullptr;
  const auto found = names->second.find(name);
  return found == names->second.end() ? nullptr : &found->second;
}

bool Site::EncodesPasswords() const {
  const Parameter* parameter = FindParameter("general", "PasswordEncode");
  return parameter == nullptr || parameter->fail || parameter->userNotFound ||
         parameter->value != "0";
}

int Site::PrivilegeLevel(const User& user, int privilege) const {
  const auto own = user.rights.privileges.find(privilege);
  if (own != user.rights.privileges.end()) return own->second;
  int level = 0;
  for (const std::string& name : user.groups) {
    const Rights& rights = groups.at(name).rights;
    const auto found = rights.privileges.find(privilege);
    if (found != rights.privileges.end()) level = std::max(level, found->second);
  }
  return level;
}

std::vector<Grant> Site::GroupGrants(const User& user, GrantKind kind) const {
  std::vector<Grant> all;
  for (const std::string& name : user.groups) {
    const auto& grants = groups.at(name).rights.grants[static_cast<std::size_t>(kind)];
    all.insert(all.end(), grants.begin(), grants.end());
  }
  return all;
}

}  // namespace vq::sim
