// TLS for every ORB product, with OpenSSL alone: the context for the settings, the check of a
// certificate, what may go unencrypted, and for an administrator the cause of each refusal and of
// each handshake that fails.
//
//   std::unique_ptr<SSL_CTX, ...> context(SSL_CTX_new(TLS_method()));
//   vq::orb::ConfigureTls(*context, settings);   // an exception names the file and the setting
#ifndef VQ_SUPPORT_ORB_TLS_H
#define VQ_SUPPORT_ORB_TLS_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <openssl/ssl.h>

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// Raises std::invalid_argument for a listen endpoint with TLS and no certificate, and for settings
// that restrict TLS while it is off.
void CheckTls(const OrbSettings& settings);

// Loads CA certificates, own certificate and key, and allows only TLS 1.2 and later. Without a file
// of CA certificates the system's are trusted. The key may be in a file of its own or in the
// certificate's. Raises std::invalid_argument for a file that cannot be read, a key that needs a
// pass phrase, and a key that does not belong to the certificate.
void ConfigureTls(SSL_CTX& context, const TlsSettings& settings);

// Allows only TLS 1.2. TLS 1.3 has messages of its own after the handshake. A thread of the ORB
// would read them while the caller's thread writes the first request, which OpenSSL does not allow:
// such requests were lost.
void ForbidMessagesAfterHandshake(SSL_CTX& context);

// Logs at level 1 what the settings leave unverified, and which impersonation that allows.
void WarnOfWeakVerification(const TlsSettings& settings);

// Whether a request at the naming service's address reads the naming service, so that it may go
// unencrypted: a look-up by the service's own object, or the reading of a list. Iterators and
// contexts are objects of which the service's reference says nothing, so a list may be read from
// any object there: such a request carries nothing but a count.
bool IsLookUp(std::string_view operation, bool ofServiceItself);

// Logs at level 1 why something is not sent unencrypted, and keeps it as the call's cause.
void ReportUnencrypted(const std::string& cause);
void ReportNoTls(const std::string& server);       // a server without TLS
void ReportLookUpNoTls(const std::string& place);  // a naming service that would have to have it

// The mode for SSL_CTX_set_verify.
int TlsVerifyMode(const TlsSettings& settings);

// Verifies one certificate of a chain during a handshake, for OpenSSL's verify callback: `verified`
// is OpenSSL's own result; for a server's own certificate, the host that was asked for is compared
// as well. A refusal is logged at level 1, and a server's is kept as the call's cause. Returns 1 to
// accept, 0 to refuse.
int JudgeCertificate(int verified, X509_STORE_CTX& context, const TlsSettings& settings);

// For SSL_CTX_set_info_callback: logs at level 1 why a client's handshake failed, and keeps it as
// the call's cause, also when the peer is silent until the connection is given up.
void FollowHandshake(const SSL* connection, int where, int result);

// Logs at level 1 why OpenSSL has given a connection up after the handshake, by its first error:
// OpenSSL 3.2 and later add one that says nothing.
void ReportEnd(const SSL& connection);

// Keeps what was logged of a client's connection as the cause of the calling thread's call: another
// thread may have found it.
void NoteFailureOf(const SSL& connection);

// When the own certificate of a context expires; nothing when it has none.
std::optional<std::chrono::sys_seconds> CertificateExpiry(const SSL_CTX& context);

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_TLS_H
