// The resources of one callback trial: a scope in the configuration domain, and an ORB that uses
// its settings.
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

// Removes the scopes of processes that were killed during a trial. The next Save of the domain
// writes the change.
void SweepTrialScopes(ConfigAPI& domain);

// The scope "Test" + process id, which is in the domain's file during the life of the object. Only
// one object may exist at a time.
class TrialScope {
 public:
  TrialScope(ConfigAPI& domain, bool biDir, const std::string& address, bool isMask);
  ~TrialScope();
  TrialScope(const TrialScope&) = delete;
  TrialScope& operator=(const TrialScope&) = delete;

  const std::string& Name() const { return m_name; }

  // The trial's settings as a command line, which overrides the domain: the trial must not depend
  // on whether the scope was saved, or on other clients that write the domain.
  const std::vector<std::string>& Arguments() const { return m_arguments; }

 private:
  void Set(const std::string& setting, const std::string& value);

  ConfigAPI& m_domain;
  const std::string m_name;
  std::vector<std::string> m_arguments{"trial"};
};

// ORB number 2: the constructor starts it, the destructor ends it. Only one object may exist at a
// time.
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
