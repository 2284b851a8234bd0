// Checks the state of a connection without reading from its socket.
//
//   vq::orb::WatchPeer(socket, settings);                      // once, when it is open
//   if (vq::orb::IsDead(socket, tls, false)) OpenAnother();   // before an idle one is used again
#ifndef VQ_SUPPORT_ORB_PEERSOCKET_H
#define VQ_SUPPORT_ORB_PEERSOCKET_H

#include <chrono>

namespace vq::orb {

// Whether the next bytes of a connection announce its end: a GIOP CloseConnection or a TLS alert.
// Otherwise they may be a call.
bool BeginsWithClose(int socket, bool tls);

// Whether the peer has closed an idle connection or lost it. On one that takes no calls no data is
// expected, so any data announces its end or is of no use. `isWithinMessage`: the next bytes are
// the content of a message that has been received in part.
bool IsDead(int socket, bool tls, bool takesCalls, bool isWithinMessage = false);

// Has the system probe a peer that is silent for `keepAlive`, and drop the connection after three
// probes; likewise for a peer that leaves sent data unacknowledged. 0 keeps the system's default.
void WatchPeer(int socket, std::chrono::milliseconds keepAlive,
               std::chrono::milliseconds unacknowledged);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_PEERSOCKET_H
