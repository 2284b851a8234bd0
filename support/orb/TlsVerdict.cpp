#include <support/orb/TlsVerdict.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/FailureCause.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

struct Reason {
  int error;  // X509_V_ERR_...
  std::string_view text;
};

// Each ends in what to do next.
constexpr std::array kReasons{
    Reason{X509_V_ERR_CERT_HAS_EXPIRED, "it has expired; have it renewed"},
    Reason{X509_V_ERR_CERT_NOT_YET_VALID,
           "it is not yet valid; compare the clocks of both machines, or wait"},
    Reason{X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT,
           "it is self-signed; have it signed by an authority, or add it to the file of "
           "-SSLCACertificate"},
    Reason{X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN,
           "its authority is unknown; add the authority's certificate to the file of "
           "-SSLCACertificate if it is to be believed"},
    Reason{X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY,
           "its authority is unknown; add the authority's certificate to the file of "
           "-SSLCACertificate if it is to be believed"},
    Reason{X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE,
           "its authority is unknown; add the authority's certificate to the file of "
           "-SSLCACertificate if it is to be believed"},
    Reason{X509_V_ERR_HOSTNAME_MISMATCH,
           "it is for another host; have one made that names this host, or let the server publish "
           "the name that the certificate has"},
    Reason{X509_V_ERR_APPLICATION_VERIFICATION,
           "none of its names is among those of -SSLServerNames; if the server is a right one, add "
           "its name there"},
    Reason{X509_V_ERR_CERT_REVOKED, "its CA has revoked it; have a new one made"},
    Reason{X509_V_ERR_UNABLE_TO_GET_CRL,
           "the file of -SSLRevocationList has no list of its CA; add it"},
    Reason{
        X509_V_ERR_CRL_HAS_EXPIRED,
        "its CA's list in the file of -SSLRevocationList has expired; put the current one there"},
};

// Why a handshake fails, by OpenSSL's error or by the alert that the peer sent.
constexpr std::string_view kNoVersion =
    "it offers no TLS version that is accepted: 1.2 and, unless -BiDirPolicy is 1, later ones";
constexpr std::array kErrors{
    Reason{SSL_R_WRONG_VERSION_NUMBER, "it does not speak TLS at this port"},
    Reason{SSL_R_UNSUPPORTED_PROTOCOL, kNoVersion},
    Reason{SSL_R_UNEXPECTED_EOF_WHILE_READING, "it closed the connection"},
};
constexpr std::string_view kWantsCertificate = "it requires a certificate; set -SSLCertificate";
constexpr std::array kAlerts{
    Reason{SSL_AD_PROTOCOL_VERSION, kNoVersion},
    Reason{SSL_AD_CERTIFICATE_REQUIRED, kWantsCertificate},
    Reason{SSL_AD_UNKNOWN_CA, "it does not trust the CA of -SSLCertificate"},
    Reason{SSL_AD_CERTIFICATE_EXPIRED, "the certificate of -SSLCertificate has expired"},
    Reason{SSL_AD_CERTIFICATE_REVOKED, "the certificate of -SSLCertificate is revoked"},
};

struct FreeBio {
  void operator()(BIO* bio) const { BIO_free(bio); }
};

// What a function of OpenSSL prints.
template <class Print>
std::string Printed(Print print) {
  const std::unique_ptr<BIO, FreeBio> bio(BIO_new(BIO_s_mem()));
  if (bio == nullptr) return {};
  print(bio.get());
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio.get(), &data);
  return size > 0 ? std::string(data, static_cast<std::size_t>(size)) : std::string();
}

std::string Describe(X509* certificate) {
  if (certificate == nullptr) return "none";
  return Printed([&](BIO* bio) {
    BIO_puts(bio, "subject '");
    X509_NAME_print_ex(bio, X509_get_subject_name(certificate), 0, XN_FLAG_ONELINE);
    BIO_puts(bio, "', issuer '");
    X509_NAME_print_ex(bio, X509_get_issuer_name(certificate), 0, XN_FLAG_ONELINE);
    BIO_puts(bio, "', valid from ");
    ASN1_TIME_print(bio, X509_get0_notBefore(certificate));
    BIO_puts(bio, " to ");
    ASN1_TIME_print(bio, X509_get0_notAfter(certificate));
    const int names = X509_get_ext_by_NID(certificate, NID_subject_alt_name, -1);
    if (names < 0) return;
    BIO_puts(bio, ", for ");
    X509V3_EXT_print(bio, X509_get_ext(certificate, names), 0, 0);
  });
}

struct Peer {
  std::string address;
  std::string port;
};

Peer PeerOf(const SSL* connection) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (::getpeername(SSL_get_fd(connection), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    return {};
  }
  in_port_t port = 0;
  const void* bytes = nullptr;
  if (address.ss_family == AF_INET) {
    const auto& inet = reinterpret_cast<const sockaddr_in&>(address);
    port = inet.sin_port;
    bytes = &inet.sin_addr;
  } else if (address.ss_family == AF_INET6) {
    const auto& inet = reinterpret_cast<const sockaddr_in6&>(address);
    port = inet.sin6_port;
    bytes = &inet.sin6_addr;
  } else {
    return {};
  }
  if (::inet_ntop(address.ss_family, bytes, text.data(), text.size()) == nullptr) return {};
  return {text.data(), std::to_string(ntohs(port))};
}

// The host name that was asked for; empty when it was an address.
std::string WantedName(const SSL* connection) {
  const char* const name = SSL_get_servername(connection, TLSEXT_NAMETYPE_host_name);
  return name != nullptr ? name : "";
}

bool NamesHost(X509* certificate, const SSL* connection) {
  if (certificate == nullptr) return false;
  const std::string name = WantedName(connection);
  if (!name.empty()) {
    return X509_check_host(certificate, name.data(), name.size(),
                           X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS, nullptr) == 1;
  }
  const std::string address = PeerOf(connection).address;
  return !address.empty() && X509_check_ip_asc(certificate, address.c_str(), 0) == 1;
}

// Whether the certificate is for a host that a server may be. OpenSSL takes a name that begins with
// a dot for every name that ends so.
bool IsAllowedServer(X509* certificate, const TlsSettings& settings) {
  if (certificate == nullptr) return false;
  const auto matches = [&](const std::string& pattern) {
    const std::string_view name =
        std::string_view(pattern).substr(pattern.starts_with('*') ? 1 : 0);
    return X509_check_host(certificate, name.data(), name.size(),
                           X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS, nullptr) == 1 ||
           X509_check_ip_asc(certificate, pattern.c_str(), 0) == 1;
  };
  return settings.serverNames.empty() ||
         std::any_of(settings.serverNames.begin(), settings.serverNames.end(), matches);
}

// What the table has for an error, or else OpenSSL's own words.
template <std::size_t size>
std::string ReasonText(const std::array<Reason, size>& table, int error, const char* otherwise) {
  const auto found = std::find_if(table.begin(), table.end(),
                                  [&](const Reason& reason) { return reason.error == error; });
  if (found != table.end()) return std::string(found->text);
  return otherwise != nullptr ? otherwise : "error " + std::to_string(error);
}

// "host:port", with the name that was asked for if there was one.
std::string PeerText(const SSL* connection) {
  const Peer peer = PeerOf(connection);
  const std::string name = WantedName(connection);
  return (name.empty() ? peer.address : name) + ":" + peer.port;
}

// What is known of one connection of a client.
struct Handshake {
  std::string peer;
  bool asksForCertificate = false;  // and there is none
  bool done = false;
  bool reported = false;  // as failed

  // Null for a server's connection, and where the handshake was not followed.
  static Handshake* Of(const SSL* connection) {
    return static_cast<Handshake*>(SSL_get_ex_data(connection, Index()));
  }

  static int Index() {
    static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, Free);
    return index;
  }

  void Report(const std::string& cause) {
    if (reported) return;
    reported = true;
    const std::string line = "The TLS handshake with " + peer + " failed: " + cause;
    VQ_LOG(diagModule, 1) << line;
    NoteCause(line);
  }

 private:
  // A connection that is given up in the middle of the handshake got no answer. OpenSSL's errors of
  // a handshake must not pass for those of the thread's next connection.
  static void Free(void*, void* handshake, CRYPTO_EX_DATA*, int, long, void*) {
    const std::unique_ptr<Handshake> owner(static_cast<Handshake*>(handshake));
    if (owner == nullptr || owner->done) return;
    owner->Report("it did not answer in time");
    ERR_clear_error();
  }
};

std::string AlertText(const Handshake& handshake, int alert) {
  if (alert == SSL_AD_HANDSHAKE_FAILURE && handshake.asksForCertificate) {
    return std::string(kWantsCertificate);
  }
  return ReasonText(kAlerts, alert, SSL_alert_desc_string_long(alert));
}

// OpenSSL asks when the server wants a certificate and there is none. With TLS 1.3 the server's
// refusal comes after the handshake, and may be lost with the connection.
int TellOfMissingCertificate(SSL* connection, X509**, EVP_PKEY**) {
  Handshake* const handshake = Handshake::Of(connection);
  if (handshake == nullptr) return 0;
  handshake->asksForCertificate = true;
  const std::string line = "The server at " + handshake->peer +
                           " asks for a certificate, and -SSLCertificate is not set";
  VQ_LOG(diagModule, 2) << line;
  NoteCause(line);
  return 0;
}

[[noreturn]] void Refuse(const std::string& what, const std::string& file,
                         const std::string& setting) {
  const unsigned long error = ERR_peek_last_error();
  const char* const reason = error != 0 ? ERR_reason_error_string(error) : nullptr;
  ERR_clear_error();
  throw std::invalid_argument(what + " '" + file + "' of " + setting + " cannot be used: " +
                              (reason != nullptr ? reason : "it cannot be read"));
}

// OpenSSL would ask for a pass phrase on the terminal.
int NoPassPhrase(char*, int, int, void*) {
  return 0;
}

}  // namespace

void ForbidMessagesAfterHandshake(SSL_CTX& context) {
  SSL_CTX_set_max_proto_version(&context, TLS1_2_VERSION);
}

void CheckTls(const OrbSettings& settings) {
  const TlsSettings& tls = settings.tls;
  if (!tls.IsOn() &&
      (tls.encryptLookups || !tls.serverNames.empty() || !tls.revocationList.empty())) {
    throw std::invalid_argument(
        "-SSLServerNames, -SSLEncryptLookups or -SSLRevocationList is set, and TLS is off; set "
        "-SSLCACertificate");
  }
  if (settings.listenEndpoint.tlsPort != 0 && settings.tls.certificate.empty()) {
    throw std::invalid_argument(
        "the listen endpoint has an ssl_port, and -SSLCertificate is not set");
  }
}

void ConfigureTls(SSL_CTX& context, const TlsSettings& settings) {
  ERR_clear_error();
  if (!settings.verifyPeer && (!settings.serverNames.empty() || !settings.revocationList.empty())) {
    throw std::invalid_argument(
        "-SSLServerNames or -SSLRevocationList is set, and -SSLVerifyPeer is 0");
  }
  SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
  SSL_CTX_set_default_passwd_cb(&context, NoPassPhrase);
  if (settings.caCertificate.empty()) {
    SSL_CTX_set_default_verify_paths(&context);
  } else {
    const char* const file = settings.caCertificate.c_str();
    if (SSL_CTX_load_verify_file(&context, file) != 1) {
      Refuse("the file of authorities", file, "-SSLCACertificate");
    }
    SSL_CTX_set_client_CA_list(&context, SSL_load_client_CA_file(file));
  }
  SSL_CTX_set_client_cert_cb(&context, TellOfMissingCertificate);
  if (!settings.revocationList.empty()) {
    X509_STORE* const store = SSL_CTX_get_cert_store(&context);
    X509_LOOKUP* const files = X509_STORE_add_lookup(store, X509_LOOKUP_file());
    if (files == nullptr ||
        X509_load_crl_file(files, settings.revocationList.c_str(), X509_FILETYPE_PEM) < 1) {
      Refuse("the file of revocation lists", settings.revocationList, "-SSLRevocationList");
    }
    X509_STORE_set_flags(store, X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL);
  }
  if (settings.certificate.empty()) {
    if (!settings.privateKey.empty()) {
      throw std::invalid_argument("-SSLPrivateKey is set and -SSLCertificate is not");
    }
    return;
  }
  if (SSL_CTX_use_certificate_chain_file(&context, settings.certificate.c_str()) != 1) {
    Refuse("the certificate", settings.certificate, "-SSLCertificate");
  }
  const bool ownFile = !settings.privateKey.empty();
  const std::string& key = ownFile ? settings.privateKey : settings.certificate;
  const char* const setting = ownFile ? "-SSLPrivateKey" : "-SSLCertificate";
  if (SSL_CTX_use_PrivateKey_file(&context, key.c_str(), SSL_FILETYPE_PEM) != 1) {
    Refuse("the private key (one without a pass phrase is needed)", key, setting);
  }
  if (SSL_CTX_check_private_key(&context) != 1) Refuse("the private key", key, setting);
}

void WarnOfWeakVerification(const TlsSettings& settings) {
  if (!settings.verifyPeer) {
    VQ_LOG(diagModule, 1) << "TLS certificates are not verified, since -SSLVerifyPeer is 0: "
                          << "anybody may pose as the server";
  } else if (!settings.verifyHost) {
    VQ_LOG(diagModule, 1) << "TLS certificates are not compared with the host that was asked for, "
                          << "since -SSLVerifyHost is 0: any server of a believed authority may "
                          << "pose as another";
  }
}

void ReportUnencrypted(const std::string& cause) {
  VQ_LOG(diagModule, 1) << cause;
  NoteCause(cause);
}

void ReportNoTls(const std::string& server) {
  ReportUnencrypted("The call to " + server + " is refused: it would be unencrypted, since that " +
                    "server offers no TLS. Give it a TLS endpoint, or take -SSLCACertificate and " +
                    "-SSLCertificate out of the settings");
}

int TlsVerifyMode(const TlsSettings& settings) {
  return settings.verifyPeer ? SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT : SSL_VERIFY_NONE;
}

int JudgeCertificate(int verified, X509_STORE_CTX& context, const TlsSettings& settings) {
  if (!settings.verifyPeer) return 1;
  const auto* const connection = static_cast<const SSL*>(
      X509_STORE_CTX_get_ex_data(&context, SSL_get_ex_data_X509_STORE_CTX_idx()));
  if (connection == nullptr) return 0;
  X509* const certificate = X509_STORE_CTX_get_current_cert(&context);
  const bool isServers =
      SSL_is_server(connection) == 0 && X509_STORE_CTX_get_error_depth(&context) == 0;
  if (verified == 1 && isServers && settings.verifyHost && !NamesHost(certificate, connection)) {
    X509_STORE_CTX_set_error(&context, X509_V_ERR_HOSTNAME_MISMATCH);
    verified = 0;
  }
  if (verified == 1 && isServers && !IsAllowedServer(certificate, settings)) {
    X509_STORE_CTX_set_error(&context, X509_V_ERR_APPLICATION_VERIFICATION);
    verified = 0;
  }
  if (verified == 1) return 1;
  const int error = X509_STORE_CTX_get_error(&context);
  const std::string peer = PeerText(connection);
  const std::string reason = ReasonText(kReasons, error, X509_verify_cert_error_string(error));
  VQ_LOG(diagModule, 1) << "The certificate of " << peer << " is refused: " << reason
                        << ". It is: " << Describe(certificate);
  if (Handshake* const handshake = Handshake::Of(connection)) handshake->reported = true;
  if (SSL_is_server(connection) == 0) {
    NoteCause("The certificate of " + peer + " is refused: " + reason);
  }
  return 0;
}

void FollowHandshake(const SSL* connection, int where, int result) {
  if (SSL_is_server(connection) != 0) return;
  if ((where & SSL_CB_HANDSHAKE_START) != 0 && Handshake::Of(connection) == nullptr) {
    auto handshake = std::make_unique<Handshake>();
    handshake->peer = PeerText(connection);
    // The callback's type has a const that the connection has not.
    if (SSL_set_ex_data(const_cast<SSL*>(connection), Handshake::Index(), handshake.get()) == 1) {
      handshake.release();
    }
  }
  Handshake* const handshake = Handshake::Of(connection);
  if (handshake == nullptr) return;
  constexpr int kFatal = 2;
  if ((where & SSL_CB_HANDSHAKE_DONE) != 0) handshake->done = true;
  if (where == SSL_CB_READ_ALERT && result >> 8 == kFatal) {
    handshake->Report(AlertText(*handshake, result & 0xFF));
  }
  if (where != SSL_CB_CONNECT_EXIT || result > 0 || handshake->done) return;
  if (const unsigned long error = ERR_peek_last_error(); error != 0) {
    handshake->Report(ReasonText(kErrors, ERR_GET_REASON(error), ERR_reason_error_string(error)));
  } else if ((SSL_get_shutdown(connection) & SSL_RECEIVED_SHUTDOWN) != 0) {
    handshake->Report("it closed the connection");
    // omniORB 4.2 knows no such end of a handshake, and would end the process.
    ERR_raise(ERR_LIB_SSL, SSL_R_UNEXPECTED_EOF_WHILE_READING);
  } else if (BIO_should_retry(SSL_get_rbio(connection)) == 0) {
    handshake->Report(std::strerror(errno));
  }
}

std::optional<std::chrono::sys_seconds> CertificateExpiry(const SSL_CTX& context) {
  const X509* const certificate = SSL_CTX_get0_certificate(&context);
  if (certificate == nullptr) return std::nullopt;
  std::tm expiry{};
  if (ASN1_TIME_to_tm(X509_get0_notAfter(certificate), &expiry) != 1) return std::nullopt;
  return std::chrono::sys_seconds(std::chrono::seconds(::timegm(&expiry)));
}

}  // namespace vq::orb
