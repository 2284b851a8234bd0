#include <support/orb/FailureCause.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <support/orb/CallDeadline.h>
#include <support/orb/CorbaText.h>
#include <support/orb/ReferenceAddress.h>
#include <support/os_toolkit/Atoi.h>

namespace vq::orb {
namespace {

thread_local std::string noted;
thread_local std::string peer;

constexpr std::chrono::milliseconds kProbeLimit{1000};

std::chrono::milliseconds ProbeLimit() {
  const auto end = CallDeadline::Current();
  if (!end) return kProbeLimit;
  const auto left = *end - CallDeadline::Clock::now();
  return std::min(kProbeLimit, std::chrono::floor<std::chrono::milliseconds>(left));
}

// Why no connection comes about; empty if one does, or if the time is too short to know.
std::string WhyUnreachable(const ReferenceEndpoint& place) {
  const std::chrono::milliseconds limit = ProbeLimit();
  std::string why;
  if (limit.count() <= 0) return why;
  const Reach reach = TryToReach(place, limit, why);
  return reach == Reach::kFailed && limit < kProbeLimit ? std::string() : why;
}

// The address that the call used, if it is known.
ReferenceEndpoint PlaceOf(const std::vector<ReferenceEndpoint>& endpoints) {
  const std::size_t colon = peer.rfind(':');
  if (colon == std::string::npos) return endpoints.front();
  const bool hasBrackets = peer.front() == '[';
  const std::size_t cut = hasBrackets ? 1 : 0;
  return {peer.substr(cut, colon - 2 * cut), Atoi(peer.substr(colon + 1))};
}

std::string CauseOf(const CORBA::Exception& exception, CORBA::Object_ptr target) {
  const std::vector<ReferenceEndpoint> endpoints = EndpointsOf(target);
  if (endpoints.empty()) return ExceptionText(exception);
  const ReferenceEndpoint endpoint = PlaceOf(endpoints);
  const std::string place = PlaceText(endpoint);
  if (dynamic_cast<const CORBA::TIMEOUT*>(&exception) != nullptr) {
    return "no answer from " + place + " within the time-out";
  }
  if (dynamic_cast<const CORBA::TRANSIENT*>(&exception) != nullptr ||
      dynamic_cast<const CORBA::COMM_FAILURE*>(&exception) != nullptr) {
    std::string why = WhyUnreachable(endpoint);
    if (!why.empty()) return why;
  }
  if (dynamic_cast<const CORBA::OBJECT_NOT_EXIST*>(&exception) != nullptr) {
    return place + " does not know the object: the server was restarted, or another uses its port";
  }
  return place + ": " + ExceptionText(exception);
}

}  // namespace

void NoteCause(std::string cause) noexcept {
  noted = std::move(cause);
}

void NotePeer(std::string_view address) noexcept {
  try {
    peer = address;
  } catch (const std::bad_alloc&) {
    peer.clear();
  }
}

void BeginCall() {
  peer.clear();
  const auto end = CallDeadline::Current();
  if (!end || CallDeadline::Clock::now() < *end) {
    noted.clear();
  } else if (noted.empty()) {
    NoteCause("the time for the calls was over");
  }
}

std::string TakeCause() noexcept {
  return std::exchange(noted, {});
}

void NoteFailedCall(const CORBA::Exception& exception, CORBA::Object_ptr target) noexcept {
  try {
    std::string cause = TakeCause();
    NoteCause(cause.empty() ? CauseOf(exception, target) : std::move(cause));
  } catch (const std::exception&) {
    // No memory for an explanation: the failure itself is reported all the same.
  }
}

}  // namespace vq::orb
