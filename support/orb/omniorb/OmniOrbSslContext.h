// The context that omniORB makes its TLS connections with, made of our settings.
//
// omniORB4/sslContext.h calls itself proprietary, and its class differs between versions: 4.3 moved
// it into the namespace omni, renamed what a subclass overrides, and leaves the members of a
// subclass's object uninitialised. omniORB's public options can be no substitute: they know no key
// file beside the certificate's, not the system's authorities, and no check of the host name. So
// everything that depends on the class is here. Tried with omniORB 4.2.5 and 4.3.3.
//
//   OmniOrbSslContext::Install(settings);  // before ORB_init
//   OmniOrbSslContext::Current();          // after it
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H

#include <openssl/ssl.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Thread contract: Install and Remove by the thread that starts the ORB; Current by any thread
// while the ORB is up.
class OmniOrbSslContext {
 public:
  // The next ORB_init makes the context, and raises CORBA::INITIALIZE if a file cannot be used. The
  // ORB takes the context with it when it ends.
  static void Install(const TlsSettings& settings);

  // Takes it back when ORB_init failed.
  static void Remove();

  // Null when TLS is off. Borrowed.
  static SSL_CTX* Current();
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
