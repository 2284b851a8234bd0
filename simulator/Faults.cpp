#include <simulator/Faults.h>

#include <utility>

namespace vq::sim {

void Faults::Set(std::vector<Fault> faults) {
  const std::lock_guard lock(m_mutex);
  m_armed.clear();
  for (Fault& fault : faults) m_armed.push_back({std::move(fault)});
}

std::vector<Fault> Faults::Hit(const std::string& operation, const std::string& kind) {
  const std::lock_guard lock(m_mutex);
  std::vector<Fault> hits;
  for (Armed& armed : m_armed) {
    const Fault& fault = armed.fault;
    if (fault.operation != "*" && fault.operation != operation) continue;
    if (!fault.kind.empty() && fault.kind != kind) continue;
    ++armed.calls;
    const bool begun = armed.calls >= fault.nth;
    const bool over = fault.times > 0 && armed.calls - fault.nth >= fault.times;
    if (begun && !over) hits.push_back(fault);
  }
  return hits;
}

}  // namespace vq::sim
