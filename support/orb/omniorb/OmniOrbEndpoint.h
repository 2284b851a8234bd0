// omniORB endpoints that accept checked connections (OmniOrbConnection.h).
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBENDPOINT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBENDPOINT_H

#include <string>

namespace vq::orb {

// The name of one at one of omniORB's endpoints ("giop:tcp::").
std::string CheckedEndpoint(const std::string& endpoint);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBENDPOINT_H
