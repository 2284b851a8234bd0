#include <support/orb/FailureCause.h>

#include <utility>

namespace vq::orb {
namespace {

std::string& Cause() {
  thread_local std::string cause;
  return cause;
}

}  // namespace

void NoteCause(std::string cause) noexcept {
  Cause() = std::move(cause);
}

std::string TakeCause() noexcept {
  return std::exchange(Cause(), {});
}

}  // namespace vq::orb
