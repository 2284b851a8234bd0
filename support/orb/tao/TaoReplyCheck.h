// Refuses replies that TAO takes for successful ones without having read them.
//
// A reply tells by a number how the call went. For a number that is none of the known ones TAO
// reads nothing and returns as if all were well: results are 0, texts and sequences are null
// pointers. Whoever sends such a reply would crash the client.
//
//   CORBA::ORB_var orb = CORBA::ORB_init(argc, argv);
//   CheckReplies(orb.in());
#ifndef VQ_SUPPORT_ORB_TAO_TAOREPLYCHECK_H
#define VQ_SUPPORT_ORB_TAO_TAOREPLYCHECK_H

#include <support/orb/Corba.h>

namespace vq::orb {

// Lets the ORB raise CORBA::MARSHAL for such a reply. Called once, before the ORB's first call.
// Raises CORBA::SystemException.
void CheckReplies(CORBA::ORB_ptr orb);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOREPLYCHECK_H
