// The clock of sessions and challenges. It can be advanced, so that a test of a time-out need not
// wait.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_CLOCK_H
#define VQ_SIMULATOR_CLOCK_H

#include <algorithm>
#include <atomic>
#include <chrono>

namespace vq::sim {

class Clock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  [[nodiscard]] Time Now() const {
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(m_ahead.load());
  }
  // Advances the clock by `step`.
  void Advance(std::chrono::milliseconds step) {
    if (m_ahead.load() < kFarthest) m_ahead += std::min(step.count(), kFarthest);
  }

 private:
  using Count = std::chrono::milliseconds::rep;
  static constexpr Count kFarthest = 1'000'000'000'000;  // some thirty years, far from overflow
  std::atomic<Count> m_ahead{0};
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CLOCK_H
