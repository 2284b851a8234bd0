#include <support/orb/omniorb/OmniOrbTls.h>

#include <memory>
#include <set>
#include <stdexcept>
#include <string>

#include <netdb.h>

#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>

#include <support/orb/ReferenceAddress.h>
#include <support/orb/TlsVerdict.h>
#include <support/orb/omniorb/OmniOrbSslContext.h>

namespace vq::orb {
namespace {

std::set<std::string> clearAllowed;  // "giop:tcp:127.0.0.1:2809"

void CheckFiles(const TlsSettings& settings) {
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_method()),
                                                                  &SSL_CTX_free);
  if (context == nullptr) throw std::invalid_argument("OpenSSL does not start");
  ConfigureTls(*context, settings);
}

CORBA::Boolean RefuseClear(omni::omniInterceptors::clientOpenConnection_T::info_T& info) {
  const std::string peer = info.peeraddress();
  if (peer.starts_with("giop:ssl:") || clearAllowed.contains(peer)) return true;
  LogRefusedInClear(peer);
  info.reject = true;
  info.why = "TLS is on, and the server offers none";
  return true;
}

// Every address that the naming service's host name stands for.
std::set<std::string> AddressesOf(const ReferenceAddress& reference) {
  std::set<std::string> addresses;
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(reference.host.c_str(), nullptr, &hints, &found) != 0) return addresses;
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    char host[NI_MAXHOST];
    if (::getnameinfo(one->ai_addr, one->ai_addrlen, host, sizeof host, nullptr, 0,
                      NI_NUMERICHOST) != 0) {
      continue;
    }
    const std::string text = one->ai_family == AF_INET6 ? "[" + std::string(host) + "]" : host;
    addresses.insert("giop:tcp:" + text + ":" + reference.port);
  }
  return addresses;
}

}  // namespace

void OmniOrbTls::Prepare(const OrbSettings& settings) {
  CheckTlsPort(settings);
  if (!settings.tls.IsOn()) return;
  CheckFiles(settings.tls);
  WarnOfWeakVerification(settings.tls);
  OmniOrbSslContext::Install(settings.tls);
}

void OmniOrbTls::Abandon() {
  OmniOrbSslContext::Remove();
}

void OmniOrbTls::Guard(CORBA::ORB_ptr orb, const OrbSettings& settings) {
  if (!settings.tls.IsOn()) return;
  clearAllowed.clear();
  try {
    CORBA::Object_var naming = orb->resolve_initial_references("NameService");
    ReferenceAddress address;
    if (AddressOf(naming.in(), address) == AddressFault::kNone) clearAllowed = AddressesOf(address);
  } catch (const CORBA::Exception&) {  // There is none; its first use tells.
  }
  omniORB::getInterceptors()->clientOpenConnection.add(RefuseClear);
}

std::optional<std::chrono::sys_seconds> OmniOrbTls::CertificateExpiry() {
  const SSL_CTX* const context = OmniOrbSslContext::Current();
  if (context == nullptr) return std::nullopt;
  return vq::orb::CertificateExpiry(*context);
}

}  // namespace vq::orb
