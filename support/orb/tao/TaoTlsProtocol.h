// TAO's TLS protocol, with two things that it lacks: the name of the host that is connected to, for
// the check of the certificate, and a line in the log where a server offers no TLS.
//
//   RegisterTlsProtocol();   // before ORB_init with "static VQ_SSLIOP_Factory ..."
//   SSL_CTX_set_info_callback(&context, TellHostName);
#ifndef VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H
#define VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H

#include <openssl/ssl.h>

namespace vq::orb {

// Makes the protocol known to TAO under the name of kTlsProtocol (TaoOptions.h). Thread contract:
// by the thread that starts an ORB; again does nothing.
void RegisterTlsProtocol();

// For OpenSSL: gives a connection that begins its handshake as a client the host's name, which the
// server gets to see too. An address is none. Safe on any thread.
void TellHostName(const SSL* connection, int where, int);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TAO_TAOTLSPROTOCOL_H
