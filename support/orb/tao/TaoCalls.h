// The rules for each call through TAO: its deadline, how often it is sent, whether it may go
// unencrypted, and how its reply is read.
//
//   AddReplyWait(services, settings);                        // before ORB_init
//   CORBA::ORB_var orb = CORBA::ORB_init(argc, argv);
//   CheckCalls(orb.in(), Unencrypted::kLookUps);
//
// TAO by itself counts the time anew with each piece of a reply. It ignores a reply of unknown
// status and returns as if the call had succeeded: results are 0, strings and sequences are null
// pointers, and the client would crash.
#ifndef VQ_SUPPORT_ORB_TAO_TAOCALLS_H
#define VQ_SUPPORT_ORB_TAO_TAOCALLS_H

#include <string>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

class ACE_Service_Gestalt;

namespace vq::orb {

// What an ORB may call at the naming service unencrypted, though TLS is on.
enum class Unencrypted { kLookUps, kAnyCall };

// While it exists this thread runs no servant: calls that arrive on it are refused with TRANSIENT.
// A servant that needs a lock of the waiting caller would wait for ever, and a peer could nest
// servants until the stack overflows.
class NoServants {
 public:
  NoServants();
  ~NoServants();
  NoServants(const NoServants&) = delete;
  NoServants& operator=(const NoServants&) = delete;

 private:
  const bool m_before;
};

// Makes the thread of a call read the reply until the call's deadline, up to -ORBMaxMessageSize.
// With bidirectional IIOP the ORB's threads read, and this thread where none of them is free.
void AddReplyWait(ACE_Service_Gestalt& services, const OrbSettings& settings);

// Called once, before the ORB's first call. Raises CORBA::SystemException.
void CheckCalls(CORBA::ORB_ptr orb, Unencrypted allowed);

// For the connector, on the thread of the call: its request goes to `place` ("host:port")
// unencrypted, though TLS is on; empty when it does not. `isToNaming`: to the object of the naming
// service's own reference.
void NoteUnencrypted(const std::string& place, bool isToNaming = false);

// Where this thread is reading a reply: waits until bytes of it arrive or the call's deadline has
// passed, which it returns as false. Elsewhere it returns true at once.
bool AwaitReplyBytes(int socket);

// The call's reply, or what came in its place, was larger than -ORBMaxMessageSize.
bool IsTooLarge(const CORBA::SystemException& exception);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOCALLS_H
