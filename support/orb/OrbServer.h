// The ORB of a server process, behind the same seam as the client's (OrbProduct.h): one
// implementation file a product. It is not part of the library; the simulator and tests link it.
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
#include <support/orb/OrbSettings.h>

namespace vq::orb {

struct ServerOptions {
  std::string endpoint = "iiop://127.0.0.1:";  // iiop://[host][:port]; no port: any free one
  std::string naming;                          // the naming service's reference; may be empty
  bool bidirectional = true;                   // accept bidirectional IIOP
  TlsSettings tls;                // the certificate to show, and whether to ask for one
  std::vector<std::string> rest;  // -ORB arguments, passed on as they are
};

// Thread safety: Orb may be called from any thread; the rest by the thread that started it.
class ServerOrb {
 public:
  virtual ~ServerOrb() = default;  // stops it

  virtual CORBA::ORB_ptr Orb() = 0;  // borrowed

  // Lets the ORB's threads take calls, several at a time, and returns. A second call does nothing.
  virtual void Serve() = 0;

  // Returns when calls in progress and the ORB's threads have ended. A second call does nothing.
  virtual void Stop() = 0;
};

// The options as settings of an ORB. Raises std::invalid_argument for a malformed endpoint, and for
// TLS without a certificate to show.
OrbSettings ServerSettings(const ServerOptions& options);

// The endpoint opens with the root POA, whose creation raises when it cannot be opened. Raises
// CORBA::SystemException for an argument that the product refuses, std::invalid_argument as
// ServerSettings and for TLS settings that cannot be used.
//
// With TLS the server listens for it too, at the endpoint's ssl_port or at any free port. Whether
// unencrypted calls are accepted depends on the product.
std::unique_ptr<ServerOrb> StartServerOrb(const ServerOptions& options);

// The same object; calls through the result raise TIMEOUT or TRANSIENT after that time. The caller
// owns it.
CORBA::Object_ptr WithCallLimit(CORBA::Object_ptr object, std::chrono::milliseconds time);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_ORBSERVER_H
