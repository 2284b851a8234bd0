#include <support/orb/omniorb/OmniOrbSslContext.h>

#include <stdexcept>
#include <utility>

#include <omniORB4/CORBA.h>
#include <omniORB4/sslContext.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/Tls.h>

namespace vq::orb {
namespace {

#ifdef VQ_OMNIORB_4_3
using omni::sslContext;
#endif

TDiagRegister diagModule("TLS");

// For the callbacks: written before the ORB starts, read by its threads afterwards, which may run
// until the process ends.
auto& tlsInForce = *new TlsSettings;

int Judge(int verified, X509_STORE_CTX* context) {
  return JudgeCertificate(verified, *context, tlsInForce);
}

// omniORB calls one function for each part of the configuration; one of them does everything.
class Context : public sslContext {
 public:
#ifdef VQ_OMNIORB_4_3
  // What is not set here stays uninitialised, and OpenSSL would call it.
  Context() {
    copy_globals(false);
    update_verify_mode(TlsVerifyMode(tlsInForce), -1, Judge);
  }
#endif
  SSL_CTX* Get() const {
    return get_SSL_CTX();
  }

 protected:
  void set_supported_versions() override {}
  void set_CA() override {}
  void set_privatekey() override {}
  void set_certificate() override {
    try {
      ConfigureTls(*get_SSL_CTX(), tlsInForce);
    } catch (const std::invalid_argument& e) {  // A file changed since it was checked.
      VQ_LOG(diagModule, 1) << e.what();
      throw CORBA::INITIALIZE(0, CORBA::COMPLETED_NO);
    }
  }
  void set_DH() override {
    SSL_CTX_set_dh_auto(get_SSL_CTX(), 1);
  }
#ifndef VQ_OMNIORB_4_3
  int set_verify_mode() override {
    return TlsVerifyMode(tlsInForce);
  }
#endif
};

}  // namespace

void InstallSslContext(const TlsSettings& settings) {
  tlsInForce = settings;
  sslContext::verify_callback = Judge;
  sslContext::info_callback = FollowHandshake;
  sslContext::singleton = new Context;  // omniORB deletes it when the ORB ends
}

void RemoveSslContext() {
  delete std::exchange(sslContext::singleton, nullptr);
}

SSL_CTX* CurrentSslContext() {
  const auto* const context = dynamic_cast<const Context*>(sslContext::singleton);
  return context != nullptr ? context->Get() : nullptr;
}

}  // namespace vq::orb
