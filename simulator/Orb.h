// What the simulator needs of an ORB beyond its start (support/orb/OrbServer.h): POAs for its
// servants, and a hand on the connections.
//
//   const auto server = vq::orb::StartServerOrb(options);
//   PortableServer::POA_var poa = CreatePoa(server->Orb(), "GSR", options);
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_ORB_H
#define VQ_SIMULATOR_ORB_H

#include <support/orb/Corba.h>
#include <support/orb/OrbServer.h>

namespace vq::sim {

using OrbOptions = vq::orb::ServerOptions;

// The exit status of a process that died because a fault told it to.
inline constexpr int kDiedOnDemand = 86;

// A POA below the root, with its manager active. `policies` are added to what the options ask for.
PortableServer::POA_ptr CreatePoa(CORBA::ORB_ptr orb, const char* name, const OrbOptions& options,
                                  const CORBA::PolicyList& policies = CORBA::PolicyList());

// Shuts every connection that a client opened to this process.
void DropConnections();

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_ORB_H
