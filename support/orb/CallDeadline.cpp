#include <support/orb/CallDeadline.h>

#include <algorithm>

namespace vq {
namespace {

thread_local std::optional<CallDeadline::Clock::time_point> current;

CallDeadline::Clock::time_point After(CallDeadline::Clock::duration limit) {
  const auto now = CallDeadline::Clock::now();
  constexpr auto kLast = CallDeadline::Clock::time_point::max();
  return limit > kLast - now ? kLast : now + limit;
}

}  // namespace

CallDeadline::CallDeadline(Clock::duration limit) : CallDeadline(After(limit)) {}

CallDeadline::CallDeadline(Clock::time_point end) : m_outer(current) {
  current = std::min(end, m_outer.value_or(end));
}

CallDeadline::~CallDeadline() {
  current = m_outer;
}

std::optional<CallDeadline::Clock::time_point> CallDeadline::Current() {
  return current;
}

}  // namespace vq
