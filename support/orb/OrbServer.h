// The ORB of a server process, behind the same seam as the client's (OrbProduct.h): one
// implementation file a product. The library does not hold it; the simulator and tests link it.
//
//   const auto server = vq::orb::StartServerOrb({.endpoint = "iiop://127.0.0.1:5000"});
//   ... make POAs with server->Orb(), activate servants ...
//   server->Serve();
//   server->Stop();
#ifndef VQ_SUPPORT_ORB_ORBSERVER_H
#define VQ_SUPPORT_ORB_ORBSERVER_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <support/orb/Corba.h>

namespace vq::orb {

struct ServerOptions {
  std::string endpoint = "iiop://127.0.0.1:";  // iiop://[host][:port]; no port: any free one
  std::string naming;                          // the naming service's reference; may be empty
  bool bidirectional = true;                   // accept calls back over a client's own connection
  std::vector<std::string> rest;               // -ORB arguments, passed on as they are
};

// Thread contract: Orb from any thread; the rest by the thread that started it.
class ServerOrb {
 public:
  virtual ~ServerOrb() = default;  // stops it

  virtual CORBA::ORB_ptr Orb() = 0;  // borrowed

  // Lets the ORB's threads take calls, several at a time, and returns. A second call does nothing.
  virtual void Serve() = 0;

  // Returns when calls under way and the ORB's threads have ended. A second call does nothing.
  virtual void Stop() = 0;
};

// The endpoint opens with the root POA, and raises there. Raises CORBA::SystemException for an
// argument that the product refuses, std::invalid_argument for a malformed endpoint.
std::unique_ptr<ServerOrb> StartServerOrb(const ServerOptions& options);

// The same object; calls through the result raise TIMEOUT or TRANSIENT after that time. The caller
// owns it.
CORBA::Object_ptr WithCallLimit(CORBA::Object_ptr object, std::chrono::milliseconds time);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_ORBSERVER_H
