// One address of this host that a client can publish to servers.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H

#include <cstdint>
#include <string>

// One address of this host. The library sets the two texts; the other members are for the client
// program.
struct IPAddressInfo {
  std::string ipAddress;       // such as "10.1.2.3"
  std::string hostName;        // from the resolver; the address again where it has no name
  bool isTested = false;       // set by the client program: it has made a trial
  std::int32_t roundTrip = 0;  // set by the client program: the duration in milliseconds
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H
