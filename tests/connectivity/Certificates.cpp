#include "Certificates.h"

#include <atomic>
#include <memory>
#include <stdexcept>

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace vq::test {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

void Check(bool good) {
  if (!good) throw std::runtime_error("no certificate");
}

Key NewKey() {
  Key key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
  Check(key != nullptr);
  return key;
}

void AddExtension(X509* certificate, X509* issuer, int nid, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str());
  Check(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1);
  X509_EXTENSION_free(extension);
}

// Signed by `issuer` with its key; without an issuer by itself.
Certificate NewCertificate(const std::string& name, EVP_PKEY* key,
                           const CertificateOptions& options, bool isAuthority, X509* issuer,
                           EVP_PKEY* issuerKey) {
  static std::atomic<long> serial{0};
  constexpr long kDay = 86400;
  Certificate certificate(X509_new(), &X509_free);
  X509* const x509 = certificate.get();
  Check(x509 != nullptr);
  X509_set_version(x509, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
  X509_gmtime_adj(X509_getm_notBefore(x509), options.fromDays * kDay);
  X509_gmtime_adj(X509_getm_notAfter(x509), options.toDays * kDay);
  X509_set_pubkey(x509, key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(x509, X509_get_subject_name(issuer != nullptr ? issuer : x509));
  X509* const signer = issuer != nullptr ? issuer : x509;
  AddExtension(x509, signer, NID_basic_constraints,
               isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE");
  if (!isAuthority && !options.names.empty()) {
    AddExtension(x509, signer, NID_subject_alt_name, options.names);
  }
  Check(X509_sign(x509, issuerKey, EVP_sha256()) != 0);
  return certificate;
}

template <class Write>
std::string Pem(Write write) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), &BIO_free);
  Check(bio != nullptr && write(bio.get()) == 1);
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio.get(), &data);
  return {data, static_cast<std::size_t>(size)};
}

Identity PemOf(X509* certificate, EVP_PKEY* key) {
  return {Pem([&](BIO* bio) { return PEM_write_bio_X509(bio, certificate); }), Pem([&](BIO* bio) {
            return PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr);
          })};
}

}  // namespace

Authority::Authority(const std::string& name)
    : m_key(NewKey().release()),
      m_certificate(NewCertificate(name, m_key, {}, true, nullptr, m_key).release()) {}

Authority::~Authority() {
  X509_free(m_certificate);
  EVP_PKEY_free(m_key);
}

std::string Authority::Pem() const {
  return test::Pem([&](BIO* bio) { return PEM_write_bio_X509(bio, m_certificate); });
}

Identity Authority::Issue(const CertificateOptions& options) const {
  const Key key = NewKey();
  return PemOf(NewCertificate("vq server", key.get(), options, false, m_certificate, m_key).get(),
               key.get());
}

Identity Authority::SelfSigned(const CertificateOptions& options) {
  const Key key = NewKey();
  return PemOf(NewCertificate("vq server", key.get(), options, false, nullptr, key.get()).get(),
               key.get());
}

}  // namespace vq::test
