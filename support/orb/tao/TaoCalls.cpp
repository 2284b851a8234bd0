#include <support/orb/tao/TaoCalls.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <optional>
#include <ratio>
#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

#include <tao/IIOP_Transport.h>
#include <tao/Incoming_Message_Stack.h>
#include <tao/Leader_Follower.h>
#include <tao/LocalObject.h>
#include <tao/Messaging/Messaging.h>
#include <tao/ORB_Core.h>
#include <tao/PI/PI.h>
#include <tao/PI_Server/PI_Server.h>
#include <tao/Queued_Data.h>
#include <tao/Resume_Handle.h>
#include <tao/Stub.h>
#include <tao/Synch_Reply_Dispatcher.h>
#include <tao/Transport.h>
#include <tao/Wait_Strategy.h>
#include <tao/default_client.h>

#include <support/orb/CallDeadline.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ThreadText.h>
#include <support/orb/Tls.h>
#include <support/orb/tao/TaoConnector.h>
#include <support/orb/tao/TaoTls.h>

namespace vq::orb {
namespace {

using PortableInterceptor::ClientRequestInfo_ptr;
using PortableInterceptor::ServerRequestInfo_ptr;
using Clock = CallDeadline::Clock;

// Bounds for one call, against a server that forwards in circles or asks for the request again.
constexpr int kMostForwards = 8;
constexpr int kMostRepetitions = 1;

// The minor code of MARSHAL for a reply beyond the limit.
constexpr CORBA::ULong kTooLarge = 0x56510001;

// What a message takes beside its content, so that empty ones count, too.
constexpr std::uint64_t kMessageCost = 256;

// The call under way on a thread.
struct Call {
  Clock::time_point end = Clock::time_point::max();
  int forwards = 0;
  int repetitions = 0;
  bool isReading = false;       // the thread reads the reply
  bool closedInOrder = false;   // the server closed the connection instead of a reply
  ThreadText<300> unencrypted;  // the place where the request goes unencrypted
  bool isToNaming = false;      // to the naming service's own object
};
thread_local Call call;

thread_local bool runsNoServants = false;

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
  NoteCallEnd(call.end);
  const auto seconds = std::chrono::floor<std::chrono::seconds>(*limit);
  const auto rest = std::chrono::ceil<std::chrono::microseconds>(*limit - seconds);
  time.set(seconds.count(), static_cast<suseconds_t>(rest.count()));
}

constexpr int kHeaderSize = 12;
using Header = std::array<unsigned char, kHeaderSize>;

// The kinds of messages that a reply reader must know.
constexpr int kRequest = 0, kLocateRequest = 3, kCloseConnection = 5;

// The size of the message behind the header. TAO allocates that much before it reads on. When the
// sum with the header's size exceeds 32 bits, TAO reads without end.
std::uint64_t AnnouncedSize(const Header& header) {
  const bool isLittle = (header[6] & 1) != 0;
  std::uint64_t size = 0;
  for (int i = 0; i < 4; ++i) size = size << 8 | header[isLittle ? 11 - i : 8 + i];
  return size;
}

// Access to a protected member: the messages that TAO has read in part. Tried with TAO 2.2.1.
struct Incoming : TAO_Transport {
  static constexpr auto kMessages = &Incoming::incoming_message_stack_;
};

// Reads the reply on the thread of the call. A connection that fails or is late is closed.
class ReplyReader : public TAO_Wait_Strategy {
 public:
  ReplyReader(TAO_Transport* transport, std::uint64_t limit)
      : TAO_Wait_Strategy(transport), m_limit(limit) {}

  int wait(ACE_Time_Value*, TAO_Synch_Reply_Dispatcher& reply) override {
    reply.state_changed(TAO_LF_Event::LFS_ACTIVE, transport_->orb_core()->leader_follower());
    call.isReading = true;
    const int error = Read(reply);
    call.isReading = false;
    call.closedInOrder = error == ESHUTDOWN;
    if (error != 0) {
      transport_->purge_entry();  // For TAO a closed one in its cache is about to connect.
      transport_->close_connection();
    }
    if (error == EMSGSIZE) throw CORBA::MARSHAL(kTooLarge, CORBA::COMPLETED_MAYBE);
    errno = error;
    return error != 0 || reply.error_detected() ? -1 : 0;
  }

  int register_handler() override { return 0; }  // the ORB's threads do not read
  bool non_blocking() const override { return false; }
  bool can_process_upcalls() const override { return true; }

 private:
  // Returns 0 or the cause as an error number.
  int Read(TAO_Synch_Reply_Dispatcher& reply) {
    m_isTls = dynamic_cast<TAO_IIOP_Transport*>(transport_) == nullptr;
    TAO_Resume_Handle resume;
    std::uint64_t announced = 0;
    Header next{};
    int known = 0;  // bytes of it
    while (reply.keep_waiting()) {
      if (!m_isTls && !AwaitReplyBytes(Socket())) return ETIME;  // TLS waits by itself.
      if (!IsWithinMessage()) {
        // A TLS record may end within the header: TAO then reads that part.
        const int more = m_isTls ? PeekTls(*transport_, next.data() + known, kHeaderSize - known)
                                 : PeekWhole(next);
        if (more <= 0) return call.end <= Clock::now() ? ETIME : ECONNRESET;
        known = (known + more) % kHeaderSize;
        if (known == 0) {
          if (std::memcmp(next.data(), "GIOP", 4) != 0) return ECONNRESET;
          const int kind = next[7];
          if (kind == kRequest || kind == kLocateRequest) return ECONNRESET;
          if (announced == 0 && kind == kCloseConnection) return ESHUTDOWN;
          announced += AnnouncedSize(next) + kMessageCost;
          if (m_limit != 0 && announced > m_limit + kMessageCost) return EMSGSIZE;
        }
      }
      if (transport_->handle_input(resume, nullptr) == -1 && reply.keep_waiting()) {
        return call.end <= Clock::now() ? ETIME : ECONNRESET;
      }
    }
    return 0;
  }

  int Socket() { return transport_->event_handler_i()->get_handle(); }

  bool IsWithinMessage() {
    TAO_Queued_Data* message = nullptr;
    return (transport_->*Incoming::kMessages).top(message) != -1;
  }

  // Returns the size of the header, or 0 when it cannot be read. Waits for all of it: TAO would
  // also read what arrives after this look at it.
  int PeekWhole(Header& header) {
    const auto wakeFrom = [this](int bytes) {
      ::setsockopt(Socket(), SOL_SOCKET, SO_RCVLOWAT, &bytes, sizeof bytes);
    };
    const auto peek = [&] {
      return ::recv(Socket(), header.data(), kHeaderSize, MSG_PEEK | MSG_DONTWAIT);
    };
    ssize_t length = peek();
    if (0 < length && length < kHeaderSize) {
      wakeFrom(kHeaderSize);
      AwaitReplyBytes(Socket());
      wakeFrom(1);
      length = peek();
    }
    return length == kHeaderSize ? kHeaderSize : 0;
  }

  const std::uint64_t m_limit;
  bool m_isTls = false;
};

// Waits as TAO does: while another thread reads, or by reading from all connections.
class SharedWait : public TAO_Wait_Strategy {
 public:
  using TAO_Wait_Strategy::TAO_Wait_Strategy;
  int sending_request(TAO_ORB_Core* core, TAO_Message_Semantics semantics) override {
    register_handler();
    return TAO_Wait_Strategy::sending_request(core, semantics);
  }
  int wait(ACE_Time_Value* limit, TAO_Synch_Reply_Dispatcher& reply) override {
    const NoServants none;
    return transport_->orb_core()->leader_follower().wait_for_event(&reply, transport_, limit);
  }
  int register_handler() override { return is_registered_ ? 1 : transport_->register_handler(); }
  bool non_blocking() const override { return true; }
  bool can_process_upcalls() const override { return true; }
};

class ReplyWaits : public TAO_Default_Client_Strategy_Factory {
 public:
  explicit ReplyWaits(const OrbSettings& settings)
      : m_shared(settings.biDirectional), m_limit(settings.maxMessageSize) {}
  TAO_Wait_Strategy* create_wait_strategy(TAO_Transport* transport) override {
    if (m_shared) return new SharedWait(transport);
    return new ReplyReader(transport, m_limit);
  }

 private:
  const bool m_shared;
  const std::uint64_t m_limit;
};

// The result of the call; empty when the ORB has not read it.
std::optional<PortableInterceptor::ReplyStatus> StatusOf(ClientRequestInfo_ptr request) {
  try {
    return request->reply_status();
  } catch (const CORBA::BAD_INV_ORDER&) {
    return std::nullopt;
  }
}

// TAO takes what it cannot read for read, and uses it, if the thread's last error is none.
void LetMalformedFail() {
  errno = EBADMSG;
}

// Thread safety: no state but that of the thread's call.
class CallCheck : public virtual PortableInterceptor::ClientRequestInterceptor,
                  public virtual CORBA::LocalObject {
 public:
  explicit CallCheck(Unencrypted allowed) : m_allowed(allowed) {}

  char* name() override { return CORBA::string_dup("vq::orb::CallCheck"); }
  void destroy() override {}
  void send_request(ClientRequestInfo_ptr request) override {
    LetMalformedFail();
    if (call.end <= Clock::now()) throw CORBA::TIMEOUT(0, CORBA::COMPLETED_NO);
    if (call.forwards > kMostForwards || call.repetitions > kMostRepetitions) {
      throw CORBA::TRANSIENT(0, CORBA::COMPLETED_MAYBE);
    }
    if (call.unencrypted.empty() || m_allowed == Unencrypted::kAnyCall) return;
    const CORBA::String_var operation = request->operation();
    if (IsLookUp(operation.in(), call.isToNaming)) return;
    ReportNoTls(std::string(std::string_view{call.unencrypted}));
    throw CORBA::INV_POLICY(0, CORBA::COMPLETED_NO);
  }
  void send_poll(ClientRequestInfo_ptr) override {}
  void receive_reply(ClientRequestInfo_ptr request) override {
    if (StatusOf(request) != PortableInterceptor::SUCCESSFUL) {
      throw CORBA::MARSHAL(0, CORBA::COMPLETED_MAYBE);
    }
  }
  // A server that closes in order has not processed the request: it is sent once more.
  void receive_exception(ClientRequestInfo_ptr request) override {
    if (!call.closedInOrder) return;
    call.closedInOrder = false;
    if (++call.repetitions > kMostRepetitions) return;
    const CORBA::Object_var target = request->effective_target();
    throw PortableInterceptor::ForwardRequest(target.in());
  }
  void receive_other(ClientRequestInfo_ptr request) override {
    const auto status = StatusOf(request);
    // The request was not written as a whole.
    if (!status) throw CORBA::COMM_FAILURE(0, CORBA::COMPLETED_NO);
    ++(*status == PortableInterceptor::LOCATION_FORWARD ? call.forwards : call.repetitions);
  }

 private:
  const Unencrypted m_allowed;
};

// Thread safety: no state but that of the thread.
class ServantCheck : public virtual PortableInterceptor::ServerRequestInterceptor,
                     public virtual CORBA::LocalObject {
 public:
  char* name() override { return CORBA::string_dup("vq::orb::ServantCheck"); }
  void destroy() override {}
  void receive_request_service_contexts(ServerRequestInfo_ptr) override {
    LetMalformedFail();
    if (runsNoServants) throw CORBA::TRANSIENT(0, CORBA::COMPLETED_NO);
  }
  void receive_request(ServerRequestInfo_ptr) override {}
  void send_reply(ServerRequestInfo_ptr) override {}
  void send_exception(ServerRequestInfo_ptr) override {}
  void send_other(ServerRequestInfo_ptr) override {}
};

}  // namespace

NoServants::NoServants() : m_before(std::exchange(runsNoServants, true)) {}

NoServants::~NoServants() {
  runsNoServants = m_before;
}

void AddReplyWait(ACE_Service_Gestalt& services, const OrbSettings& settings) {
  AddService<ReplyWaits>(services, "Client_Strategy_Factory", settings);
}

void CheckCalls(CORBA::ORB_ptr orb, Unencrypted allowed) {
  orb->orb_core()->set_timeout_hook(Begin);
  const PortableInterceptor::ClientRequestInterceptor_var check = new CallCheck(allowed);
  orb->orb_core()->add_interceptor(check.in());
  const PortableInterceptor::ServerRequestInterceptor_var servants = new ServantCheck;
  orb->orb_core()->add_interceptor(servants.in());
}

void NoteUnencrypted(const std::string& place, bool isToNaming) {
  call.unencrypted = place;
  call.isToNaming = isToNaming;
}

bool AwaitReplyBytes(int socket) {
  while (call.isReading) {
    const auto rest = call.end - Clock::now();
    if (rest <= Clock::duration::zero()) return false;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(rest);
    const timespec time{seconds.count(), std::chrono::nanoseconds(rest - seconds).count()};
    pollfd events{socket, POLLIN, 0};
    // A failed connection counts as ready: the read reports it.
    if (::ppoll(&events, 1, &time, nullptr) > 0) return true;
  }
  return true;
}

bool IsTooLarge(const CORBA::SystemException& exception) {
  return exception.minor() == kTooLarge;
}

}  // namespace vq::orb
