// All addresses of a reference, where omniORB goes by its first IIOP profile alone.
//
// A server on a host with two network cards may put each address into a profile of its own. Here
// the addresses of the further profiles are added to those of the first, as long as they lead to
// the same object. It applies to every reference that the process gets: from a text, in a reply, in
// a forward. The interceptor is omniORB's internal interface. Tried with omniORB 4.2.5 and 4.3.3.
//
//   CORBA::ORB_init(...);
//   OmniOrbProfiles::Install();
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H

namespace vq::orb {

class OmniOrbProfiles {
 public:
  // After each ORB_init, before the first reference is made, by the thread that starts the ORB.
  static void Install();
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H
