// The TLS context of omniORB's connections, configured from the settings.
//
// omniORB4/sslContext.h is no documented interface, and its class differs between versions: 4.3
// moved it into the namespace omni, renamed what a subclass overrides, and leaves the members of a
// subclass's object uninitialised. omniORB's public options are not enough: they have no separate
// file for the key, no use of the system's CAs and no check of the host name. So everything that
// depends on the class is in this file. Tried with omniORB 4.2.5 and 4.3.3.
//
//   OmniOrbSslContext::Install(settings);  // before ORB_init
//   OmniOrbSslContext::Current();          // after it
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H

#include <openssl/ssl.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread safety: Install and Remove are called by the thread that starts the ORB; Current may be
// called by any thread while the ORB is up.
class OmniOrbSslContext {
 public:
  // The next ORB_init creates the context, and raises CORBA::INITIALIZE if a file cannot be used.
  // The end of the ORB destroys the context.
  static void Install(const TlsSettings& settings);

  // Undoes Install after a failed ORB_init.
  static void Remove();

  // Null when TLS is off. Borrowed.
  static SSL_CTX* Current();
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
