// Converts between the wire's types and the standard library's.
#ifndef VQ_SIMULATOR_WIRE_H
#define VQ_SIMULATOR_WIRE_H

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <simulator/World.h>
#include <support/orb/Corba.h>
#include <vq_idl/SharedTypesC.h>

namespace vq::sim {

// A copy for an out argument or a result; the ORB frees it.
inline char* Dup(const std::string& text) {
  return CORBA::string_dup(text.c_str());
}

// A list of strings for the log; one that is too long ends with their number.
inline nlohmann::ordered_json ToJson(const stringSeq& texts) {
  auto json = nlohmann::ordered_json::array();
  std::size_t left = kLongestLogged;
  for (CORBA::ULong i = 0; i < texts.length(); ++i) {
    const std::string_view text = texts[i].in();
    if (text.size() >= left) {
      json.push_back("... (" + std::to_string(texts.length()) + " texts)");
      break;
    }
    json.push_back(text);
    left -= text.size() + 1;
  }
  return json;
}

// The name of the session's user. Raises USER_NOT_FOUND when there is no such session.
inline std::string UserOf(World& world, const char* userId) {
  const auto user = world.sessions.UserOf(userId);
  if (!user) throw USER_NOT_FOUND("The session is not known.", "No such user id");
  return *user;
}

// The user of that name. Raises USER_NOT_FOUND when the site has none.
inline const User& Known(const Site& site, const std::string& name) {
  const User* user = site.FindUser(name);
  if (user == nullptr) throw USER_NOT_FOUND("The user is not known.", "No such user");
  return *user;
}

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_WIRE_H
