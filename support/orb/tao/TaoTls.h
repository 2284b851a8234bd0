// TLS in TAO: the context of ACE made of our settings, and no connection in clear beside it.
//
//   TaoTls::Prepare(settings);       // before ORB_init
//   CORBA::ORB_var orb = ORB_init(...);
//   TaoTls::AllowNaming(orb, settings);
//
// TLS is a library of TAO's own (SSLIOP), which a site may have built it without. ACE has one
// context a process: its settings are those of the ORB that started last.
//
// TLS is 1.2: version 1.3 does not go with TAO's threads.
//
// With TLS on, servers are called over TLS alone: TAO refuses a reference that offers none. Only
// the naming service, whose programs mostly have no TLS, is asked in clear: it tells addresses, and
// a server at a wrong one has no certificate that is believed.
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

  // Lets the naming service be asked in clear, if TLS is on and there is one.
  static void AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings);

  // The same object, called in clear; as it is where its ORB has no TLS. The caller owns it.
  static CORBA::Object_ptr InClear(CORBA::Object_ptr object);

  // Nothing when TLS is off or there is no own certificate. Says in the log when this TAO has no
  // TLS, so that no certificate was looked at.
  static std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings& settings);
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOTLS_H
