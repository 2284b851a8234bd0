// TLS in TAO: the context of ACE made of our settings, and no connection in clear beside it.
//
//   TaoTls::Prepare(settings);       // before ORB_init
//   CORBA::ORB_var orb = ORB_init(...);
//   TaoTls::AllowNaming(orb, settings);
//
// TLS is a library of TAO's own (SSLIOP), which a site may have built it without. ACE has one
// context a process: its settings are those of the ORB that started last.
//
// With bidirectional IIOP TLS is 1.2: version 1.3 does not go with TAO's threads there.
//
// With TLS on, nothing but look-ups goes unencrypted, and only to the naming service, where its
// reference offers no TLS: it tells addresses, and a server at a wrong one has no certificate that
// is trusted.
#ifndef VQ_SUPPORT_ORB_TAO_TAOTLS_H
#define VQ_SUPPORT_ORB_TAO_TAOTLS_H

#include <chrono>
#include <optional>

#include <support/orb/Corba.h>
#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: Prepare and AllowNaming by the thread that starts the ORB; CertificateExpiry by
// any thread while the ORB is up.
class TaoTls {
 public:
  // Checks the settings and gives ACE's context what they say; with TLS off OpenSSL is not touched.
  // Raises std::invalid_argument, also when this TAO has no TLS.
  static void Prepare(const OrbSettings& settings);

  // Lets the naming service be asked unencrypted, where TLS is on and it offers none.
  static void AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings);

  // A reference of the naming service as it is called: unencrypted where it offers no TLS. The
  // caller owns it.
  static CORBA::Object_ptr ForLookUps(CORBA::Object_ptr naming);

  // Nothing when TLS is off or there is no own certificate. Says in the log when this TAO has no
  // TLS, so that no certificate was looked at.
  static std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings& settings);
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOTLS_H
