// TAO's TLS protocol, with what it lacks: the name of the host that is connected to, for the check
// of the certificate, a line in the log where a handshake fails or a server offers no TLS, and that
// nothing but the naming service is called unencrypted.
//
//   RegisterTlsProtocol();   // before ORB_init with "static VQ_SSLIOP_Factory ..."
//   SSL_CTX_set_info_callback(&context, FollowConnection);
#ifndef VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H
#define VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H

#include <openssl/ssl.h>

#include <support/orb/Corba.h>

namespace vq::orb {

// Makes the protocol known to TAO under the name of kTlsProtocol (TaoOptions.h). Thread contract:
// by the thread that starts an ORB; again does nothing.
void RegisterTlsProtocol();

// Whether the first profile of a reference names a port for TLS.
bool OffersTls(CORBA::Object_ptr object);

// Allows look-ups at the addresses of this reference to go unencrypted, and forgets them all.
void AddNaming(CORBA::Object_ptr naming);
void ForgetNaming();

// For OpenSSL: gives a connection that begins its handshake as a client the host's name, which the
// server gets to see too, and logs why a handshake failed. An address is no name. Safe on any
// thread.
void FollowConnection(const SSL* connection, int where, int result);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H
