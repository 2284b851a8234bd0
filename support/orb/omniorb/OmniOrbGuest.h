// What a user of the shared omniORB has to itself when another one was there before: the endpoints
// on which it listens, and the connections that are opened while it is there.
//
// omniORB keeps a connection until it was idle for minutes, or, bidirectional, for good, and opens
// its endpoints once for the whole process. A trial is to leave nothing behind. So it gets a
// listening server of its own inside omniORB, which takes its ports, its incoming connections and
// its threads with it; and notes are taken of the connections that this process opens meanwhile,
// which are then closed.
//
//   OmniOrbGuest::Install();  // once after each ORB_init
//   OmniOrbGuest guest;
//   guest.Listen({"giop:tcp::"});
//   guest.ListenAddresses();  // {"giop:tcp:10.0.0.1:40123", ...}
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H

#include <optional>
#include <string>
#include <vector>

#include <support/orb/omniorb/OmniOrbInternals.h>

namespace vq::orb {

// Thread contract: one guest at a time, on one thread, and no other call of the process under way
// during Listen and during the destructor. Outside of its life each new connection costs one load
// and one branch.
class OmniOrbGuest {
 public:
  static void Install();

  OmniOrbGuest();
  ~OmniOrbGuest();  // no call of the guest is under way
  OmniOrbGuest(const OmniOrbGuest&) = delete;
  OmniOrbGuest& operator=(const OmniOrbGuest&) = delete;

  // Opens endpoints in omniORB's own form. The root POA is there. Raises CORBA::INITIALIZE when one
  // cannot be opened.
  void Listen(const std::vector<std::string>& endpoints);
  // After Listen.
  const std::vector<std::string>& ListenAddresses() const { return m_server->Addresses(); }

 private:
  std::optional<ListeningServer> m_server;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H
