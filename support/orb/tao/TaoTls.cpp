#include <support/orb/tao/TaoTls.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/TlsVerdict.h>
#include <support/orb/tao/TaoOrb.h>

#if defined(VQ_TAO_SSLIOP)  // CMake found TAO's TLS library
#include <ace/SSL/SSL_Context.h>
#include <orbsvcs/SecurityLevel2C.h>
#include <support/orb/tao/TaoTlsProtocol.h>
#endif

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

}  // namespace

#if defined(VQ_TAO_SSLIOP)

namespace {

// What the callback looks at; written before the ORB starts, read by its threads after that.
TlsSettings tlsInForce;

int Judge(int verified, X509_STORE_CTX* context) {
  return JudgeCertificate(verified, *context, tlsInForce);
}

// ACE keeps the certificate of an earlier start, which is not to be shown any more.
int ChooseCertificate(SSL* connection, void*) {
  if (tlsInForce.certificate.empty()) SSL_certs_clear(connection);
  return 1;
}

// ACE sets the callback of its context anew whenever it is asked for it, so ours is put in here.
int Verify(X509_STORE_CTX* context, void*) {
  X509_STORE_CTX_set_verify_cb(context, Judge);
  return X509_verify_cert(context);
}

}  // namespace

void TaoTls::Prepare(const OrbSettings& settings) {
  CheckTls(settings);
  if (!settings.tls.IsOn()) return;
  RegisterTlsProtocol();
  tlsInForce = settings.tls;
  WarnOfWeakVerification(settings.tls);
  ACE_SSL_Context& ace = *ACE_SSL_Context::instance();
  ace.default_verify_mode(TlsVerifyMode(settings.tls));
  SSL_CTX& context = *ace.context();
  SSL_CTX_set_cert_store(&context, X509_STORE_new());  // authorities of an earlier start
  ConfigureTls(context, settings.tls);
  SSL_CTX_set_max_proto_version(&context, 0);  // as OpenSSL has it, whatever an earlier start set
  if (settings.biDirectional) ForbidMessagesAfterHandshake(context);
  SSL_CTX_set_info_callback(&context, FollowConnection);
  SSL_CTX_set_cert_cb(&context, ChooseCertificate, nullptr);
  SSL_CTX_set_cert_verify_callback(&context, Verify, nullptr);
}

void TaoTls::AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings) {
  if (!settings.tls.IsOn()) return;
  ForgetNaming();
  if (settings.tls.encryptLookups) return;
  try {
    const std::vector<std::string> references = NamingReferences(settings);
    for (const std::string& reference : references) {
      const CORBA::Object_var naming = orb->string_to_object(reference.c_str());
      if (!OffersTls(naming.in())) AddNaming(naming.in());
    }
    if (references.size() != 1) return;
    const CORBA::Object_var naming = orb->resolve_initial_references("NameService");
    const CORBA::Object_var asked = ForLookUps(naming.in());
    orb->register_initial_reference("NameService", asked.in());
  } catch (const CORBA::Exception& e) {  // Its first use tells.
    VQ_LOG(diagModule, 4) << "The naming service is not asked unencrypted: " << e;
  }
}

CORBA::Object_ptr TaoTls::ForLookUps(CORBA::Object_ptr object) {
  if (OffersTls(object)) return CORBA::Object::_duplicate(object);
  const CORBA::ORB_var orb = object->_get_orb();
  CORBA::Any value;
  value <<= Security::SecQOPNoProtection;
  CORBA::Policy_var unprotected;
  try {
    unprotected = orb->create_policy(Security::SecQOPPolicy, value);
  } catch (const CORBA::PolicyError&) {  // This ORB has no TLS.
    return CORBA::Object::_duplicate(object);
  }
  return WithPolicy(object, unprotected.in());
}

std::optional<std::chrono::sys_seconds> TaoTls::CertificateExpiry(const OrbSettings& settings) {
  if (settings.tls.certificate.empty()) return std::nullopt;
  return vq::orb::CertificateExpiry(*ACE_SSL_Context::instance()->context());
}

#else

void TaoTls::Prepare(const OrbSettings& settings) {
  CheckTls(settings);
  if (settings.tls.IsOn()) {
    throw std::invalid_argument(
        "-SSLCACertificate or -SSLCertificate is set, and this library was built without TAO's TLS "
        "library SSLIOP");
  }
}

void TaoTls::AllowNaming(CORBA::ORB_ptr, const OrbSettings&) {}

CORBA::Object_ptr TaoTls::ForLookUps(CORBA::Object_ptr naming) {
  return CORBA::Object::_duplicate(naming);
}

std::optional<std::chrono::sys_seconds> TaoTls::CertificateExpiry(const OrbSettings&) {
  VQ_LOG(diagModule, 4)
      << "There is no certificate to look at: this library was built without TAO's "
      << "TLS library SSLIOP";
  return std::nullopt;
}

#endif

}  // namespace vq::orb
