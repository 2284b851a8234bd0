#include <support/orb/omniorb/OmniOrbTls.h>

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <netdb.h>

#include <omniORB4/giopEndpoint.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/Tls.h>
#include <support/orb/omniorb/OmniOrbInternals.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/omniorb/OmniOrbProfiles.h>
#include <support/orb/omniorb/OmniOrbSslContext.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("TLS");

// For the interceptors: written before the ORB starts, read by its threads afterwards, which may
// run until the process ends. These are those of the naming service's references.
bool encryptLookups = false;
auto& namingProfiles = *new std::set<std::string>;
auto& namingAddresses = *new std::set<std::string>;  // "giop:tcp:127.0.0.1:2809"

void CheckFiles(const TlsSettings& settings) {
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_method()),
                                                                  &SSL_CTX_free);
  if (context == nullptr) throw std::invalid_argument("OpenSSL does not start");
  ConfigureTls(*context, settings);
}

bool IsTls(std::string_view address) {
  return address.starts_with(kTls);
}

// A reference that offers TLS is called over TLS only: its other addresses are removed.
CORBA::Boolean KeepTlsAddresses(omni::omniInterceptors::decodeIOR_T::info_T& info) {
  omni::giopAddressList& addresses = info.ior.getIORInfo()->addresses();
  const auto isTls = [](const omni::giopAddress* address) { return IsTls(address->address()); };
  if (std::none_of(addresses.begin(), addresses.end(), isTls)) return true;
  RemoveAddresses(addresses, [](std::string_view address) { return !IsTls(address); });
  return true;
}

// The content of a reference's first IIOP profile, which is the same in every copy of the
// reference, also after a forward.
std::string ProfileOf(omniObjRef* object) {
  if (object == nullptr) return {};
  const omniIOR_var ior = object->_getIOR();
  const IOP::TaggedProfileList& profiles = ior->iopProfiles();
  for (CORBA::ULong i = 0; i < profiles.length(); ++i) {
    if (profiles[i].tag != IOP::TAG_INTERNET_IOP) continue;
    const auto& data = profiles[i].profile_data;
    return {reinterpret_cast<const char*>(data.get_buffer()), data.length()};
  }
  return {};
}

// A LocateRequest has no operation and is none: this library does not send any.
bool IsLookUp(const CallTarget& target) {
  return target.operation != nullptr &&
         vq::orb::IsLookUp(target.operation, namingProfiles.contains(ProfileOf(target.object)));
}

// The naming service may forward to another reference at its own address only. A host name's
// address is known when the connection is open.
bool IsAtNamingService(const CallTarget& target) {
  return target.peer == nullptr || namingAddresses.contains(target.address) ||
         namingAddresses.contains(target.peer);
}

// Raises for a request that would be sent unencrypted and is no look-up. Called for each request
// before its first byte is sent, and again when a connection was opened.
void RefuseUnencrypted(omni::GIOP_C& call) {
  const CallTarget target = TargetOf(call);
  const std::string_view address = target.address != nullptr ? target.address : "";
  if (IsTls(address)) return;
  const std::string place(address.substr(std::min(address.size(), std::string_view(kTcp).size())));
  if (!IsLookUp(target)) {
    ReportNoTls(place);
  } else if (encryptLookups) {
    ReportLookUpNoTls(place);
  } else if (!IsAtNamingService(target)) {
    ReportUnencrypted("The look-up at " + place + " is refused: the naming service forwarded it " +
                      "there, unencrypted. If that is right, name " + place + " in " + kInitRef);
  } else {
    return;
  }
  // A server that forwarded the call is asked anew the next time, as after a failed forward.
  if (target.object != nullptr) omni::revertToOriginalProfile(target.object);
  throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
}

template <class Info>
CORBA::Boolean GuardRequest(Info& info) {
  RefuseUnencrypted(info.giop_c);
  return true;
}

// With bidirectional IIOP the connection to the naming service can be used for callbacks, too.
CORBA::Boolean GuardCallBack(omni::omniInterceptors::serverReceiveRequest_T::info_T& info) {
  if (!IsOverOwnConnection(info.giop_s) || IsTls(info.peeraddress())) return true;
  VQ_LOG(diagModule, 1) << "A call back by " << info.peeraddress()
                        << " is refused: it came over an unencrypted connection";
  throw CORBA::NO_PERMISSION(0, CORBA::COMPLETED_NO);
}

// Adds an address, and each numeric address of its host name.
void AddNamingAddress(const omni::giopAddress& address) {
  const std::string text = address.address();
  namingAddresses.insert(text);
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (address.host() == nullptr || ::getaddrinfo(address.host(), nullptr, &hints, &found) != 0) {
    return;
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    char host[NI_MAXHOST];
    if (::getnameinfo(one->ai_addr, one->ai_addrlen, host, sizeof host, nullptr, 0,
                      NI_NUMERICHOST) == 0) {
      namingAddresses.insert(kTcp + UriHost(host) + text.substr(text.rfind(':')));
    }
  }
}

void AddNaming(CORBA::Object_ptr naming) {
  if (CORBA::is_nil(naming)) return;
  namingProfiles.insert(ProfileOf(naming->_PR_getobj()));
  const omniIOR_var ior = naming->_PR_getobj()->_getIOR();
  for (const omni::giopAddress* address : ior->getIORInfo()->addresses()) {
    AddNamingAddress(*address);
  }
}

}  // namespace

void PrepareTls(const OrbSettings& settings) {
  CheckTls(settings);
  if (!settings.tls.IsOn()) return;
  CheckFiles(settings.tls);
  WarnOfWeakVerification(settings.tls);
  InstallSslContext(settings.tls);
}

void GuardTls(CORBA::ORB_ptr orb, const OrbSettings& settings) {
  if (!settings.tls.IsOn()) return;
  omni::omniInterceptors& interceptors = *omniORB::getInterceptors();
  interceptors.decodeIOR.add(KeepTlsAddresses);
  interceptors.clientSendRequest.add(GuardRequest);
  interceptors.clientOpenConnection.add(GuardRequest);
  interceptors.serverReceiveRequest.add(GuardCallBack);
  encryptLookups = settings.tls.encryptLookups;
  namingProfiles.clear();
  namingAddresses.clear();
  try {
    const std::vector<std::string> references = NamingReferences(settings);
    if (references.size() < 2) {
      const CORBA::Object_var naming = orb->resolve_initial_references("NameService");
      AddNaming(naming.in());
    }
    for (const std::string& reference : references) {
      const CORBA::Object_var naming = orb->string_to_object(reference.c_str());
      AddNaming(naming.in());
    }
  } catch (const CORBA::Exception&) {  // There is none: its first use reports that.
  }
}

void ForbidMessagesAfterHandshake() {
  SSL_CTX* const context = CurrentSslContext();
  if (context != nullptr) ForbidMessagesAfterHandshake(*context);
}

std::optional<std::chrono::sys_seconds> CertificateExpiry() {
  const SSL_CTX* const context = CurrentSslContext();
  if (context == nullptr) return std::nullopt;
  return CertificateExpiry(*context);
}

}  // namespace vq::orb
