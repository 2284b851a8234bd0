// Why a TLS certificate is refused, in words for an administrator, and what a TLS context is made
// of. OpenSSL alone: the same for every ORB product.
//
//   std::unique_ptr<SSL_CTX, ...> context(SSL_CTX_new(TLS_method()));
//   vq::orb::ConfigureTls(*context, settings);   // raises with a text that names file and setting
#ifndef VQ_SUPPORT_ORB_TLSVERDICT_H
#define VQ_SUPPORT_ORB_TLSVERDICT_H

#include <chrono>
#include <optional>
#include <string>

#include <openssl/ssl.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Raises std::invalid_argument for a listen endpoint with TLS and no certificate to show there, and
// for settings that ask for more than TLS does while it is off.
void CheckTls(const OrbSettings& settings);

// Loads authorities, certificate and key, and allows TLS 1.2 and later only. Without a file of
// authorities those of the system are believed. The key may lie in a file of its own or in the
// certificate's. Raises std::invalid_argument for a file that cannot be read, a key that needs a
// pass phrase, and a key that is not the certificate's. Safe on any thread, as everything here.
void ConfigureTls(SSL_CTX& context, const TlsSettings& settings);

// Allows TLS 1.2 only. TLS 1.3 has messages of its own after the handshake. A thread of the ORB's
// would read them while the caller's writes the first request, which OpenSSL does not allow: such
// requests got lost.
void ForbidMessagesAfterHandshake(SSL_CTX& context);

// Logs at level 1 what the settings leave unverified, and who may pose as whom then.
void WarnOfWeakVerification(const TlsSettings& settings);

// Logs at level 1 why something is not sent unencrypted, and keeps it as the call's cause.
void ReportUnencrypted(const std::string& cause);
void ReportNoTls(const std::string& server);  // a server that offers none

// The mode for SSL_CTX_set_verify.
int TlsVerifyMode(const TlsSettings& settings);

// The judgement on one certificate of a chain during a handshake, for OpenSSL's verify callback:
// `verified` as OpenSSL has it, and for a server's own certificate also whether it names the host
// that was asked for. A refusal is logged at level 1, and a server's is kept as the call's cause.
// Returns 1 to go on, 0 to refuse.
int JudgeCertificate(int verified, X509_STORE_CTX& context, const TlsSettings& settings);

// For SSL_CTX_set_info_callback: logs at level 1 why a client's handshake failed, and keeps it as
// the call's cause, also when the peer is silent until the connection is given up.
void FollowHandshake(const SSL* connection, int where, int result);

// When the own certificate of a context expires; nothing when it has none.
std::optional<std::chrono::sys_seconds> CertificateExpiry(const SSL_CTX& context);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TLSVERDICT_H
