// Makes omniORB use all addresses of a reference, not only those of its first IIOP profile.
//
// A server on a host with two network cards may put each address into its own profile. The
// addresses of further profiles are added to those of the first if they belong to the same object.
// This applies to every reference that the process receives: as text, in a reply, in a forward. The
// interceptor is an internal interface of omniORB. Tried with omniORB 4.2.5 and 4.3.3.
//
//   CORBA::ORB_init(...);
//   InstallProfiles();
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H

#include <string_view>

#include <omniORB4/CORBA.h>
#include <omniORB4/giopEndpoint.h>

namespace vq::orb {

// Call it after each ORB_init and before the first reference is made, on the thread that starts the
// ORB.
void InstallProfiles();

// Removes the addresses ("giop:tcp:host.site:5000") for which `isUnwanted` returns true.
void RemoveAddresses(omni::giopAddressList& addresses, bool (*isUnwanted)(std::string_view));

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBPROFILES_H
