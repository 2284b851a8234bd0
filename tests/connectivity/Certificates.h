// Certificates for a test: an authority, and certificates that it or nobody signed.
//
//   const Authority authority("Test authority");
//   directory.Write("ca.pem", authority.Pem());
//   const Identity server = authority.Issue({.names = "IP:127.0.0.1"});
//   directory.Write("server.pem", server.certificate + server.key);
#ifndef VQ_TESTS_CONNECTIVITY_CERTIFICATES_H
#define VQ_TESTS_CONNECTIVITY_CERTIFICATES_H

#include <string>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace vq::test {

struct Identity {  // PEM
  std::string certificate;
  std::string key;
};

struct CertificateOptions {
  std::string names = "IP:127.0.0.1,DNS:localhost";  // whom it is for; empty: nobody
  long fromDays = -1;                                // from now
  long toDays = 365;
};

class Authority {
 public:
  explicit Authority(const std::string& name);
  ~Authority();
  Authority(const Authority&) = delete;
  Authority& operator=(const Authority&) = delete;

  std::string Pem() const;
  Identity Issue(const CertificateOptions& options) const;
  static Identity SelfSigned(const CertificateOptions& options);

 private:
  EVP_PKEY* m_key;
  X509* m_certificate;
};

}  // namespace vq::test

#endif  // VQ_TESTS_CONNECTIVITY_CERTIFICATES_H
