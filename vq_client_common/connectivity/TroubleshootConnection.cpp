#include <vq_client_common/connectivity/TroubleshootConnection.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <memory>
#include <stdexcept>

#include <support/configuration/ConfigAPI.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/Locations.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbProduct.h>
#include <support/orb/OrbSettings.h>
#include <support/orb/OwnAddresses.h>
#include <support/orb/ReferenceAddress.h>
#include <vq_client_common/connectivity/ORBEndpoint.h>
#include <vq_client_common/connectivity/internal/DomainTrial.h>
#include <vq_client_common/connectivity/internal/TestCallbackI.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_idl/CallbackRepositoryC.h>
#include <vq_idl/UsersManagerC.h>

namespace {

TDiagRegister diagModule("TroubleshootConnection");

using vq::kDefaultScope;
using vq::orb::kBiDirPolicy;
using vq::orb::kListenEndpoints;

// After it no further name is looked up: each can take as long as the resolver waits.
constexpr std::chrono::seconds kTimeForNames{2};

// One callback registration at the server; the destructor removes it.
class Registration {
 public:
  Registration(CrbCallbackRepository::_ptr_type repository, const std::string& userId,
               CORBA::Object_ptr callback)
      : m_repository(CrbCallbackRepository::_duplicate(repository)),
        m_id(repository->CRB_RegisterCallback(userId.c_str(), callback, true)) {}
  ~Registration() {
    const std::string cause = vq::orb::TakeCause();  // A new connection would clear it.
    try {
      m_repository->CRB_UnregisterCallbackById(m_id);
    } catch (const CORBA::Exception& e) {
      VQ_LOG(diagModule, 2) << "The removal of the test callback " << m_id << " failed: " << e;
    }
    vq::orb::NoteCause(cause);
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

  CORBA::Long Id() const { return m_id; }

 private:
  CrbCallbackRepository_var m_repository;
  CORBA::Long m_id;
};

CORBA::Long AsLong(long value) {
  constexpr long kLowest = std::numeric_limits<CORBA::Long>::min();
  constexpr long kHighest = std::numeric_limits<CORBA::Long>::max();
  return static_cast<CORBA::Long>(std::clamp(value, kLowest, kHighest));
}

std::string SendFailure(const CORBA::SystemException& exception) {
  const std::string reason = vq::orb::MinorCodeName(exception);
  return vq::Filled("Failed to send test callback object to GSR - %s (%s)",
                    {exception._name(),
                     reason.empty() ? "minor code " + std::to_string(exception.minor()) : reason});
}

bool OffersOwnConnection(const QCSOrbCommon& orb) {
  const auto& settings = orb.GetSettings();
  return std::any_of(settings.begin(), settings.end(), [](const vq::orb::ResolvedSetting& setting) {
    return setting.name == kBiDirPolicy && setting.value == "1";
  });
}

bool TryCallback(const TDiagFunc& diag, QCSOrbCommon& orb, std::string& error, long& roundTripMs,
                 long timeout) {
  const std::string server = ConnectionSettings::Get()->GetServerName();
  CORBA::Object_var object = orb.Bind(server, "GSR", "UsersManager", true);
  QCSCorbaUsersManager_var users = QCSCorbaUsersManager::_narrow(object.in());
  object = orb.Bind(server, "GSR", "CallbackRepository", true);
  CrbCallbackRepository_var repository = CrbCallbackRepository::_narrow(object.in());
  if (CORBA::is_nil(users.in()) || CORBA::is_nil(repository.in())) {
    throw CORBA::INV_OBJREF(0, CORBA::COMPLETED_NO);
  }

  const ServantPtr<TestCallbackI> servant(new TestCallbackI(orb.GetChildPoa()));
  const Registration registration(repository.in(), LoginHandler::GetGlobal()->GetUserID(),
                                  servant->GetReference());

  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  CORBA::String_var message;
  bool reached = false;
  try {
    reached = users->CRB_TryCallback(registration.Id(), AsLong(timeout), message.out());
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteFailedCall(e, users.in());  // The removal of the callback is a call, too.
    throw;
  }
  const auto taken =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  if (reached && servant->WasCalledBack()) {
    roundTripMs = static_cast<long>(taken);
    VQ_LOG(diag, 4) << "GSR called me back, round-trip time: " << roundTripMs;
    if (OffersOwnConnection(orb) && !servant->WasOverOwnConnection()) {
      vq::orb::NoteCause("the server called back over a new connection, not by bidirectional IIOP");
      VQ_LOG(diag, 1) << "GSR called me back over a new connection, not by bidirectional IIOP";
    }
    return true;
  }
  error = message.in();
  vq::orb::NoteCause("the server did not call back: " + error);
  VQ_LOG(diag, 1) << "GSR failed to call me back - " << error;
  return false;
}

// Loads the configuration domain; null when that fails.
std::unique_ptr<ConfigAPI> LoadDomain(const TDiagFunc& diag) {
  const std::string name = GetConfigDomainName();
  std::unique_ptr<ConfigAPI> domain = ConfigAPIFactoryXML::CreateInForce();
  if (!domain->Load()) {
    VQ_LOG(diag, 1) << "Failed to load configuration domain: " << name;
    VQ_LOG(diag, 2) << domain->Error();
    vq::orb::NoteCause(domain->Error());
    return nullptr;
  }
  VQ_LOG(diag, 4) << "Loaded configuration domain: " << name;
  vq::connectivity::SweepTrialScopes(*domain);
  return domain;
}

// Sets the published host in one scope. `defaultEndpoint`: that of the scope "default", which is
// the first.
void PublishInScope(ConfigAPI& domain, const std::string& scope, const std::string& publishedHost,
                    std::string& defaultEndpoint) {
  const bool isDefault = scope == kDefaultScope;
  const std::optional<std::string> value = domain.GetVar(scope, kListenEndpoints);
  if (value || isDefault) {
    std::string endpoint = value.value_or("");
    TroubleshootConnection::TransformEndpoint(endpoint, publishedHost);
    if (isDefault) defaultEndpoint = endpoint;
    if (endpoint.empty() || (!isDefault && endpoint == defaultEndpoint)) {
      domain.RemoveVar(scope, kListenEndpoints);  // the value of "default" applies
    } else {
      domain.SetVar(scope, kListenEndpoints, endpoint);
    }
  }
  if (!isDefault) domain.RemoveVar(scope, kBiDirPolicy);
}

}  // namespace

long TroubleshootConnection::m_lTimeout4CB = 5000;

void TroubleshootConnection::IdentifyIPAddresses(std::vector<IPAddressInfo*>& list,
                                                 unsigned int& defaultIndex) {
  const TDiagFunc diag(diagModule, "TroubleshootConnection::IdentifyIPAddresses");
  std::vector<vq::orb::OwnAddress> addresses;
  if (const int error = vq::orb::FindOwnAddresses(addresses); error != 0) {
    VQ_LOG(diag, 1) << "Failed to get_ip_interfaces. errno " << error;
    return;
  }
  using vq::CallDeadline;
  const auto endOfNames = CallDeadline::Clock::now() + kTimeForNames;
  const auto hasTimeForNames = [&] {
    return !CallDeadline::Current() && CallDeadline::Clock::now() < endOfNames;
  };
  const std::size_t first = list.size();
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    const std::string& address = addresses[i].text;
    const std::string name = hasTimeForNames() ? vq::orb::HostNameOf(address) : address;
    VQ_LOG(diag, 4) << "Identified IP address [" << i + 1 << "] " << address
                    << " associated to hostname '" << name << "'";
    if (addresses[i].isLoopback) continue;
    if (list.size() == first) {
      defaultIndex = static_cast<unsigned int>(first);
      VQ_LOG(diag, 4) << "The default IP address is " << address;
    }
    auto info = std::make_unique<IPAddressInfo>(IPAddressInfo{address, name});
    list.push_back(info.get());
    info.release();
  }
}

void TroubleshootConnection::TransformEndpoint(std::string& endpoint,
                                               const std::string& hostInIOR) {
  ORBEndpoint parsed;
  try {
    if (endpoint.find('[') != std::string::npos) throw std::out_of_range(endpoint);  // IPv6
    parsed.fromString(endpoint);
  } catch (const std::out_of_range&) {
    VQ_LOG(diagModule, 1) << "The endpoint '" << endpoint << "' is unchanged: it cannot be parsed";
    return;
  }
  parsed.setHostInIOR(hostInIOR, true);
  endpoint = parsed.toString();
}

bool TroubleshootConnection::ORBConfigure(const std::string& address, bool biDir, bool isMask) {
  const TDiagFunc diag(diagModule, "TroubleshootConnection::ORBConfigure");
  const std::unique_ptr<ConfigAPI> domain = LoadDomain(diag);
  if (domain == nullptr) return false;
  VQ_LOG(diag, 4) << "Going to publish: " << address << (isMask ? " (IP mask)" : "");
  if (isMask) domain->SetVar(kDefaultScope, vq::orb::kPreferIpMask, address);
  domain->SetVar(kDefaultScope, kBiDirPolicy, biDir ? "1" : "0");
  std::string defaultEndpoint;
  for (const std::string& scope : domain->GetScopes()) {
    PublishInScope(*domain, scope, isMask ? vq::orb::kOwnAddressMark : address, defaultEndpoint);
  }
  // Intentional: the caller is not informed of a failure; clients read the settings at their next
  // start.
  if (!domain->Save()) VQ_LOG(diag, 2) << domain->Error();
  VQ_LOG(diag, 4) << "Saved configuration domain: " << GetConfigDomainName();
  return true;
}

bool TroubleshootConnection::ORBInitAndTestCallback(bool biDir, const std::string& address,
                                                    long& roundTripMs, bool isMask) {
  const TDiagFunc diag(diagModule, "TroubleshootConnection::ORBInitAndTestCallback");
  vq::orb::TakeCause();
  const std::unique_ptr<ConfigAPI> domain = LoadDomain(diag);
  if (domain == nullptr) return false;
  const vq::connectivity::TrialScope scope(*domain, biDir, address, isMask);
  const vq::connectivity::TrialOrb orb(scope);
  if (!orb.IsUp()) return false;
  std::string error;
  const bool reached = TestCallback(orb.Get(), error, roundTripMs, m_lTimeout4CB);
  VQ_LOG(diag, 4) << "TestCallback " << (reached ? "succeeded" : "failed") << " using: " << address;
  return reached;
}

bool TroubleshootConnection::TestCallback(QCSOrbCommon* orb, std::string& error, long& roundTripMs,
                                          long timeout) {
  const TDiagFunc diag(diagModule, "TroubleshootConnection::TestCallback");
  vq::orb::BeginCall();
  try {
    if (orb == nullptr) throw CORBA::BAD_PARAM(0, CORBA::COMPLETED_NO);
    return TryCallback(diag, *orb, error, roundTripMs, timeout);
  } catch (const CORBA::SystemException& e) {
    VQ_LOG(diag, 1) << "Failed with CORBA exception: " << e;
    error = SendFailure(e);
    vq::orb::NoteFailedCall(e, nullptr);
  } catch (const CORBA::Exception& e) {
    VQ_LOG(diag, 1) << "CORBA::Exception: " << e;
    vq::orb::NoteFailedCall(e, nullptr);
  }
  return false;
}

bool TroubleshootConnection::GetNetworkInterface4Server(CORBA::Object_ptr server, std::string& host,
                                                        std::string& port, SERVER_ID) {
  vq::orb::ReferenceAddress address;
  const vq::orb::AddressFault fault = vq::orb::AddressOf(server, address);
  if (fault != vq::orb::AddressFault::kNone) {
    VQ_LOG(diagModule, 1) << vq::orb::AddressFaultText(fault);
    return false;
  }
  // Intentional: the split at the first ":" cuts an IPv6 address; client programs display both
  // parts with a ":" between them.
  const std::string text = address.host + ":" + address.port;
  const std::size_t colon = text.find(':');
  host = text.substr(0, colon);
  port = text.substr(colon + 1);
  return true;
}

bool vq::session::TestSessionCallback() {
  std::string error;
  long roundTripMs = 0;
  return TroubleshootConnection::TestCallback(ORBCommon<1>::Get(), error, roundTripMs, 0);
}
