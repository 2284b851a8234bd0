#include <vq_client_common/connectivity/internal/DomainTrial.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string_view>

#include <signal.h>
#include <unistd.h>

#include <support/configuration/ConfigAPI.h>
#include <support/diagnostics/TDiag.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>
#include <support/os_toolkit/Atoi.h>

namespace vq::connectivity {
namespace {

TDiagRegister diagModule("DomainTrial");

constexpr std::string_view kTrialScope = "Test";

// Whether a scope belongs to a trial whose process has ended.
bool IsLeftBehind(std::string_view scope) {
  if (!scope.starts_with(kTrialScope)) return false;
  const auto process = WholeNumber<pid_t>(scope.substr(kTrialScope.size()));
  return process && *process > 0 && ::kill(*process, 0) != 0 && errno == ESRCH;
}

std::string TrialEndpoint(const std::string& address, bool isMask) {
  if (address.empty()) return "iiop://";
  return "iiop:///hostname_in_ior=" + (isMask ? orb::kOwnAddressMark : address);
}

}  // namespace

void SweepTrialScopes(ConfigAPI& domain) {
  for (const std::string& scope : domain.GetScopes()) {
    if (IsLeftBehind(scope) && domain.RemoveScope(scope)) {
      VQ_LOG(diagModule, 4) << "Removed the scope " << scope << " of a trial that was killed";
    }
  }
}

TrialScope::TrialScope(ConfigAPI& domain, bool biDir, const std::string& address, bool isMask)
    : m_domain(domain), m_name(std::string(kTrialScope) + std::to_string(::getpid())) {
  const TDiagFunc diag(diagModule, "TrialScope::TrialScope");
  std::map<std::string, std::string> inForce;
  m_domain.GetScopeAndDefaultVars(m_name, inForce);
  // Only names: the domain may contain other programs' variables, also secret ones.
  for (const auto& [name, value] : inForce) VQ_LOG(diag, 5) << "The trial inherits " << name;
  Set(orb::kBiDirPolicy, biDir ? "1" : "0");
  Set(orb::kListenEndpoints, TrialEndpoint(address, isMask));
  if (isMask) Set(orb::kPreferIpMask, address);
  // Intentional: the caller is not informed of a failure; the trial has its settings anyway.
  if (!m_domain.Save()) {
    VQ_LOG(diag, 1) << "The settings of the trial cannot be saved: " << m_domain.Error();
  }
}

void TrialScope::Set(const std::string& setting, const std::string& value) {
  m_domain.SetVar(m_name, setting, value);
  m_arguments.insert(m_arguments.end(), {setting, value});
}

TrialScope::~TrialScope() {
  m_domain.RemoveScope(m_name);
  if (!m_domain.Save()) {
    VQ_LOG(diagModule, 1) << "The configuration domain without the trial's scope " << m_name
                          << " cannot be saved: " << m_domain.Error();
  }
}

TrialOrb::TrialOrb(const TrialScope& scope) : m_orb(ORBCommon<2>::Get()) {
  std::vector<std::string> copies = scope.Arguments();
  std::vector<char*> arguments;
  for (std::string& copy : copies) arguments.push_back(copy.data());
  m_orb->SetUseThreadPool(true);
  m_up =
      m_orb->InitCorba(static_cast<int>(arguments.size()), arguments.data(), scope.Name().c_str());
  if (!m_up) return;
  std::string inForce;
  for (const orb::ResolvedSetting& setting : m_orb->GetSettings()) {
    const auto& names = scope.Arguments();
    if (std::find(names.begin(), names.end(), setting.name) == names.end()) continue;
    inForce += " " + setting.name + " '" + setting.value + "'";
  }
  VQ_LOG(diagModule, 4) << "The trial uses" << inForce;
}

TrialOrb::~TrialOrb() {
  m_orb->DestroyOrb(true);
  QCSOrbCommon::DeleteOrbById(2);
}

}  // namespace vq::connectivity
