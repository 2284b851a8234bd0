// Certificates for a test, made by the openssl program: signed by an authority, or self-signed.
//
//   const Authority authority(directory, "authority");
//   const Identity server = authority.Issue({.names = "IP:127.0.0.1"});
//   directory.Write("server.pem", server.certificate + server.key);
#ifndef VQ_TESTS_CONNECTIVITY_CERTIFICATES_H
#define VQ_TESTS_CONNECTIVITY_CERTIFICATES_H

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <tests/fixture/TemporaryDirectory.h>

namespace vq::test {

struct Identity {  // PEM
  std::string certificate, key;
};

struct CertificateOptions {
  std::string names = "IP:127.0.0.1,DNS:localhost";  // its subject names; may be empty
  long fromDays = -1;                                // from now
  long toDays = 365;
};

class Authority {
 public:
  Authority(const TemporaryDirectory& directory, const std::string& name)
      : m_path(directory / (name + "/")) {
    directory.Write(name + "/index.txt", "");
    directory.Write(name + "/ca.cnf",
                    "[ca]\ndefault_ca=d\n[p]\ncommonName=supplied\n[d]\ndatabase=index.txt\n"
                    "certificate=ca.pem\nprivate_key=ca.key\nnew_certs_dir=.\nrand_serial=yes\n"
                    "unique_subject=no\ndefault_md=sha256\npolicy=p\ncopy_extensions=copy\n");
    Run(kNew + "-x509 -days 365 -subj /CN=" + name + " -keyout ca.key -out ca.pem");
  }

  std::string File() const { return m_path + "ca.pem"; }
  Identity Issue(const CertificateOptions& options = {}) const { return Sign(options, ""); }
  Identity SelfSigned() const { return Sign({}, " -selfsign -keyfile own.key"); }
  void Revoke(const Identity& identity) const {
    std::ofstream(m_path + "revoked.pem") << identity.certificate;
    Run("openssl ca -config ca.cnf -revoke revoked.pem");
  }
  std::string RevocationList() const {  // PEM
    Run("openssl ca -config ca.cnf -gencrl -crldays 2 -out crl.pem");
    return ReadFile(m_path + "crl.pem");
  }

 private:
  inline static const std::string kNew =
      "openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes ";

  Identity Sign(const CertificateOptions& options, const std::string& signer) const {
    const auto inDays = [](long days) {
      return "$(date -u -d '" + std::to_string(days) + " days' +%Y%m%d%H%M%SZ)";
    };
    Run(kNew + "-subj '/CN=vq server' -addext basicConstraints=critical,CA:FALSE " +
        (options.names.empty() ? "" : "-addext subjectAltName=" + options.names) +
        " -keyout own.key -out own.csr");
    Run("openssl ca -batch -config ca.cnf -notext -in own.csr -out own.pem" + signer +
        " -startdate " + inDays(options.fromDays) + " -enddate " + inDays(options.toDays));
    return {ReadFile(m_path + "own.pem"), ReadFile(m_path + "own.key")};
  }

  void Run(const std::string& command) const {
    if (std::system(("cd " + m_path + " && " + command + " >log 2>&1").c_str()) != 0) {
      throw std::runtime_error(command + ": " + ReadFile(m_path + "log"));
    }
  }

  std::string m_path;
};

}  // namespace vq::test

#endif  // VQ_TESTS_CONNECTIVITY_CERTIFICATES_H
