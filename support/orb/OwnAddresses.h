// The addresses of this host's network interfaces.
//
//   std::vector<vq::orb::OwnAddress> addresses;
//   if (const int error = vq::orb::FindOwnAddresses(addresses)) ...
#ifndef VQ_SUPPORT_ORB_OWNADDRESSES_H
#define VQ_SUPPORT_ORB_OWNADDRESSES_H

#include <string>
#include <string_view>
#include <vector>

namespace vq::orb {

struct OwnAddress {
  std::string text;         // "10.1.2.3"
  bool isLoopback = false;  // 127.0.0.1, or ::1
};

// Appends the addresses in the system's order. Returns 0, or the errno of a failure, which appends
// nothing.
int FindOwnAddresses(std::vector<OwnAddress>& addresses);

// The resolver's name for the address; the address itself when it has none.
std::string HostNameOf(const std::string& address);

// The first address that begins with `mask`; empty when there is none. An empty mask fits every
// address but the loopback one.
std::string AddressByMask(const std::vector<OwnAddress>& addresses, std::string_view mask);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OWNADDRESSES_H
