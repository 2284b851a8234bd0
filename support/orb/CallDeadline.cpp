#include <support/orb/CallDeadline.h>

#include <algorithm>

namespace vq {
namespace {

thread_local std::optional<CallDeadline::Clock::time_point> current;

// Differences of longer times cannot be counted in nanoseconds.
constexpr std::chrono::hours kLongest{100 * 365 * 24};

CallDeadline::Clock::time_point After(CallDeadline::Clock::duration limit) {
  return CallDeadline::Clock::now() +
         std::clamp<CallDeadline::Clock::duration>(limit, -kLongest, kLongest);
}

}  // namespace

CallDeadline::CallDeadline(Clock::duration limit) : CallDeadline(After(limit)) {}

CallDeadline::CallDeadline(Clock::time_point end) : m_outer(current) {
  const auto now = Clock::now();
  current = std::clamp<Clock::time_point>(std::min(end, m_outer.value_or(end)), now - kLongest,
                                          now + kLongest);
}

CallDeadline::~CallDeadline() {
  current = m_outer;
}

std::optional<CallDeadline::Clock::time_point> CallDeadline::Current() {
  return current;
}

}  // namespace vq
