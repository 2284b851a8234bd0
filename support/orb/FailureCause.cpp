#include <support/orb/FailureCause.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <support/orb/CallDeadline.h>
#include <support/orb/CorbaText.h>
#include <support/orb/ReferenceAddress.h>
#include <support/orb/ThreadText.h>
#include <support/os_toolkit/Atoi.h>

namespace vq::orb {
namespace {

thread_local ThreadText<2000> noted;
thread_local std::optional<CallDeadline::Clock::time_point> notedWithin;  // the deadline then
thread_local ThreadText<300> peer;
thread_local bool objectUnknown = false;
thread_local auto callEnd = CallDeadline::Clock::time_point::max();

constexpr std::chrono::milliseconds kProbeLimit{1000};

std::chrono::milliseconds ProbeLimit() {
  const auto end = std::min(CallDeadline::Current().value_or(callEnd), callEnd);
  const auto left = end - CallDeadline::Clock::now();
  return std::min(kProbeLimit, std::chrono::floor<std::chrono::milliseconds>(left));
}

constexpr const char* kTimeOver = "the time for the calls was over";

bool IsTimeOver() {
  const auto end = CallDeadline::Current();
  return end && *end <= CallDeadline::Clock::now();
}

// Why no connection comes about; empty if one does, or if the time is too short to know.
std::string WhyUnreachable(const ReferenceEndpoint& place) {
  const std::chrono::milliseconds limit = ProbeLimit();
  std::string why;
  if (limit.count() <= 0) return why;
  const auto end = CallDeadline::Clock::now() + limit;
  TryToReach(place, limit, why);
  return limit < kProbeLimit && end <= CallDeadline::Clock::now() ? std::string() : why;
}

// The address that the call used, or else the target's first one; nothing when neither is known.
std::optional<ReferenceEndpoint> PlaceOf(CORBA::Object_ptr target) {
  const std::string_view place = peer;
  const std::size_t colon = place.rfind(':');
  if (colon == std::string_view::npos) {
    const std::vector<ReferenceEndpoint> endpoints = EndpointsOf(target);
    return endpoints.empty() ? std::nullopt : std::optional(endpoints.front());
  }
  const std::size_t bracket = place.front() == '[' ? 1 : 0;
  return ReferenceEndpoint{std::string(place.substr(bracket, colon - 2 * bracket)),
                           Atoi(place.substr(colon + 1))};
}

std::string CauseOf(const CORBA::Exception& exception, CORBA::Object_ptr target) {
  const std::optional<ReferenceEndpoint> endpoint = PlaceOf(target);
  if (!endpoint) return ExceptionText(exception);
  const std::string place = PlaceText(*endpoint);
  if (dynamic_cast<const CORBA::TIMEOUT*>(&exception) != nullptr) {
    return "no answer from " + place + " within the time-out";
  }
  if (dynamic_cast<const CORBA::TRANSIENT*>(&exception) != nullptr ||
      dynamic_cast<const CORBA::COMM_FAILURE*>(&exception) != nullptr) {
    std::string why = WhyUnreachable(*endpoint);
    if (!why.empty()) return why;
  }
  if (dynamic_cast<const CORBA::OBJECT_NOT_EXIST*>(&exception) != nullptr) {
    return place + " does not know the object; log in again, or restart a server that did not " +
           "register after a restart";
  }
  return place + ": " + ExceptionText(exception);
}

}  // namespace

void NoteCause(std::string_view cause) noexcept {
  noted = cause;
  notedWithin = CallDeadline::Current();
}

std::string NotedPeer() {
  return std::string(std::string_view(peer));
}

void NotePeer(std::string_view address) noexcept {
  peer = address;
}

void NoteCallEnd(CallDeadline::Clock::time_point end) noexcept {
  callEnd = end;
}

void BeginCall() {
  peer = "";
  objectUnknown = false;
  callEnd = CallDeadline::Clock::time_point::max();
  if (!IsTimeOver()) {
    noted = "";
  } else if (noted.empty() || notedWithin != CallDeadline::Current()) {
    NoteCause(kTimeOver);
  }
}

std::string TakeCause() noexcept {
  try {
    std::string cause(std::string_view{noted});
    noted = "";
    return cause;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

void NoteFailedCall(const CORBA::Exception& exception, CORBA::Object_ptr target) noexcept {
  objectUnknown = dynamic_cast<const CORBA::OBJECT_NOT_EXIST*>(&exception) != nullptr;
  try {
    if (noted.empty()) NoteCause(CauseOf(exception, target));
  } catch (const std::exception&) {
    // No memory for an explanation: the failure itself is reported all the same.
  }
}

bool WasObjectUnknown() noexcept {
  return objectUnknown;
}

}  // namespace vq::orb
