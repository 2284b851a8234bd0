// The simulator's additions to the server's ORB (support/orb/OrbServer.h): POAs for its servants,
// and control of the connections.
//
//   const auto server = vq::orb::StartServerOrb(options);
//   PortableServer::POA_var poa = CreatePoa(server->Orb(), "GSR", options);
#ifndef VQ_SIMULATOR_ORB_H
#define VQ_SIMULATOR_ORB_H

#include <support/orb/Corba.h>
#include <support/orb/OrbServer.h>

namespace vq::sim {

using OrbOptions = vq::orb::ServerOptions;

// The exit status of a process that a fault ended.
inline constexpr int kDiedOnDemand = 86;

// A POA below the root, with its manager active. `policies` are added to those of the options.
PortableServer::POA_ptr CreatePoa(CORBA::ORB_ptr orb, const char* name, const OrbOptions& options,
                                  const CORBA::PolicyList& policies = CORBA::PolicyList());

// Shuts every connection that a client opened to this process.
void DropConnections();

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_ORB_H
