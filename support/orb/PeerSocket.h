// What a socket tells about its peer without a byte of it being taken.
//
//   vq::orb::WatchPeer(socket, settings);                      // once, when it is open
//   if (vq::orb::IsDead(socket, tls, false)) OpenAnother();   // before an idle one is used again
#ifndef VQ_SUPPORT_ORB_PEERSOCKET_H
#define VQ_SUPPORT_ORB_PEERSOCKET_H

#include <chrono>

namespace vq::orb {

// Whether the next bytes of a connection announce its end: a GIOP CloseConnection or an alert of
// TLS. They may as well be a call.
bool BeginsWithClose(int socket, bool tls);

// Whether the peer has closed an idle connection or lost it. On one that takes no calls nothing is
// due to arrive, so whatever has arrived announces its end or is of no use.
bool IsDead(int socket, bool tls, bool takesCalls);

// Lets the system probe a peer that is silent for `keepAlive`, and give it up after three probes;
// likewise a peer that leaves sent data unacknowledged. 0 leaves either as the system has it.
void WatchPeer(int socket, std::chrono::milliseconds keepAlive,
               std::chrono::milliseconds unacknowledged);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_PEERSOCKET_H
