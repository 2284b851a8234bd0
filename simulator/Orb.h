// The simulator's ORB, and all that it needs of the ORB product in use.
//
//   OrbOptions options{.endpoint = "iiop://127.0.0.1:5000", .naming =
//   "corbaloc::127.0.0.1:2809/NameService"}; CORBA::ORB_var orb = StartOrb(options);
//
// Thread contract: StartOrb once, by one thread; the rest from any thread.
#ifndef VQ_SIMULATOR_ORB_H
#define VQ_SIMULATOR_ORB_H

#include <chrono>
#include <string>
#include <vector>

#include <support/orb/Corba.h>

namespace vq::sim {

// The exit status of a process that died because a fault told it to.
inline constexpr int kDiedOnDemand = 86;

struct OrbOptions {
  std::string endpoint = "iiop://127.0.0.1:";  // iiop://[host][:port]; no port: any free one
  std::string naming;                          // the naming service's reference; may be empty
  bool bidirectional = true;                   // accept calls back over a client's own connection
  std::vector<std::string> rest;               // -ORB arguments, passed on as they are
};

// Initialises the ORB; its endpoint opens with the root POA. Raises CORBA::SystemException for an
// endpoint or an argument that the product refuses, std::invalid_argument for a malformed endpoint.
CORBA::ORB_ptr StartOrb(const OrbOptions& options);

// A POA below the root, with its manager active. `policies` are added to what the options ask for.
PortableServer::POA_ptr CreatePoa(CORBA::ORB_ptr orb, const char* name, const OrbOptions& options,
                                  const CORBA::PolicyList& policies = CORBA::PolicyList());

// Calls through this reference raise TIMEOUT or TRANSIENT after that time.
void LimitCalls(CORBA::Object_ptr object, std::chrono::milliseconds time);

// Shuts every connection that a client opened to this process.
void DropConnections();

// The TCP port that this process listens on; 0 when it listens on none.
int ListeningPort();

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_ORB_H
