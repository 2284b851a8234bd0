// One address of this machine under which a server may reach it.
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H

#include <cstdint>
#include <string>

// Thread contract: a plain value. The library fills the two texts; the two last members are for
// the client program, to note what it found out about the address.
struct IPAddressInfo {
  std::string ipAddress;       // in digits and points
  std::string hostName;        // as the resolver knows it; the address again where it does not
  bool isTested = false;       // the client's note: a trial was made
  std::int32_t roundTrip = 0;  // the client's note: what the trial took, in milliseconds
};

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_IPADDRESSINFO_H
