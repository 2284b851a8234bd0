#include <support/orb/QCSOrbCommon.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include <sys/eventfd.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/NamingService.h>
#include <support/orb/OrbProduct.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/OwnAddresses.h>
#include <support/os_toolkit/os_file_system.h>

namespace {

TDiagRegister diagModule("QCSOrbCommon");

// The ORB objects by number. Never destroyed as a whole: an ORB may be used until the very end of
// the process.
struct Registry {
  std::mutex mutex;
  std::map<int, std::unique_ptr<QCSOrbCommon>> orbs;

  static Registry& Instance() {
    static auto* const registry = new Registry;
    return *registry;
  }
};

// Replaces the mark of the own address by the address that begins with the IP mask.
void ResolvePublishedHost(vq::orb::OrbSettings& settings) {
  std::string& host = settings.listenEndpoint.publishedHost;
  if (host != vq::orb::kOwnAddressMark) return;
  std::vector<vq::orb::OwnAddress> addresses;
  vq::orb::FindOwnAddresses(addresses);
  host = vq::orb::AddressByMask(addresses, settings.preferIpMask);
  if (!host.empty()) return;
  std::string known;
  for (const vq::orb::OwnAddress& address : addresses) known += " " + address.text;
  throw std::invalid_argument("no address of this host begins with '" + settings.preferIpMask +
                              "', the value of " + vq::orb::kPreferIpMask +
                              "; take one of these:" + known);
}

// Takes for a moment what an ORB needs at least. The products go on without a thread that the
// system refuses, and their calls and their end then wait for it; without a descriptor the cause is
// lost.
void CheckSystemLimits(bool biDirectional) {
  constexpr int kDescriptors = 6;
  const int count = biDirectional ? 6 : 2;
  std::vector<vq::Descriptor> descriptors;
  for (int i = 0; i < kDescriptors; ++i) {
    descriptors.emplace_back(::eventfd(0, EFD_CLOEXEC));
    if (descriptors.back().IsOpen()) continue;
    throw std::invalid_argument(std::string("no file can be opened: ") + std::strerror(errno));
  }
  std::mutex mutex;
  std::vector<std::jthread> threads;
  const std::lock_guard lock(mutex);  // which these threads await, and which ends before them
  try {
    for (int i = 0; i < count; ++i) {
      threads.emplace_back([&mutex] { const std::lock_guard end(mutex); });
    }
  } catch (const std::system_error& e) {
    throw std::invalid_argument(std::string("no thread can be started: ") + e.what());
  }
}

void ReportNotStarted(const TDiagFunc& diag, const std::string& orbName,
                      const std::invalid_argument& why) {
  vq::orb::NoteCause(why.what());
  VQ_LOG(diag, 1) << "The ORB " << orbName << " is not started: " << why.what();
}

void ReportNoNamingService(const TDiagFunc& diag, const CORBA::Exception& exception) {
  vq::orb::NoteCause(std::string("no naming service is configured; set ") + vq::orb::kInitRef);
  VQ_LOG(diag, 1) << "No naming service is configured. Set " << vq::orb::kInitRef
                  << " NameService=corbaloc:iiop:HOST:PORT/NameService on the command line or in "
                  << "the configuration domain: " << exception;
}

CosNaming::Name ServiceName(const std::string& server, const std::string& kind,
                            const std::string& service) {
  CosNaming::Name name(2);
  name.length(2);
  name[0].id = server.c_str();
  name[0].kind = kind.c_str();
  name[1].id = service.c_str();
  name[1].kind = "";
  return name;
}

}  // namespace

QCSOrbCommon::QCSOrbCommon() : m_role(vq::orb::OrbRole::kClient) {}

QCSOrbCommon::~QCSOrbCommon() {
  DestroyOrb(false);
}

QCSOrbCommon* QCSOrbCommon::GetOrbById(int id, QCSOrbCommon* (*factory)()) {
  Registry& registry = Registry::Instance();
  const std::lock_guard lock(registry.mutex);
  std::unique_ptr<QCSOrbCommon>& orb = registry.orbs[id];
  if (orb == nullptr) orb.reset(factory());
  return orb.get();
}

void QCSOrbCommon::DeleteOrbById(int id) {
  Registry& registry = Registry::Instance();
  std::unique_ptr<QCSOrbCommon> orb;  // destroyed after the lock is released
  const std::lock_guard lock(registry.mutex);
  if (const auto found = registry.orbs.find(id); found != registry.orbs.end()) {
    orb = std::move(found->second);
    registry.orbs.erase(found);
  }
}

bool QCSOrbCommon::IsInitialized() const {
  return m_instance != nullptr;
}

bool QCSOrbCommon::InitCorba(int argc, char** argv, const char* name) {
  m_role = vq::orb::OrbRole::kClient;
  return InitAlways(argc, argv, name);
}

bool QCSOrbCommon::InitCorba4Client(int argc, char** argv, const char* name) {
  m_role = vq::orb::OrbRole::kPureClient;
  return InitAlways(argc, argv, name);
}

bool QCSOrbCommon::InitAlways(int argc, char** argv, const char* name) {
  const TDiagFunc diag(diagModule, "QCSOrbCommon::InitAlways");
  vq::orb::TakeCause();
  const std::string orbName = name;
  const std::string scope = orbName.substr(0, orbName.rfind(':'));  // without the number
  std::vector<std::string> productArguments;
  if (!ReadSettings(argc, argv, scope, productArguments)) return false;
  try {
    CheckSystemLimits(m_settings->biDirectional);
    m_instance = vq::orb::StartOrb(orbName, m_role, m_useThreadPool, *m_settings, productArguments);
    if (ReachNamingService()) {
      VQ_LOG(diag, 4) << "The ORB " << orbName << " is up on " << vq::orb::ProductName();
      return true;
    }
  } catch (const std::invalid_argument& e) {
    ReportNotStarted(diag, orbName, e);
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteCause("the ORB does not start: " + vq::orb::ExceptionText(e) +
                       "; check its -ORB options and -ORBListenEndpoints");
    VQ_LOG(diag, 1) << "The ORB " << orbName << " does not start. Check its -ORB options and that "
                    << "it may listen on " << m_settings->table.front().value << ": " << e;
  } catch (...) {
    DestroyOrb(true);
    throw;
  }
  DestroyOrb(true);
  return false;
}

bool QCSOrbCommon::ReadSettings(int argc, char** argv, const std::string& scope,
                                std::vector<std::string>& productArguments) {
  const TDiagFunc diag(diagModule, "QCSOrbCommon::ReadSettings");
  try {
    vq::orb::DomainScopes domain;
    if (!vq::orb::ReadDomainScopes(scope, domain)) throw std::invalid_argument(domain.error);
    const vq::orb::OrbArguments arguments = vq::orb::SplitArguments(argc, argv);
    m_settings =
        std::make_unique<vq::orb::OrbSettings>(vq::orb::ResolveSettings(arguments, domain.scopes));
    ResolvePublishedHost(*m_settings);
    productArguments = arguments.rest;
  } catch (const std::invalid_argument& e) {
    ReportNotStarted(diag, scope, e);
    return false;
  }
  for (const vq::orb::ResolvedSetting& setting : m_settings->table) {
    VQ_LOG(diag, 5) << setting.name << " = '" << setting.value << "' (" << setting.origin << ")";
  }
  return true;
}

// The settings with the naming service's addresses: an ORB that has none, such as that of a
// callback trial, uses those of the one that is up.
const vq::orb::OrbSettings& QCSOrbCommon::NamingSettings() const {
  if (!vq::orb::NamingReferences(*m_settings).empty()) return *m_settings;
  Registry& registry = Registry::Instance();
  const std::lock_guard lock(registry.mutex);
  const auto other = std::ranges::find_if(registry.orbs, [this](const auto& orb) {
    return orb.second.get() != this && orb.second->IsInitialized();
  });
  return other != registry.orbs.end() ? *other->second->m_settings : *m_settings;
}

// Asks the naming service once whether it exists. Without it no server can be found, and here that
// can still be distinguished from a server that is not running.
bool QCSOrbCommon::ReachNamingService() {
  const TDiagFunc diag(diagModule, "QCSOrbCommon::ReachNamingService");
  vq::orb::BeginCall();
  try {
    m_naming = std::make_unique<vq::orb::NamingService>(*m_instance, NamingSettings());
    m_naming->Reach();
    vq::orb::TakeCause();  // that of an address before, which does not answer
    return true;
  } catch (const CORBA::OBJECT_NOT_EXIST&) {
    vq::orb::NoteCause(
        std::string("the reference of the naming service refers to no existing object; correct ") +
        vq::orb::kInitRef);
    VQ_LOG(diag, 1) << "The naming service's reference refers to no existing object. Correct "
                    << vq::orb::kInitRef << " NameService=corbaloc:iiop:HOST:PORT/NameService";
  } catch (const CORBA::ORB::InvalidName& e) {
    ReportNoNamingService(diag, e);
  } catch (const CORBA::NO_RESOURCES& e) {
    ReportNoNamingService(diag, e);
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteFailedCall(e, m_naming != nullptr ? m_naming->Root() : nullptr);
    VQ_LOG(diag, 1) << "The naming service does not answer. Check that it runs and that a firewall "
                    << "does not block its port: " << e;
  }
  return false;
}

CORBA::Object_ptr QCSOrbCommon::Bind(const std::string& server, const std::string& kind,
                                     const std::string& service, bool probe) {
  const TDiagFunc diag(diagModule, "QCSOrbCommon::Bind");
  if (!IsInitialized()) throw CORBA::BAD_INV_ORDER(0, CORBA::COMPLETED_NO);
  vq::orb::BeginCall();
  CORBA::Object_var object;
  try {
    object = m_naming->Resolve(ServiceName(server, kind, service));
    if (probe && !CORBA::is_nil(object.in()) && object->_non_existent()) {
      throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
    }
  } catch (const CosNaming::NamingContext::NotFound&) {
    vq::orb::NoteCause("the naming service has no " + service + " of a server '" + server +
                       "' of the kind " + kind);
    throw;
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteFailedCall(e, CORBA::is_nil(object.in()) ? m_naming->Root() : object.in());
    throw;
  }
  return object._retn();
}

CosNaming::NamingContext_ptr QCSOrbCommon::GetNamingRoot() {
  if (!IsInitialized()) throw CORBA::BAD_INV_ORDER(0, CORBA::COMPLETED_NO);
  vq::orb::BeginCall();
  return m_naming->Root();
}

void QCSOrbCommon::DestroyOrb(bool wait) {
  if (m_instance == nullptr) return;
  const TDiagFunc diag(diagModule, "QCSOrbCommon::DestroyOrb");
  m_naming.reset();
  try {
    m_instance->Stop(wait);
  } catch (const CORBA::Exception& e) {
    VQ_LOG(diag, 1) << "The ORB does not end in order: " << e;
  } catch (const std::exception& e) {
    VQ_LOG(diag, 1) << "The ORB does not end in order: " << e.what();
  }
  m_instance.reset();
  m_settings.reset();
}

std::optional<std::chrono::sys_seconds> QCSOrbCommon::CertificateExpiry() const {
  return m_instance != nullptr ? m_instance->CertificateExpiry() : std::nullopt;
}

int QCSOrbCommon::CheckCertificateExpiration(int days) const {
  const auto expiry = CertificateExpiry();
  if (!expiry) return 0;
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  return *expiry - now < std::chrono::days(days) ? -1 : 0;
}

PortableServer::POA_ptr QCSOrbCommon::GetChildPoa() {
  if (!IsInitialized()) throw CORBA::BAD_INV_ORDER(0, CORBA::COMPLETED_NO);
  return m_instance->ChildPoa();
}

const std::vector<vq::orb::ResolvedSetting>& QCSOrbCommon::GetSettings() const {
  static const std::vector<vq::orb::ResolvedSetting> kNone;
  return IsInitialized() ? m_settings->table : kNone;
}
