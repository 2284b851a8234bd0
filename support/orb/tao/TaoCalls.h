// What this library holds each call of TAO's to: its time, how often it is sent, that it does not
// go unencrypted, and that its reply has been read.
//
//   CORBA::ORB_var orb = CORBA::ORB_init(argc, argv);
//   CheckCalls(orb.in(), Unencrypted::kLookUps);
//
// TAO reads nothing of a reply whose status is none of the known ones, and returns as if all were
// well: results are 0, texts and sequences are null pointers. Whoever sends such a reply would
// crash the client.
#ifndef VQ_SUPPORT_ORB_TAO_TAOCALLS_H
#define VQ_SUPPORT_ORB_TAO_TAOCALLS_H

#include <string>

#include <support/orb/Corba.h>

namespace vq::orb {

// What an ORB may call at the naming service unencrypted, though TLS is on.
enum class Unencrypted { kLookUps, kAnyCall };

// Called once, before the ORB's first call. Raises CORBA::SystemException.
void CheckCalls(CORBA::ORB_ptr orb, Unencrypted allowed);

// For the connector, on the thread of the call: its request goes to `place` ("host:port")
// unencrypted, though TLS is on; empty when it does not.
void NoteUnencrypted(const std::string& place);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOCALLS_H
