// The part of the shared omniORB that belongs to its second user, such as a callback trial: the
// endpoint on which it listens, and the connections that the process opens during its life.
//
// omniORB closes a connection minutes after its last use, and a bidirectional one only when the ORB
// ends; it opens its endpoints once for the whole process. A trial must leave nothing behind. So it
// has its own listening server inside omniORB, whose end closes its ports and its incoming
// connections and ends its threads. The connections that the process opens meanwhile are marked,
// and closed at the end.
//
//   OmniOrbGuest::Install();  // once after each ORB_init
//   OmniOrbGuest guest;
//   guest.Listen("giop:tcp::");  // {"giop:tcp:10.0.0.1:40123", ...}
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H

#include <optional>
#include <string>
#include <vector>

#include <support/orb/omniorb/OmniOrbInternals.h>

namespace vq::orb {

// Thread safety: one guest at a time, on one thread. No other call of the process may be in
// progress during Listen and during the destructor.
class OmniOrbGuest {
 public:
  static void Install();

  OmniOrbGuest();
  ~OmniOrbGuest();  // no call of the guest may be in progress
  OmniOrbGuest(const OmniOrbGuest&) = delete;
  OmniOrbGuest& operator=(const OmniOrbGuest&) = delete;

  // Opens an endpoint, given in omniORB's form, and returns its addresses. A further call returns
  // those of the first. The root POA must exist. Raises CORBA::INITIALIZE when the endpoint cannot
  // be opened.
  const std::vector<std::string>& Listen(const std::string& endpoint);

 private:
  std::optional<ListeningServer> m_server;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBGUEST_H
