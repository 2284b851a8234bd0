#include <support/orb/TlsVerdict.h>

#include <algorithm>
#include <array>
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
    Reason{X509_V_ERR_CERT_REVOKED, "its authority has revoked it; have a new one made"},
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

std::string ReasonText(int error) {
  const auto found = std::find_if(kReasons.begin(), kReasons.end(),
                                  [&](const Reason& reason) { return reason.error == error; });
  return found != kReasons.end() ? std::string(found->text) : X509_verify_cert_error_string(error);
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

void CheckTlsPort(const OrbSettings& settings) {
  if (settings.listenEndpoint.tlsPort != 0 && settings.tls.certificate.empty()) {
    throw std::invalid_argument(
        "the listen endpoint has an ssl_port, and -SSLCertificate is not set");
  }
}

void ConfigureTls(SSL_CTX& context, const TlsSettings& settings) {
  ERR_clear_error();
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

void LogRefusedInClear(const std::string& peer) {
  VQ_LOG(diagModule, 1) << "The connection to " << peer << " is refused: it would be in clear, and "
                        << "TLS is on. Give that server a TLS endpoint, or take -SSLCACertificate "
                        << "and -SSLCertificate out of the settings";
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
  if (verified == 1) return 1;
  const Peer peer = PeerOf(connection);
  const std::string name = WantedName(connection);
  VQ_LOG(diagModule, 1) << "The certificate of " << (name.empty() ? peer.address : name) << ":"
                        << peer.port
                        << " is refused: " << ReasonText(X509_STORE_CTX_get_error(&context))
                        << ". It is: " << Describe(certificate);
  return 0;
}

std::optional<std::chrono::sys_seconds> CertificateExpiry(const SSL_CTX& context) {
  const X509* const certificate = SSL_CTX_get0_certificate(&context);
  if (certificate == nullptr) return std::nullopt;
  std::tm expiry{};
  if (ASN1_TIME_to_tm(X509_get0_notAfter(certificate), &expiry) != 1) return std::nullopt;
  return std::chrono::sys_seconds(std::chrono::seconds(::timegm(&expiry)));
}

}  // namespace vq::orb
