// The settings as options of omniORB: a pure function, which does not need omniORB.
//
//   OmniOrbOptions(settings) -> {{"giopMaxMsgSize", "268435456"}, ...}
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBOPTIONS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBOPTIONS_H

#include <string>
#include <utility>
#include <vector>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

using OmniOrbOption = std::pair<std::string, std::string>;

// The beginnings of an address.
inline constexpr const char* kTcp = "giop:tcp:";
inline constexpr const char* kTls = "giop:ssl:";

// Always the complete list: omniORB keeps the old value of a number that a later start omits.
std::vector<OmniOrbOption> OmniOrbOptions(const OrbSettings& settings);

// Where to listen: "giop:tcp:host:port", or with a certificate "giop:ssl:host:port".
std::string OmniOrbEndpoint(const OrbSettings& settings);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBOPTIONS_H
