// The faults that are set, and the selection of those that apply to a call.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_FAULTS_H
#define VQ_SIMULATOR_FAULTS_H

#include <mutex>
#include <string>
#include <vector>

#include <simulator/Site.h>

namespace vq::sim {

class Faults {
 public:
  // Replaces all faults; each starts counting calls anew.
  void Set(std::vector<Fault> faults);
  // Counts one call and returns the faults that hit it, in the order in which they were set.
  std::vector<Fault> Hit(const std::string& operation, const std::string& kind);

 private:
  struct Armed {
    Fault fault;
    std::uint64_t calls = 0;
  };
  std::mutex m_mutex;
  std::vector<Armed> m_armed;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_FAULTS_H
