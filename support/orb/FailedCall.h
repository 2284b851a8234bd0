// Finds out why a remote call failed, after it did, and keeps that as the cause (FailureCause.h).
#ifndef VQ_SUPPORT_ORB_FAILEDCALL_H
#define VQ_SUPPORT_ORB_FAILEDCALL_H

#include <support/orb/Corba.h>

namespace vq::orb {

// Does nothing when a cause has been noted since the call began: whoever noted it knew more. Where
// no connection came about it looks the host up and tries to connect once, for a second at most;
// `target` may be nil. What stays unknown is told in the words of the exception.
void NoteFailedCall(const CORBA::Exception& exception, CORBA::Object_ptr target) noexcept;

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_FAILEDCALL_H
