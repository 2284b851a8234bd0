#include <support/orb/Tls.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>

#include <netdb.h>
#include <sys/socket.h>

#include <fmt/format.h>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/FailureCause.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

// At the end of the process OpenSSL would end before objects that were made earlier, whose
// destructors may still log out. So it stays.
[[maybe_unused]] const int stays = OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);

// A text, in which {} is the setting.
struct Reason {
  int error;
  std::string_view text;
  std::string_view setting{};
};

// Why a certificate is refused, by X509_V_ERR_... Each ends in what to do next.
constexpr std::string_view kUnknownCa =
    "its CA is unknown; add the CA's certificate to the file of {} if you trust it";
constexpr Reason kReasons[] = {
    {X509_V_ERR_CERT_HAS_EXPIRED, "it has expired; have it renewed"},
    {X509_V_ERR_CERT_NOT_YET_VALID,
     "it is not yet valid; compare the clocks of both hosts, or wait"},
    {X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT,
     "it is self-signed; have it signed by a CA, or add it to the file of {}", kTlsCa},
    {X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN, kUnknownCa, kTlsCa},
    {X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY, kUnknownCa, kTlsCa},
    {X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE, kUnknownCa, kTlsCa},
    {X509_V_ERR_HOSTNAME_MISMATCH,
     "it is for another host; have one made that names this host, or let the server publish the "
     "name that the certificate has"},
    {X509_V_ERR_APPLICATION_VERIFICATION,
     "none of its names is among those of {}; if the server is legitimate, add its name there",
     kTlsServerNames},
    {X509_V_ERR_CERT_REVOKED, "its CA has revoked it; have a new one made"},
    {X509_V_ERR_UNABLE_TO_GET_CRL, "the file of {} has no list of its CA; add it",
     kTlsRevocationList},
    {X509_V_ERR_CRL_HAS_EXPIRED,
     "its CA's list in the file of {} has expired; put the current one there", kTlsRevocationList},
};

// Why a handshake fails, by OpenSSL's error or by the alert that the peer sent.
constexpr std::string_view kNoVersion =
    "it offers no TLS version that is accepted: 1.2 and, unless {} is 1, later ones";
constexpr Reason kErrors[] = {
    {SSL_R_WRONG_VERSION_NUMBER, "it does not speak TLS at this port"},
    {SSL_R_UNSUPPORTED_PROTOCOL, kNoVersion, kBiDirPolicy},
    {SSL_R_UNEXPECTED_EOF_WHILE_READING, "it closed the connection"},
};
constexpr Reason kAlerts[] = {
    {SSL_AD_PROTOCOL_VERSION, kNoVersion, kBiDirPolicy},
    {SSL_AD_CERTIFICATE_REQUIRED, "it requires a certificate; set {}", kTlsCertificate},
    {SSL_AD_UNKNOWN_CA, "it does not trust the CA of {}", kTlsCertificate},
    {SSL_AD_CERTIFICATE_EXPIRED, "the certificate of {} has expired", kTlsCertificate},
    {SSL_AD_CERTIFICATE_REVOKED, "the certificate of {} is revoked", kTlsCertificate},
};

std::string Describe(X509* certificate) {
  if (certificate == nullptr) return "none";
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
  BIO* const bio = memory.get();
  if (bio == nullptr) return {};
  BIO_puts(bio, "subject '");
  X509_NAME_print_ex(bio, X509_get_subject_name(certificate), 0, XN_FLAG_ONELINE);
  BIO_puts(bio, "', issuer '");
  X509_NAME_print_ex(bio, X509_get_issuer_name(certificate), 0, XN_FLAG_ONELINE);
  BIO_puts(bio, "', valid from ");
  ASN1_TIME_print(bio, X509_get0_notBefore(certificate));
  BIO_puts(bio, " to ");
  ASN1_TIME_print(bio, X509_get0_notAfter(certificate));
  if (const int names = X509_get_ext_by_NID(certificate, NID_subject_alt_name, -1); names >= 0) {
    BIO_puts(bio, ", for ");
    X509V3_EXT_print(bio, X509_get_ext(certificate, names), 0, 0);
  }
  char* text = nullptr;
  const long size = BIO_get_mem_data(bio, &text);
  return {text, static_cast<std::size_t>(size)};
}

struct Peer {
  std::string address;
  std::string port;
};

// The state of one connection of a client.
struct Handshake {
  Peer place;
  std::string peer;                 // the same as text
  bool asksForCertificate = false;  // and there is none
  bool done = false;
  bool reported = false;  // as failed
  std::string failure;    // the line that was logged
  int messages = 0;       // of the protocol, received since the last data

  // Null for a server's connection, and before FollowHandshake saw its start.
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
    const std::string line = std::string("The TLS ") + (done ? "connection" : "handshake") +
                             " with " + peer + " failed: " + cause;
    VQ_LOG(diagModule, 1) << line;
    NoteCause(line);
    failure = line;
  }

 private:
  // A connection that is closed in the middle of the handshake got no answer. OpenSSL's errors of a
  // handshake must not be reported for the thread's next connection.
  static void Free(void*, void* handshake, CRYPTO_EX_DATA*, int, long, void*) {
    const std::unique_ptr<Handshake> owner(static_cast<Handshake*>(handshake));
    if (owner == nullptr || owner->done) return;
    owner->Report("it did not answer in time");
    ERR_clear_error();
  }
};

// The one that was found at the start of the handshake: a closed socket has none any more.
Peer PeerOf(const SSL* connection) {
  if (const Handshake* const known = Handshake::Of(connection)) return known->place;
  sockaddr_storage address{};
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  std::array<char, NI_MAXHOST> host{};
  std::array<char, NI_MAXSERV> port{};
  if (::getpeername(SSL_get_fd(connection), generic, &size) != 0 ||
      ::getnameinfo(generic, size, host.data(), host.size(), port.data(), port.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
    return {};
  }
  const std::string_view text = host.data();
  // A link-local address has its interface behind a "%", which no certificate has.
  return {std::string(text.substr(0, text.find('%'))), port.data()};
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

// Whether the certificate is for an allowed server. For OpenSSL a name that begins with a dot
// matches every name with that ending.
bool IsAllowedServer(X509* certificate, const TlsSettings& settings) {
  if (certificate == nullptr) return false;
  const auto matches = [&](const std::string& pattern) {
    const std::string_view name =
        std::string_view(pattern).substr(pattern.starts_with('*') ? 1 : 0);
    return X509_check_host(certificate, name.data(), name.size(),
                           X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS, nullptr) == 1 ||
           X509_check_ip_asc(certificate, pattern.c_str(), 0) == 1;
  };
  return settings.serverNames.empty() || std::ranges::any_of(settings.serverNames, matches);
}

// The table's text for an error, or else OpenSSL's own.
std::string ReasonText(std::span<const Reason> table, int error, const char* otherwise) {
  const auto found = std::ranges::find(table, error, &Reason::error);
  if (found != table.end()) return fmt::format(fmt::runtime(found->text), found->setting);
  return otherwise != nullptr ? otherwise : "error " + std::to_string(error);
}

// "host:port", with the name that was asked for if there was one.
std::string PeerText(const SSL* connection) {
  const Peer peer = PeerOf(connection);
  const std::string name = WantedName(connection);
  if (peer.address.empty()) {
    const std::string noted = NotedPeer();
    return !noted.empty() ? noted : name.empty() ? "a host that has gone" : name;
  }
  return (name.empty() ? peer.address : name) + ":" + peer.port;
}

std::string AlertText(const Handshake& handshake, int alert) {
  if (alert == SSL_AD_HANDSHAKE_FAILURE && handshake.asksForCertificate) {
    alert = SSL_AD_CERTIFICATE_REQUIRED;
  }
  return ReasonText(kAlerts, alert, SSL_alert_desc_string_long(alert));
}

// OpenSSL calls this when the server asks for a certificate and there is none. With TLS 1.3 the
// server's refusal comes after the handshake, and may be lost with the connection.
int ReportMissingCertificate(SSL* connection, X509**, EVP_PKEY**) {
  Handshake* const handshake = Handshake::Of(connection);
  if (handshake == nullptr) return 0;
  handshake->asksForCertificate = true;
  const std::string line = fmt::format("The server at {} asks for a certificate, and {} is not set",
                                       handshake->peer, kTlsCertificate);
  VQ_LOG(diagModule, 2) << line;
  NoteCause(line);
  return 0;
}

// OpenSSL calls it for each message. It does not return to its caller while such messages arrive,
// and a server may send them without end, also after the handshake.
void LimitMessages(int isSent, int, int type, const void* bytes, std::size_t size, SSL* connection,
                   void*) {
  constexpr int kMost = 1000;
  Handshake* const handshake = Handshake::Of(connection);
  if (handshake == nullptr || isSent != 0 || size == 0) return;
  // With TLS 1.3 the header of each record says that it has data.
  const int kindIsIn =
      SSL_version(connection) == TLS1_3_VERSION ? SSL3_RT_INNER_CONTENT_TYPE : SSL3_RT_HEADER;
  if (type == kindIsIn && *static_cast<const unsigned char*>(bytes) == SSL3_RT_APPLICATION_DATA) {
    handshake->messages = 0;
  }
  if (type != SSL3_RT_HANDSHAKE || ++handshake->messages <= kMost) return;
  handshake->Report("it sends messages without end");
  ::shutdown(SSL_get_fd(connection), SHUT_RDWR);
}

// OpenSSL would wait for ever for a process that writes to a FIFO.
void CheckIsFile(const std::string& file, std::string_view setting) {
  std::error_code failure;
  const std::filesystem::file_type type = std::filesystem::status(file, failure).type();
  if (file.empty() || type == std::filesystem::file_type::regular ||
      type == std::filesystem::file_type::not_found) {
    return;
  }
  throw std::invalid_argument(
      fmt::format("'{}' of {} cannot be used: it is no file that can be read", file, setting));
}

[[noreturn]] void Refuse(std::string_view what, std::string_view file, std::string_view setting,
                         const char* otherwise = "it cannot be read") {
  const unsigned long error = ERR_peek_last_error();
  const char* const reason = error != 0 ? ERR_reason_error_string(error) : nullptr;
  ERR_clear_error();
  throw std::invalid_argument(fmt::format("{} '{}' of {} cannot be used: {}", what, file, setting,
                                          reason != nullptr ? reason : otherwise));
}

// Whether a file has that many revocation lists and nothing else but comments. OpenSSL skips what
// it cannot read, which may be a newer list.
bool HasOnly(int lists, const std::string& file) {
  constexpr std::string_view kBase64 =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
  std::ifstream stream(file, std::ios::binary);
  int found = 0;
  bool isInside = false;
  for (std::string line; std::getline(stream, line);) {
    line.resize(line.find_last_not_of(" \t\r") + 1);
    if (isInside && line == "-----END X509 CRL-----") {
      isInside = false;
    } else if (isInside) {
      if (line.find_first_not_of(kBase64) != std::string::npos) return false;
    } else if (line == "-----BEGIN X509 CRL-----") {
      isInside = true;
      ++found;
    } else if (!line.empty() && line.front() != '#') {
      return false;
    }
  }
  return found == lists;
}

// Whether one of the revocation lists has only changes. OpenSSL would take it for a whole list.
bool HasDelta(X509_STORE* store) {
  const auto* const objects = X509_STORE_get0_objects(store);
  for (int i = 0; i < sk_X509_OBJECT_num(objects); ++i) {
    const X509_CRL* const list = X509_OBJECT_get0_X509_CRL(sk_X509_OBJECT_value(objects, i));
    if (list != nullptr && X509_CRL_get_ext_by_NID(list, NID_delta_crl, -1) >= 0) return true;
  }
  return false;
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
    throw std::invalid_argument(fmt::format("{}, {} or {} is set, and TLS is off; set {}",
                                            kTlsServerNames, kTlsEncryptLookups, kTlsRevocationList,
                                            kTlsCa));
  }
  if (settings.listenEndpoint.tlsPort != 0 && tls.certificate.empty()) {
    throw std::invalid_argument(
        fmt::format("the listen endpoint has an ssl_port, and {} is not set", kTlsCertificate));
  }
}

void ConfigureTls(SSL_CTX& context, const TlsSettings& settings) {
  ERR_clear_error();
  if (!settings.verifyPeer && (!settings.serverNames.empty() || !settings.revocationList.empty())) {
    throw std::invalid_argument(fmt::format("{} or {} is set, and {} is 0", kTlsServerNames,
                                            kTlsRevocationList, kTlsVerifyPeer));
  }
  CheckIsFile(settings.caCertificate, kTlsCa);
  CheckIsFile(settings.certificate, kTlsCertificate);
  CheckIsFile(settings.privateKey, kTlsKey);
  CheckIsFile(settings.revocationList, kTlsRevocationList);
  SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
  SSL_CTX_set_options(&context, SSL_OP_NO_RENEGOTIATION);
  SSL_CTX_set_msg_callback(&context, LimitMessages);
  SSL_CTX_set_default_passwd_cb(&context, NoPassPhrase);
  if (settings.caCertificate.empty()) {
    SSL_CTX_set_default_verify_paths(&context);
  } else {
    const char* const file = settings.caCertificate.c_str();
    if (SSL_CTX_load_verify_file(&context, file) != 1) {
      Refuse("the file of CA certificates", file, kTlsCa);
    }
    SSL_CTX_set_client_CA_list(&context, SSL_load_client_CA_file(file));
  }
  SSL_CTX_set_client_cert_cb(&context, ReportMissingCertificate);
  if (!settings.revocationList.empty()) {
    X509_STORE* const store = SSL_CTX_get_cert_store(&context);
    X509_LOOKUP* const files = X509_STORE_add_lookup(store, X509_LOOKUP_file());
    const int lists = files == nullptr ? 0
                                       : X509_load_crl_file(files, settings.revocationList.c_str(),
                                                            X509_FILETYPE_PEM);
    if (lists < 1 || !HasOnly(lists, settings.revocationList) || HasDelta(store)) {
      Refuse("the file of revocation lists", settings.revocationList, kTlsRevocationList,
             "it has more than whole lists in PEM form");
    }
    X509_STORE_set_flags(store, X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL);
  }
  if (settings.certificate.empty()) {
    if (settings.privateKey.empty()) return;
    throw std::invalid_argument(fmt::format("{} is set and {} is not", kTlsKey, kTlsCertificate));
  }
  if (SSL_CTX_use_certificate_chain_file(&context, settings.certificate.c_str()) != 1) {
    Refuse("the certificate", settings.certificate, kTlsCertificate);
  }
  const bool ownFile = !settings.privateKey.empty();
  const std::string& key = ownFile ? settings.privateKey : settings.certificate;
  const char* const setting = ownFile ? kTlsKey : kTlsCertificate;
  if (SSL_CTX_use_PrivateKey_file(&context, key.c_str(), SSL_FILETYPE_PEM) != 1) {
    Refuse("the private key (one without a pass phrase is needed)", key, setting);
  }
  if (SSL_CTX_check_private_key(&context) != 1) Refuse("the private key", key, setting);
}

void WarnOfWeakVerification(const TlsSettings& settings) {
  if (!settings.verifyPeer) {
    VQ_LOG(diagModule, 1) << "TLS certificates are not verified, since " << kTlsVerifyPeer
                          << " is 0: any host can impersonate the server";
  } else if (!settings.verifyHost) {
    VQ_LOG(diagModule, 1) << "TLS certificates are not compared with the host that was asked for, "
                          << "since " << kTlsVerifyHost
                          << " is 0: any server with a certificate of "
                          << "a trusted CA can impersonate another";
  }
}

bool IsLookUp(std::string_view operation, bool ofServiceItself) {
  constexpr std::string_view kLookUps[] = {"resolve", "resolve_str", "_non_existent", "_is_a"};
  constexpr std::string_view kLists[] = {"list", "next_one", "next_n", "destroy"};
  return std::ranges::find(kLists, operation) != std::end(kLists) ||
         (ofServiceItself && std::ranges::find(kLookUps, operation) != std::end(kLookUps));
}

void ReportUnencrypted(const std::string& cause) {
  VQ_LOG(diagModule, 1) << cause;
  NoteCause(cause);
}

void ReportNoTls(const std::string& server) {
  ReportUnencrypted(fmt::format(
      "The call to {} is refused: it would be unencrypted, since that server offers no TLS. Give "
      "it a TLS endpoint, or take {} and {} out of the settings",
      server, kTlsCa, kTlsCertificate));
}

void ReportLookUpNoTls(const std::string& place) {
  ReportUnencrypted(fmt::format(
      "The look-up at {} is refused: it would be unencrypted, since that naming service offers no "
      "TLS, and {} is 1",
      place, kTlsEncryptLookups));
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
  // The thread that finds the end of a connection would otherwise send an alert, while another
  // thread may be sending. A cut message is noticed by its length.
  if ((where & SSL_CB_HANDSHAKE_DONE) != 0) {
    SSL_set_options(const_cast<SSL*>(connection), SSL_OP_IGNORE_UNEXPECTED_EOF);
  }
  constexpr int kFatal = 2;
  const bool isRefused = where == SSL_CB_READ_ALERT && result >> 8 == kFatal;
  if (SSL_is_server(connection) != 0) {
    const bool hasNone =
        where == SSL_CB_ACCEPT_EXIT && result <= 0 &&
        ERR_GET_REASON(ERR_peek_last_error()) == SSL_R_PEER_DID_NOT_RETURN_A_CERTIFICATE;
    if (isRefused || hasNone) {
      VQ_LOG(diagModule, 2) << PeerText(connection) << " connected to this client, and TLS failed: "
                            << (hasNone ? "it has no certificate" : AlertText({}, result & 0xFF));
    }
    return;
  }
  if ((where & SSL_CB_HANDSHAKE_START) != 0 && Handshake::Of(connection) == nullptr) {
    auto handshake = std::make_unique<Handshake>();
    handshake->place = PeerOf(connection);
    handshake->peer = PeerText(connection);
    // The callback's parameter is const, the connection is not.
    if (SSL_set_ex_data(const_cast<SSL*>(connection), Handshake::Index(), handshake.get()) == 1) {
      handshake.release();
    }
  }
  Handshake* const handshake = Handshake::Of(connection);
  if (handshake == nullptr) return;
  if ((where & SSL_CB_HANDSHAKE_DONE) != 0) handshake->done = true;
  if (isRefused) handshake->Report(AlertText(*handshake, result & 0xFF));
  if (where != SSL_CB_CONNECT_EXIT || result > 0 || handshake->done) return;
  if (const unsigned long error = ERR_peek_last_error(); error != 0) {
    handshake->Report(ReasonText(kErrors, ERR_GET_REASON(error), ERR_reason_error_string(error)));
  } else if ((SSL_get_shutdown(connection) & SSL_RECEIVED_SHUTDOWN) != 0) {
    handshake->Report("it closed the connection");
    // omniORB 4.2 does not handle such an end of a handshake, and would end the process.
    ERR_raise(ERR_LIB_SSL, SSL_R_UNEXPECTED_EOF_WHILE_READING);
  } else if (BIO_should_retry(SSL_get_rbio(connection)) == 0) {
    handshake->Report(std::strerror(errno));
  }
}

void ReportEnd(const SSL& connection) {
  Handshake* const handshake = Handshake::Of(&connection);
  const unsigned long error = ERR_peek_error();
  const char* const reason = ERR_reason_error_string(error);
  if (handshake == nullptr || reason == nullptr) return;
  if (ERR_GET_REASON(error) != SSL_R_PROTOCOL_IS_SHUTDOWN) handshake->Report(reason);
}

void NoteFailureOf(const SSL& connection) {
  const Handshake* const handshake = Handshake::Of(&connection);
  if (handshake != nullptr && !handshake->failure.empty()) NoteCause(handshake->failure);
}

std::optional<std::chrono::sys_seconds> CertificateExpiry(const SSL_CTX& context) {
  const X509* const certificate = SSL_CTX_get0_certificate(&context);
  if (certificate == nullptr) return std::nullopt;
  std::tm expiry{};
  if (ASN1_TIME_to_tm(X509_get0_notAfter(certificate), &expiry) != 1) return std::nullopt;
  return std::chrono::sys_seconds(std::chrono::seconds(::timegm(&expiry)));
}

}  // namespace vq::orb
