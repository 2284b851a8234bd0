// TLS in omniORB: its context, and the refusal of unencrypted requests that are no look-ups.
//
//   PrepareTls(settings);      // before ORB_init
//   CORBA::ORB_init(...);
//   GuardTls(orb, settings);   // after it
//
// With TLS on, servers are called over TLS only. Only look-ups in the naming service, which is
// mostly a program without TLS, may be unencrypted. This is checked for each request, since the
// process at the naming service's address may pretend to be the server, too.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H

#include <chrono>
#include <optional>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread safety: PrepareTls and GuardTls are called by the thread that starts the ORB, and
// ForbidMessagesAfterHandshake while no call is in progress; CertificateExpiry may be called by any
// thread while the ORB is up.

// Checks the settings and installs omniORB's context for them (OmniOrbSslContext.h); does nothing
// more with TLS off. Raises std::invalid_argument.
void PrepareTls(const OrbSettings& settings);

// If TLS is on, refuses unencrypted requests from now on: they raise CORBA::INV_POLICY, and
// vq::orb::TakeCause returns the reason.
void GuardTls(CORBA::ORB_ptr orb, const OrbSettings& settings);

// For connections that take calls: if TLS is on, connections use TLS 1.2 from now on, until the ORB
// ends.
void ForbidMessagesAfterHandshake();

// Empty when TLS is off, and without an own certificate.
std::optional<std::chrono::sys_seconds> CertificateExpiry();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBTLS_H
