// The one-line cause of the last failed remote call, for a person: what an ORB's exception cannot
// carry ("unknown CA", "connection refused at host:port").
//
//   vq::orb::BeginCall();
//   try {
//     ORBCommon<1>::Get()->Bind("central", "GSR", "UsersManager", true);
//   } catch (const CORBA::SystemException&) {
//     Show(vq::orb::TakeCause());   // may be empty
//   }
#ifndef VQ_SUPPORT_ORB_FAILURECAUSE_H
#define VQ_SUPPORT_ORB_FAILURECAUSE_H

#include <string>
#include <string_view>

#include <support/orb/CallDeadline.h>
#include <support/orb/Corba.h>

namespace vq::orb {

// Keeps the cause for the calling thread, which is the one that makes the call. The latest wins.
// One line without a closing full stop; no secret in it. What to do next, if it is known, follows a
// semicolon.
void NoteCause(std::string_view cause) noexcept;

// Forgets the cause of an earlier call. When the thread's deadline (CallDeadline) has passed, no
// call is sent: that is the cause, unless one was noted within this deadline, by the call that used
// up the time.
void BeginCall();

// The cause noted last on this thread, which is forgotten; empty when none was noted since.
std::string TakeCause() noexcept;

// Keeps the address ("host:port") that a call of the calling thread uses, for NoteFailedCall: it
// need not be the first one of the call's reference.
void NotePeer(std::string_view address) noexcept;
std::string NotedPeer();  // empty when none was noted for the call

// Keeps until when the calling thread's call may last, for NoteFailedCall.
void NoteCallEnd(CallDeadline::Clock::time_point end) noexcept;

// Finds out why a remote call failed and notes that. Does nothing when a cause has been noted since
// the call began, which is more precise. Where no connection came about it looks the host up and
// tries to connect once, for a second at most and within the time of the call; `target` may be nil.
// Without a better cause, the exception's own text is noted.
void NoteFailedCall(const CORBA::Exception& exception, CORBA::Object_ptr target) noexcept;

// Whether the answer to the thread's last call was that there is no such object, as from a server
// that was started anew.
bool WasObjectUnknown() noexcept;

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_FAILURECAUSE_H
