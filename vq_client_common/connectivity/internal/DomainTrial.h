// What one trial of a callback sets up and takes away again: a scope of settings in the
// configuration domain, and a private ORB that reads it.
//
//   const TrialScope scope(domain, biDir, address, isMask);
//   const TrialOrb orb(scope.Name());
//   if (orb.IsUp()) ...  orb.Get() ...
#ifndef VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_DOMAINTRIAL_H
#define VQ_CLIENT_COMMON_CONNECTIVITY_INTERNAL_DOMAINTRIAL_H

#include <string>

class ConfigAPI;
class QCSOrbCommon;

namespace vq::connectivity {

inline constexpr const char* kDefaultScope = "default";

// The scope "Test" + process id, in the domain's file for as long as the object lives.
// Thread contract: one thread, one object a process.
class TrialScope {
 public:
  TrialScope(ConfigAPI& domain, bool biDir, const std::string& address, bool isMask);
  ~TrialScope();
  TrialScope(const TrialScope&) = delete;
  TrialScope& operator=(const TrialScope&) = delete;

  const std::string& Name() const { return m_name; }

 private:
  ConfigAPI& m_domain;
  const std::string m_name;
};

// ORB number 2, from its start until the object goes.
// Thread contract: one thread, one object a process.
class TrialOrb {
 public:
  explicit TrialOrb(const std::string& scope);
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
