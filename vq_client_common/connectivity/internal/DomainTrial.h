// What one trial of a callback sets up and takes away again: a scope of settings in the
// configuration domain, and a private ORB that uses them.
//
//   SweepTrialScopes(domain);
//   const TrialScope scope(domain, biDir, address, isMask);
//   const TrialOrb orb(scope);
//   if (orb.IsUp()) ...  orb.Get() ...
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_DOMAINTRIAL_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_DOMAINTRIAL_H

#include <string>
#include <vector>

class ConfigAPI;
class QCSOrbCommon;

namespace vq::connectivity {

inline constexpr const char* kDefaultScope = "default";

// Removes the scopes of processes that have ended, which were killed in the middle of a trial. The
// next Save of the domain writes that.
void SweepTrialScopes(ConfigAPI& domain);

// The scope "Test" + process id, in the domain's file for as long as the object lives.
// Thread contract: one thread, one object a process.
class TrialScope {
 public:
  TrialScope(ConfigAPI& domain, bool biDir, const std::string& address, bool isMask);
  ~TrialScope();
  TrialScope(const TrialScope&) = delete;
  TrialScope& operator=(const TrialScope&) = delete;

  const std::string& Name() const { return m_name; }

  // The trial's settings as a command line, which wins over the domain: what is tried depends
  // neither on whether the scope could be saved nor on what another client does to the domain.
  const std::vector<std::string>& Arguments() const { return m_arguments; }

 private:
  void Set(const std::string& setting, const std::string& value);

  ConfigAPI& m_domain;
  const std::string m_name;
  std::vector<std::string> m_arguments{"trial"};
};

// ORB number 2, from its start until the object goes.
// Thread contract: one thread, one object a process.
class TrialOrb {
 public:
  explicit TrialOrb(const TrialScope& scope);
  ~TrialOrb();
  TrialOrb(const TrialOrb&) = delete;
  TrialOrb& operator=(const TrialOrb&) = delete;

  bool IsUp() const { return m_up; }
  QCSOrbCommon* Get() const { return m_orb; }

 private:
  QCSOrbCommon* const m_orb;
  bool m_up;
};

}  // namespace vq::connectivity

#endif  // VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_DOMAINTRIAL_H
