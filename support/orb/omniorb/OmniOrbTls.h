// TLS in omniORB: its context made of our settings, and nothing but look-ups unencrypted beside it.
//
//   OmniOrbTls::Prepare(settings);      // before ORB_init
//   CORBA::ORB_init(...);
//   OmniOrbTls::Guard(orb, settings);   // after it
//
// With TLS on, servers are called over TLS alone. Only the naming service, whose programs mostly
// have no TLS, may be asked unencrypted, and only where a server is. That is checked for each
// request: whoever answers at the naming service's address may also call itself the server.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H

#include <chrono>
#include <optional>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: Prepare, Guard and Abandon by the thread that starts the ORB;
// ForbidMessagesAfterHandshake while no call is under way; CertificateExpiry by any thread while
// the ORB is up.
class OmniOrbTls {
 public:
  // Checks the settings and gives omniORB a context of them; with TLS off OpenSSL is not touched.
  // Raises std::invalid_argument.
  static void Prepare(const OrbSettings& settings);

  // Takes the context back when ORB_init failed.
  static void Abandon();

  // Refuses unencrypted requests from here on, if TLS is on: they raise CORBA::INV_POLICY, and
  // FailureCause.h has the reason.
  static void Guard(CORBA::ORB_ptr orb, const OrbSettings& settings);

  // For connections that take calls, if TLS is on: from here on, until the ORB ends, they are made
  // with TLS 1.2.
  static void ForbidMessagesAfterHandshake();

  // Nothing when TLS is off or there is no own certificate.
  static std::optional<std::chrono::sys_seconds> CertificateExpiry();
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H
