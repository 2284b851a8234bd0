// The TLS context of omniORB's connections, configured from the settings.
//
// omniORB4/sslContext.h is no documented interface, and its class differs between versions: 4.3
// moved it into the namespace omni, renamed what a subclass overrides, and leaves the members of a
// subclass's object uninitialised. omniORB's public options are not enough: they have no separate
// file for the key, no use of the system's CAs and no check of the host name. So everything that
// depends on the class is in this file. Tried with omniORB 4.2.5 and 4.3.3.
//
//   InstallSslContext(settings);  // before ORB_init
//   CurrentSslContext();          // after it
//
// Thread safety: InstallSslContext and RemoveSslContext are called by the thread that starts the
// ORB; CurrentSslContext may be called by any thread while the ORB is up.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H

#include <openssl/ssl.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// The next ORB_init creates the context, and raises CORBA::INITIALIZE if a file cannot be used. The
// end of the ORB destroys the context.
void InstallSslContext(const TlsSettings& settings);

// Undoes that after a failed ORB_init.
void RemoveSslContext();

// Null when TLS is off. Borrowed.
SSL_CTX* CurrentSslContext();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBSSLCONTEXT_H
