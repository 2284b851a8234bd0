// Adds to SSLIOP what it lacks: the name of the host that is connected to, for the check of the
// certificate, a log line where a handshake fails or a server offers no TLS, the deadline of a
// reply within a TLS record, and the rule that only the naming service is called unencrypted.
#include <support/orb/tao/TaoTls.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/select.h>
#include <sys/socket.h>

#include <ace/INET_Addr.h>
#include <ace/SSL/SSL_Context.h>
#include <ace/SSL/SSL_SOCK_Stream.h>
#include <ace/Svc_Handler.h>
#include <orbsvcs/Log_Macros.h>
#include <orbsvcs/SSLIOP/SSLIOP_Endpoint.h>
#include <orbsvcs/SSLIOP/SSLIOP_Factory.h>
#include <tao/Base_Transport_Property.h>
#include <tao/IIOP_Endpoint.h>
#include <tao/Profile.h>
#include <tao/Profile_Transport_Resolver.h>
#include <tao/Stub.h>
#include <tao/Transport.h>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/NoSignals.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/ThreadText.h>
#include <support/orb/Tls.h>
#include <support/orb/tao/TaoCalls.h>
#include <support/orb/tao/TaoConnector.h>
#include <support/orb/tao/TaoOptions.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

// The host that this thread connected to last; SSLIOP's handshakes are in the connecting call.
thread_local ThreadText<300> hostBeingConnected;

// Whether this thread has made a handshake since it was set to false.
thread_local bool madeHandshake = false;

bool IsAddress(const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return ::inet_pton(AF_INET, host.c_str(), bytes.data()) == 1 ||
         ::inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

// The object's key, which distinguishes the objects at one address. Profiles of unknown kinds have
// none.
std::string KeyOf(TAO_Stub& stub) {
  TAO_MProfile& profiles = stub.base_profiles();
  for (TAO_PHandle i = 0; i < profiles.profile_count(); ++i) {
    const TAO_Profile& profile = *profiles.get_profile(i);
    if (profile.tag() != IOP::TAG_INTERNET_IOP) continue;
    const TAO::ObjectKey& key = profile.object_key();
    return {reinterpret_cast<const char*>(key.get_buffer()), key.length()};
  }
  return {};
}

// The addresses of the naming services without TLS. Only these may be called unencrypted. They may
// forward to another reference of their own, but not to another address.
struct NamingPlace {
  std::string host;
  ACE_INET_Addr address;
  std::string key;
};
auto& namingLock = *new std::mutex;
auto& namingPlaces = *new std::vector<NamingPlace>;

// Whether a naming service is at that address, by name or number; and whether the object is one.
std::pair<bool, bool> FindNaming(const TAO_IIOP_Endpoint& address, TAO_Stub& object) {
  const std::lock_guard lock(namingLock);
  const auto isAt = [&](const NamingPlace& place) {
    return place.address == address.object_addr() ||
           (place.host == address.host() && place.address.get_port_number() == address.port());
  };
  return {std::ranges::any_of(namingPlaces, isAt),
          std::ranges::count(namingPlaces, KeyOf(object), &NamingPlace::key) > 0};
}

// The context with the settings, which is kept: ACE has another one after the application has ended
// an ORB of its own with TLS. That one checks nothing.
auto& contextInForce = *new std::atomic<SSL_CTX*>(nullptr);

void PutInForce(SSL_CTX& context) {
  SSL_CTX_up_ref(&context);
  SSL_CTX_free(contextInForce.exchange(&context));
}

bool IsContextInForce() {
  if (ACE_SSL_Context::instance()->context() == contextInForce) return true;
  NoteCause("the program has ended the TLS of ACE; log out, and in again");
  return false;
}

// SSLIOP's connector. Only a naming service is connected to without TLS.
class Connector : public CheckedConnector {
 public:
  using CheckedConnector::CheckedConnector;

 protected:
  TAO_Transport* Connect(TAO_Connector& connector, TAO::Profile_Transport_Resolver* resolver,
                         TAO_Transport_Descriptor_Interface* descriptor, ACE_Time_Value* timeout,
                         bool& isNew) override {
    auto* const endpoint = dynamic_cast<TAO_SSLIOP_Endpoint*>(descriptor->endpoint());
    if (endpoint == nullptr) return nullptr;
    TAO_IIOP_Endpoint& address = *endpoint->iiop_endpoint();
    if (endpoint->ssl_component().port != 0) {
      NoteUnencrypted({});
      hostBeingConnected = address.host();
      if (!IsContextInForce()) return nullptr;
      const NoSignals none;  // SSLIOP takes one in a handshake for its end.
      return ConnectTls(connector, *resolver, *descriptor, timeout, isNew);
    }
    const std::string place = address.host() + (":" + std::to_string(address.port()));
    const auto [isNaming, isOwnObject] = FindNaming(address, *resolver->stub());
    if (!isNaming || m_settings.tls.encryptLookups) {
      isNaming ? ReportLookUpNoTls(place) : ReportNoTls(place);
      resolver->stub()->reset_profiles();  // A server that forwarded the call is asked anew.
      throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
    }
    NoteUnencrypted(place, isOwnObject);
    // SSLIOP's own function does the same, where a policy of the reference allows it.
    TAO_Base_Transport_Property unencrypted(&address);
    TAO_Transport* const transport =
        connector.TAO_Connector::connect(resolver, &unencrypted, timeout);
    isNew = transport != nullptr && transport->first_request();
    return transport;
  }

 private:
  // SSLIOP puts a new connection into TAO's cache as an idle one, and returns it all the same, so
  // that two threads would use it. Here it is taken from the cache, where one thread gets it.
  static TAO_Transport* ConnectTls(TAO_Connector& connector,
                                   TAO::Profile_Transport_Resolver& resolver,
                                   TAO_Transport_Descriptor_Interface& descriptor,
                                   ACE_Time_Value* timeout, bool& isNew) {
    constexpr int kMost = 16;  // Other threads may take those that this one opens.
    const Countdown countdown(timeout);
    for (int i = 0; i < kMost && countdown.Update(); ++i) {
      madeHandshake = false;
      TAO_Transport* const transport = connector.connect(&resolver, &descriptor, timeout);
      if (transport == nullptr || (!madeHandshake && transport->is_connected())) return transport;
      isNew |= madeHandshake;
      transport->remove_reference();
    }
    return nullptr;
  }
};

// In place of ACE's service of that name, which deletes the process's context when any ORB ends.
struct ContextKeeper : ACE_Service_Object {
  explicit ContextKeeper(const OrbSettings&) {}
};

// For the callbacks: written before the ORB starts, read by its threads afterwards, which may run
// until the process ends.
auto& tlsInForce = *new TlsSettings;

int Judge(int verified, X509_STORE_CTX* context) {
  return JudgeCertificate(verified, *context, tlsInForce);
}

// ACE keeps the certificate of an earlier start, which must not be used any more.
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

// ACE waits with select() in a handshake, which would write beyond its memory.
void EndOnHighDescriptor(const SSL* connection) {
  const int socket = SSL_get_fd(connection);
  if (socket < FD_SETSIZE) return;
  ::shutdown(socket, SHUT_RDWR);
  VQ_LOG(diagModule, 1) << "TAO can use descriptors up to " << FD_SETSIZE - 1
                        << ". This process has too many open files: " << socket;
}

// For OpenSSL, at the start and end of a handshake. The host's name is given to the server, too; an
// address is no name. Any thread.
void FollowConnection(const SSL* connection, int where, int result) {
  if (where == SSL_CB_HANDSHAKE_START) EndOnHighDescriptor(connection);
  if (where == SSL_CB_HANDSHAKE_START && SSL_is_server(connection) == 0) {
    madeHandshake = true;
    BIO_set_callback_ex(SSL_get_rbio(connection), BeforeRead);
    const std::string host(std::string_view{hostBeingConnected});
    if (!host.empty() && !IsAddress(host)) {
      // Only the callback's type is const.
      SSL_set_tlsext_host_name(const_cast<SSL*>(connection), host.c_str());
    }
  }
  FollowHandshake(connection, where, result);
}

}  // namespace

void PrepareTls(const OrbSettings& settings, ACE_Service_Gestalt& services, bool isFirst) {
  CheckTls(settings);
  if (!settings.tls.IsOn()) return;
  AddService<ContextKeeper>(services, "ACE_SSL_Initializer", settings);
  AddService<CheckedProtocol<TAO::SSLIOP::Protocol_Factory, Connector>>(services, kTlsProtocol,
                                                                        settings);
  if (!isFirst) return;
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
  PutInForce(context);
}

void AllowNaming(CORBA::ORB_ptr orb, const OrbSettings& settings) {
  if (!settings.tls.IsOn()) return;
  std::vector<NamingPlace> places;
  try {
    for (const std::string& reference : NamingReferences(settings)) {
      const CORBA::Object_var naming = orb->string_to_object(reference.c_str());
      const std::vector<ReferenceEndpoint> endpoints = EndpointsOf(naming.in());
      if (std::ranges::any_of(endpoints, &ReferenceEndpoint::tls)) continue;
      for (const auto& [host, port, tls, profile] : endpoints) {
        places.push_back({host, ACE_INET_Addr(static_cast<u_short>(port), host.c_str()),
                          KeyOf(*naming->_stubobj())});
      }
    }
  } catch (const CORBA::Exception&) {  // Its first use reports it.
  }
  const std::lock_guard lock(namingLock);
  namingPlaces = std::move(places);
}

int PeekTls(TAO_Transport& transport, void* bytes, int size) {
  // SSLIOP does not export the name of its own class.
  using Handler = ACE_Svc_Handler<ACE_SSL_SOCK_Stream, ACE_NULL_SYNCH>;
  auto* const handler = dynamic_cast<Handler*>(transport.event_handler_i());
  if (handler == nullptr) return -1;
  const int length = SSL_peek(handler->peer().ssl(), bytes, size);
  if (length <= 0) ERR_clear_error();
  return length;
}

ACE_Log_Category* TlsLog() {
  return &ORBSVCS_log_category;
}

std::optional<std::chrono::sys_seconds> CertificateExpiry(const OrbSettings& settings) {
  if (settings.tls.certificate.empty()) return std::nullopt;
  return vq::orb::CertificateExpiry(*ACE_SSL_Context::instance()->context());
}

}  // namespace vq::orb
