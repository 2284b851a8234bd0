// Guards for what omniORB reads and writes: a failed assertion of omniORB fails the call instead of
// ending the process, and no list makes it allocate all memory.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBMESSAGES_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBMESSAGES_H

#include <omniORB4/CORBA.h>

namespace vq::orb {

// After ORB_init; only the first call has an effect.
void GuardMessages();

// Logs a failed assertion of omniORB.
void Report(const omniORB::fatalException& exception);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBMESSAGES_H
