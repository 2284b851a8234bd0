// The seam between this system and the ORB product it was built with.
//
// The room of each product (omniorb/OmniOrbProduct.cpp, tao/TaoProduct.cpp) defines what is
// declared here; nothing outside these rooms depends on the product. The translation of our
// settings into the product's options is a pure function there (OmniOrbOptions.h, TaoOptions.h), so
// that a table can test it.
#ifndef VQ_SUPPORT_ORB_ORBPRODUCT_H
#define VQ_SUPPORT_ORB_ORBPRODUCT_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// A client that is called back listens from the start; a pure client listens only when it asks for
// its POA.
enum class OrbRole { kClient, kPureClient };

// One running ORB of the process. Where a product has a single ORB a process, several of these
// share it and each has its own POA.
//
// Thread safety: ChildPoa and Orb may be called from any thread; Stop once, when no call is in
// progress.
class OrbInstance {
 public:
  virtual ~OrbInstance() = default;

  virtual CORBA::ORB_ptr Orb() = 0;  // borrowed

  // The naming service's reference; no call is made. The caller owns it. Raises
  // CORBA::ORB::InvalidName or CORBA::NO_RESOURCES when none is configured: it is not searched for
  // in the network, since any host could answer.
  virtual CORBA::Object_ptr NamingService() = 0;

  // The POA of this ORB's servants, activated; made on first use. Borrowed. Raises
  // CORBA::SystemException when the listen endpoint cannot be opened.
  virtual PortableServer::POA_ptr ChildPoa() = 0;

  // When the own TLS certificate in use expires; nothing without TLS or without a certificate.
  virtual std::optional<std::chrono::sys_seconds> CertificateExpiry() const = 0;

  // Ends this ORB: its servants, and its connections where nothing else uses them. With `wait` it
  // returns when everything has ended.
  virtual void Stop(bool wait) = 0;
};

// Starts an ORB. `arguments` is the command line without our own options; the product refuses an
// unknown -ORB option. `useThreadPool` requests several threads that take calls, where the product
// has that choice. Raises CORBA::SystemException, and std::invalid_argument for settings that
// contradict each other or name files that cannot be used.
std::unique_ptr<OrbInstance> StartOrb(const std::string& name, OrbRole role, bool useThreadPool,
                                      const OrbSettings& settings,
                                      const std::vector<std::string>& arguments);

// The product's name for a minor code; empty when it has none.
std::string MinorCodeName(const CORBA::SystemException& exception);

// True for the exception that the product raises when a message is larger than the setting
// -ORBMaxMessageSize.
bool IsMessageTooLarge(const CORBA::SystemException& exception);

// The reference as an "IOR:..." string. The reference is neither null nor nil. Raises
// CORBA::BAD_INV_ORDER when the ORB that it belongs to has ended.
std::string StringifyReference(CORBA::Object_ptr object);

// On the thread of an incoming call: whether it arrived over a connection that this process opened.
// True as well where the product does not report it.
bool CameOverOwnConnection();

std::string_view ProductName();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_ORBPRODUCT_H
