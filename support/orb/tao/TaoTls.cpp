// Adds to SSLIOP what it lacks: the name of the host that is connected to, for the check of the
// certificate, a log line where a handshake fails or a server offers no TLS, the deadline of a
// reply within a TLS record, and the rule that only the naming service is called unencrypted.
#include <support/orb/tao/TaoTls.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <ace/INET_Addr.h>
#include <ace/SSL/SSL_Context.h>
#include <orbsvcs/SSLIOP/SSLIOP_Endpoint.h>
#include <orbsvcs/SSLIOP/SSLIOP_Factory.h>
#include <orbsvcs/SecurityLevel2C.h>
#include <tao/IIOP_Endpoint.h>
#include <tao/Profile.h>
#include <tao/Profile_Transport_Resolver.h>
#include <tao/Stub.h>
#include <tao/Transport_Descriptor_Interface.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/TlsVerdict.h>
#include <support/orb/tao/TaoCalls.h>
#include <support/orb/tao/TaoConnector.h>
#include <support/orb/tao/TaoOptions.h>
#include <support/orb/tao/TaoOrb.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

// The host that this thread connects to; SSLIOP's handshakes are in the connecting call.
thread_local const char* hostBeingConnected = nullptr;

class HostNoted {
 public:
  explicit HostNoted(const char* host) { hostBeingConnected = host; }
  ~HostNoted() { hostBeingConnected = nullptr; }
  HostNoted(const HostNoted&) = delete;
  HostNoted& operator=(const HostNoted&) = delete;
};

bool IsAddress(const char* host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return ::inet_pton(AF_INET, host, bytes.data()) == 1 ||
         ::inet_pton(AF_INET6, host, bytes.data()) == 1;
}

std::string Place(const char* host, int port) {
  return std::string(host) + ":" + std::to_string(port);
}

// The addresses of the naming service, which alone may be called unencrypted. It may forward to
// another reference of its own, but not to another address. Thread safety: any thread.
class NamingPlaces {
 public:
  static NamingPlaces& Instance() {
    static auto* const places = new NamingPlaces;
    return *places;
  }

  void Forget() {
    const std::lock_guard lock(m_mutex);
    m_places.clear();
  }
  void Add(CORBA::Object_ptr naming) {
    for (const ReferenceEndpoint& endpoint : EndpointsOf(naming)) {
      const ACE_INET_Addr resolved(static_cast<u_short>(endpoint.port), endpoint.host.c_str());
      std::set<std::string> forms = Forms(endpoint.host.c_str(), endpoint.port, resolved);
      const std::lock_guard lock(m_mutex);
      m_places.merge(forms);
    }
  }
  bool Contains(const TAO_IIOP_Endpoint& address) {
    const auto forms = Forms(address.host(), address.port(), address.object_addr());
    const std::lock_guard lock(m_mutex);
    return std::any_of(forms.begin(), forms.end(),
                       [this](const std::string& form) { return m_places.contains(form); });
  }

 private:
  // By name and by address.
  static std::set<std::string> Forms(const char* host, int port, const ACE_INET_Addr& resolved) {
    std::set<std::string> forms{Place(host, port)};
    std::array<char, INET6_ADDRSTRLEN> number{};
    if (resolved.get_host_addr(number.data(), number.size()) != nullptr) {
      forms.insert(Place(number.data(), port));
    }
    return forms;
  }

  std::mutex m_mutex;
  std::set<std::string> m_places;
};

bool AsksForNoProtection(TAO::Profile_Transport_Resolver& resolver) {
  const CORBA::Policy_var policy = resolver.stub()->get_policy(Security::SecQOPPolicy);
  const SecurityLevel2::QOPPolicy_var protection = SecurityLevel2::QOPPolicy::_narrow(policy.in());
  return !CORBA::is_nil(protection.in()) && protection->qop() == Security::SecQOPNoProtection;
}

// SSLIOP's connector, and no request unencrypted save to the naming service.
class Connector : public CheckedConnector {
 public:
  Connector(std::unique_ptr<TAO_Connector> connector, const OrbSettings& settings)
      : CheckedConnector(std::move(connector), settings),
        m_encryptLookups(settings.tls.encryptLookups) {}

  TAO_Transport* connect(TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor,
                         ACE_Time_Value* timeout) override {
    auto* const endpoint = dynamic_cast<TAO_SSLIOP_Endpoint*>(descriptor->endpoint());
    const TAO_IIOP_Endpoint* const address =
        endpoint != nullptr ? endpoint->iiop_endpoint() : nullptr;
    if (address == nullptr) return CheckedConnector::connect(resolver, descriptor, timeout);
    const bool offersTls = endpoint->ssl_component().port != 0;
    const std::string place = Place(address->host(), address->port());
    const bool isLookUp = AsksForNoProtection(*resolver);
    if (isLookUp || !offersTls) CheckUnencrypted(*address, place, isLookUp);
    NoteUnencrypted(isLookUp ? place : std::string());
    const HostNoted noted(address->host());
    return CheckedConnector::connect(resolver, descriptor, timeout);
  }

 private:
  void CheckUnencrypted(const TAO_IIOP_Endpoint& address, const std::string& place,
                        bool isLookUp) const {
    const bool isNaming = NamingPlaces::Instance().Contains(address);
    if (isNaming && m_encryptLookups) {
      ReportUnencrypted("The look-up at " + place + " is refused: it would be unencrypted, since " +
                        "that naming service offers no TLS, and -SSLEncryptLookups is 1");
    } else if (isNaming && isLookUp) {
      return;
    } else {
      ReportNoTls(place);
    }
    throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
  }

  const bool m_encryptLookups;
};

// Whether the first profile of a reference contains a port for TLS.
bool OffersTls(CORBA::Object_ptr object) {
  TAO_Profile* const profile = object->_stubobj()->base_profiles().get_profile(0);
  auto* const endpoint =
      profile != nullptr ? dynamic_cast<TAO_SSLIOP_Endpoint*>(profile->endpoint()) : nullptr;
  return endpoint != nullptr && endpoint->ssl_component().port != 0;
}

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

// Lets a read of a reply end at the call's deadline, however slowly a TLS record arrives.
long BeforeRead(BIO* bio, int operation, const char*, std::size_t, int, long, int result,
                std::size_t*) {
  if (operation != BIO_CB_READ) return result;
  int socket = -1;
  BIO_get_fd(bio, &socket);
  if (AwaitReplyBytes(socket)) return result;
  BIO_clear_retry_flags(bio);
  return -1;
}

// For OpenSSL, at the start and end of a handshake. The host's name is given to the server, too; an
// address is no name. Any thread.
void FollowConnection(const SSL* connection, int where, int result) {
  if (where == SSL_CB_HANDSHAKE_START && SSL_is_server(connection) == 0) {
    BIO_set_callback_ex(SSL_get_rbio(connection), BeforeRead);
    if (hostBeingConnected != nullptr && !IsAddress(hostBeingConnected)) {
      // Only the callback's type is const.
      SSL_set_tlsext_host_name(const_cast<SSL*>(connection), hostBeingConnected);
    }
  }
  FollowHandshake(connection, where, result);
}

}  // namespace

void PrepareTls(const OrbSettings& settings, ACE_Service_Gestalt& services) {
  CheckTls(settings);
  if (!settings.tls.IsOn()) return;
  AddService<CheckedProtocol<TAO::SSLIOP::Protocol_Factory, Connector>>(services, kTlsProtocol,
                                                                        settings);
  tlsInForce = settings.tls;
  WarnOfWeakVerification(settings.tls);
  ACE_SSL_Context& ace = *ACE_SSL_Context::instance();
  ace.default_verify_mode(TlsVerifyMode(settings.tls));
  SSL_CTX& context = *ace.context();
  SSL_CTX_set_cert_store(&context, X509_STORE_new());  // not those of an earlier start
  ConfigureTls(context, settings.tls);
  SSL_CTX_set_max_proto_version(&context, 0);  // as OpenSSL has it, whatever an earlier start set
  if (settings.biDirectional) ForbidMessagesAfterHandshake(context);
  SSL_CTX_set_info_callback(&context, FollowConnection);
  SSL_CTX_set_cert_cb(&context, ChooseCertificate, nullptr);
  SSL_CTX_set_cert_verify_callback(&context, Verify, nullptr);
}

void AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings) {
  if (!settings.tls.IsOn()) return;
  NamingPlaces::Instance().Forget();
  try {
    const std::vector<std::string> references = NamingReferences(settings);
    for (const std::string& reference : references) {
      const CORBA::Object_var naming = orb->string_to_object(reference.c_str());
      if (!OffersTls(naming.in())) NamingPlaces::Instance().Add(naming.in());
    }
    if (settings.tls.encryptLookups || references.size() != 1) return;
    const CORBA::Object_var naming = orb->resolve_initial_references("NameService");
    const CORBA::Object_var asked = ForLookUps(naming.in());
    orb->register_initial_reference("NameService", asked.in());
  } catch (const CORBA::Exception& e) {  // Its first use reports it.
    VQ_LOG(diagModule, 4) << "The naming service is not asked unencrypted: " << e;
  }
}

CORBA::Object_ptr ForLookUps(CORBA::Object_ptr object) {
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

std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings& settings) {
  if (settings.tls.certificate.empty()) return std::nullopt;
  return vq::orb::CertificateExpiry(*ACE_SSL_Context::instance()->context());
}

}  // namespace vq::orb
