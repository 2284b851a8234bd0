#include <support/orb/tao/TaoCalls.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <ratio>
#include <string_view>

#include <tao/LocalObject.h>
#include <tao/Messaging/Messaging.h>
#include <tao/ORB_Core.h>
#include <tao/PI/PI.h>
#include <tao/Stub.h>

#include <support/orb/CallDeadline.h>
#include <support/orb/TlsVerdict.h>

namespace vq::orb {
namespace {

using PortableInterceptor::ClientRequestInfo_ptr;
using Clock = CallDeadline::Clock;

// Bounds for one call, against a server that forwards in circles or asks for the request again.
constexpr int kMostForwards = 8;
constexpr int kMostRepetitions = 1;

// The call under way on a thread.
struct Call {
  Clock::time_point end = Clock::time_point::max();
  int forwards = 0;
  int repetitions = 0;
  std::string unencrypted;
};
thread_local Call call;

// The time that a policy gives the call; nothing where there is none.
std::optional<Clock::duration> LimitOf(TAO_Stub* stub) {
  if (stub == nullptr) return std::nullopt;
  const CORBA::Policy_var policy =
      stub->get_cached_policy(TAO_CACHED_POLICY_RELATIVE_ROUNDTRIP_TIMEOUT);
  const Messaging::RelativeRoundtripTimeoutPolicy_var limit =
      Messaging::RelativeRoundtripTimeoutPolicy::_narrow(policy.in());
  if (CORBA::is_nil(limit.in())) return std::nullopt;
  using Unit = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
  return Unit(static_cast<std::int64_t>(limit->relative_expiry()));
}

// TAO asks before it does anything else for a call.
void Begin(TAO_ORB_Core*, TAO_Stub* stub, bool& isLimited, ACE_Time_Value& time) {
  call = Call();
  std::optional<Clock::duration> limit = LimitOf(stub);
  const auto now = Clock::now();
  if (const auto scope = CallDeadline::Current()) {
    if (*scope <= now) throw CORBA::TIMEOUT(0, CORBA::COMPLETED_NO);
    limit = std::min(*scope - now, limit.value_or(Clock::duration::max()));
  }
  isLimited = limit.has_value();
  if (!isLimited) return;
  call.end = *limit < Clock::time_point::max() - now ? now + *limit : Clock::time_point::max();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(*limit);
  const auto rest = std::chrono::ceil<std::chrono::microseconds>(*limit - seconds);
  time.set(seconds.count(), static_cast<suseconds_t>(rest.count()));
}

bool IsLookUp(std::string_view operation) {
  constexpr std::array<std::string_view, 3> kLookUps{"resolve", "_non_existent", "_is_a"};
  return std::find(kLookUps.begin(), kLookUps.end(), operation) != kLookUps.end();
}

// Whether the ORB has read how the call went; it refuses to tell when it has not.
bool IsUnderstood(ClientRequestInfo_ptr request) {
  try {
    return request->reply_status() == PortableInterceptor::SUCCESSFUL;
  } catch (const CORBA::BAD_INV_ORDER&) {
    return false;
  }
}

// Thread safety: no state but that of the thread's call.
class CallCheck : public virtual PortableInterceptor::ClientRequestInterceptor,
                  public virtual CORBA::LocalObject {
 public:
  explicit CallCheck(Unencrypted allowed) : m_allowed(allowed) {}

  char* name() override { return CORBA::string_dup("vq::orb::CallCheck"); }
  void destroy() override {}
  void send_request(ClientRequestInfo_ptr request) override {
    if (call.end <= Clock::now()) throw CORBA::TIMEOUT(0, CORBA::COMPLETED_NO);
    if (call.forwards > kMostForwards || call.repetitions > kMostRepetitions) {
      throw CORBA::TRANSIENT(0, CORBA::COMPLETED_MAYBE);
    }
    if (call.unencrypted.empty() || m_allowed == Unencrypted::kAnyCall) return;
    const CORBA::String_var operation = request->operation();
    if (IsLookUp(operation.in())) return;
    ReportNoTls(call.unencrypted);
    throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
  }
  void send_poll(ClientRequestInfo_ptr) override {}
  void receive_reply(ClientRequestInfo_ptr request) override {
    if (!IsUnderstood(request)) throw CORBA::MARSHAL(0, CORBA::COMPLETED_MAYBE);
  }
  void receive_exception(ClientRequestInfo_ptr) override {}
  void receive_other(ClientRequestInfo_ptr request) override {
    const bool isForward = request->reply_status() == PortableInterceptor::LOCATION_FORWARD;
    ++(isForward ? call.forwards : call.repetitions);
  }

 private:
  const Unencrypted m_allowed;
};

}  // namespace

void CheckCalls(CORBA::ORB_ptr orb, Unencrypted allowed) {
  orb->orb_core()->set_timeout_hook(Begin);
  const PortableInterceptor::ClientRequestInterceptor_var check = new CallCheck(allowed);
  orb->orb_core()->add_interceptor(check.in());
}

void NoteUnencrypted(const std::string& place) {
  call.unencrypted = place;
}

}  // namespace vq::orb
