#include <vq_client_common/connectivity/internal/DomainTrial.h>

#include <map>

#include <unistd.h>

#include <support/configuration/ConfigAPI.h>
#include <support/diagnostics/TDiag.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/OrbSettings.h>

namespace vq::connectivity {
namespace {

TDiagRegister diagModule("DomainTrial");

std::string TrialEndpoint(const std::string& address, bool isMask) {
  if (address.empty()) return "iiop://";
  return "iiop:///hostname_in_ior=" + (isMask ? orb::kOwnAddressMark : address);
}

}  // namespace

TrialScope::TrialScope(ConfigAPI& domain, bool biDir, const std::string& address, bool isMask)
    : m_domain(domain), m_name("Test" + std::to_string(::getpid())) {
  const TDiagFunc diag(diagModule, "TrialScope::TrialScope");
  std::map<std::string, std::string> inForce;
  m_domain.GetScopeAndDefaultVars(m_name, inForce);
  // Names alone: a domain may hold variables of others, and secrets among them.
  for (const auto& [name, value] : inForce) VQ_LOG(diag, 5) << "The trial inherits " << name;
  m_domain.SetVar(m_name, orb::kBiDirPolicy, biDir ? "1" : "0");
  m_domain.SetVar(m_name, orb::kListenEndpoints, TrialEndpoint(address, isMask));
  if (isMask) m_domain.SetVar(m_name, orb::kPreferIpMask, address);
  // A failure is meant to go unnoticed by the caller: the trial goes on with the settings in force.
  if (!m_domain.Save()) {
    VQ_LOG(diag, 1) << "The settings of the trial cannot be saved: " << m_domain.Error();
  }
}

TrialScope::~TrialScope() {
  m_domain.RemoveScope(m_name);
  if (!m_domain.Save()) {
    VQ_LOG(diagModule, 1) << "The configuration domain without the trial's scope " << m_name
                          << " cannot be saved: " << m_domain.Error();
  }
}

TrialOrb::TrialOrb(const std::string& scope) : m_orb(ORBCommon<2>::Get()) {
  m_orb->SetUseThreadPool(true);
  m_up = m_orb->InitCorba(0, nullptr, scope.c_str());
}

TrialOrb::~TrialOrb() {
  m_orb->DestroyOrb(true);
  QCSOrbCommon::DeleteOrbById(2);
}

}  // namespace vq::connectivity
