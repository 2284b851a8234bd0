// The one-line cause of the last failed remote call, for a person: what an ORB's exception cannot
// carry ("unknown CA", "connection refused at host:port").
//
//   vq::orb::TakeCause();                                // forget what earlier calls left
//   try { server->CRB_Ping(); } catch (const CORBA::SystemException&) {
//     Show(vq::orb::TakeCause());                        // may be empty
//   }
#ifndef VQ_SUPPORT_ORB_FAILURECAUSE_H
#define VQ_SUPPORT_ORB_FAILURECAUSE_H

#include <string>

namespace vq::orb {

// Keeps the cause for the calling thread, which is the one that makes the call. The latest wins.
// One line without a closing full stop; no secret in it.
void NoteCause(std::string cause) noexcept;

// The cause noted last on this thread, which is forgotten; empty when none was noted since.
std::string TakeCause() noexcept;

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_FAILURECAUSE_H
