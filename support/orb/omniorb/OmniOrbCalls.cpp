#include <support/orb/omniorb/OmniOrbCalls.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <type_traits>
#include <utility>

#include <sys/socket.h>

// These build on each other in this order.
// clang-format off
#include <omniORB4/CORBA.h>
#include <omniORB4/callDescriptor.h>
#include <omniORB4/minorCode.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>
#include <omniORB4/internal/orbParameters.h>
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/giopBiDir.h>
#include <omniORB4/internal/GIOP_C.h>
#include <omniORB4/internal/GIOP_S.h>
// clang-format on

#include <support/diagnostics/TDiag.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/FailureCause.h>
#include <support/orb/PeerSocket.h>
#include <support/orb/omniorb/OmniOrbConnection.h>
#include <support/orb/omniorb/OmniOrbInternals.h>
#include <support/orb/omniorb/OmniOrbMessages.h>
#include <support/orb/omniorb/OmniOrbWatcher.h>

namespace vq::orb {
namespace {

using omni::BiDirClientRope;
using omni::GIOP_C;
using omni::giopRope;
using omni::giopStrand;
using omni::omniInterceptors;
using CommFailure = omni::giopStream::CommFailure;

TDiagRegister diagModule("ORB");

// Bounds the attempts of one call, each of which needs a connection, new or idle and alive: against
// a peer that closes each connection or forwards in circles.
constexpr int kMostConnections = 16;

// Written before the ORB starts, read by calls.
struct Limits {
  std::chrono::milliseconds call{0};
  std::chrono::milliseconds connect{0};
  std::chrono::milliseconds keepAlive{0};
  std::chrono::milliseconds unacknowledged{0};
} limits;

// Whether the ORB ends; and a lock that is held while a connection that takes calls is opened. The
// opening and the end of omniORB would wait for each other until the time for the end is over.
std::atomic<bool> ending = false;
std::shared_timed_mutex opens;

// Whether the process ends, so that no connection may take calls any more.
std::atomic<bool> leaving = false;

// When omniORB ends it disables all references once, and then waits for every other one without
// limit: for those that a reply brings to a call in progress, and for its own after a forward.
void DisableNewReferences() {
  if (ending) omniObjRef::_shutdown();
}

void RefuseAtEnd() {
  DisableNewReferences();
  if (ending) throw CORBA::BAD_INV_ORDER(omni::BAD_INV_ORDER_ORBHasShutdown, CORBA::COMPLETED_NO);
}

// The call under way on a thread. A repetition by omniORB has the same descriptor and deadline.
struct Call {
  const omniCallDescriptor* descriptor = nullptr;
  CallDeadline::Clock::time_point begin;
  omni_time_t end;
  CORBA::ULong refusal = 0;  // why nothing may be sent any more, as a minor code
  int connections = 0;
  bool forwarded = false;
  bool closedInOrder = false;
  bool repeat = false;  // it may be sent once more for that
  bool reverted = false;
};
thread_local Call call;

omni_time_t Now() {
  omni_time_t now;
  omni_thread::get_time(now);
  return now;
}

// omniORB waits without limit when less than a microsecond is left. Its clock counts whole
// microseconds, so that does not happen as long as its deadlines do, too.
omni_time_t ToOmni(std::chrono::nanoseconds time) {
  const auto positive = std::max(time, std::chrono::nanoseconds(0));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(positive);
  const auto rest = std::chrono::floor<std::chrono::microseconds>(positive - seconds);
  return {static_cast<unsigned long>(seconds.count()),
          static_cast<unsigned long>(rest.count()) * 1000};
}

std::chrono::nanoseconds Until(const omni_time_t& end) {
  const omni_time_t now = Now();
  if (end <= now) return std::chrono::nanoseconds(0);
  const omni_time_t left = end - now;
  return std::chrono::seconds(left.s) + std::chrono::nanoseconds(left.ns);
}

// Raises omniORB's own exception, by which it does not try again.
[[noreturn]] void Fail(CORBA::ULong minor, CORBA::CompletionStatus completed) {
  throw CommFailure(minor, completed, false);
}

void Begin(omniCallDescriptor& descriptor) {
  call = Call();
  call.descriptor = &descriptor;
  call.begin = CallDeadline::Clock::now();
  call.end = descriptor.getDeadline();
  // The program may have asked omniORB for calls without a limit.
  if (!call.end) call.end = Now() + ToOmni(limits.call);
  if (const auto scope = CallDeadline::Current()) {
    const omni_time_t scopeEnd = Now() + ToOmni(*scope - call.begin);
    call.end = std::min(call.end, scopeEnd);
  }
  descriptor.setDeadline(call.end);
  NoteCallEnd(call.begin + Until(call.end));
}

bool IsTls(const giopStrand& strand) {
  return std::strcmp(strand.address->type(), "giop:ssl") == 0;
}

// Whether a message has been received in part. The rest may look like the end of the connection.
bool IsWithinMessage(const CheckedConnection& connection) {
  return connection.HasRest() || !connection.IsBetweenMessages();
}

// As IsDead of PeerSocket.h, with the data that omniORB has not received yet.
bool IsDead(const giopStrand& strand, bool takesCalls) {
  const CheckedConnection& connection = CheckedConnection::Of(strand);
  if (connection.Socket() < 0) return false;
  if (!takesCalls && connection.HasRest()) return true;
  const auto isDead = [&](bool isWithin) {
    return vq::orb::IsDead(connection.Socket(), IsTls(strand), takesCalls, isWithin);
  };
  if (connection.HasEnded()) return true;
  return isDead(IsWithinMessage(connection)) &&
         (!IsWithinMessage(connection) || isDead(true));  // if it has begun meanwhile
}

// Whether the server closed the connection in order. omniORB does not read the message that says so
// when a reset follows it, as it does when the request arrived in the meantime. Data before it may
// be a reply.
bool WasClosedInOrder(const giopStrand& strand) {
  if (strand.connection == nullptr) return false;
  const CheckedConnection& connection = CheckedConnection::Of(strand);
  return connection.WasClosedInOrder() || (!IsTls(strand) && !IsWithinMessage(connection) &&
                                           BeginsWithClose(connection.Socket(), false));
}

bool IsForward(GIOP_C& attempt) {
  return attempt.replyStatus() == GIOP::LOCATION_FORWARD ||
         attempt.replyStatus() == GIOP::LOCATION_FORWARD_PERM;
}

// What a finished or failed attempt means for the next one. No other thread reads a reply to it any
// more.
void NoteEnd(GIOP_C& attempt) {
  const giopStrand& strand = attempt.strand();
  NoteAddress(*strand.address);
  switch (attempt.state()) {
    case omni::IOP_C::Idle:  // A reply has come.
      call.forwarded = IsForward(attempt);
      if (!call.forwarded) call.descriptor = nullptr;
      return;
    case omni::IOP_C::RequestInProgress:
    case omni::IOP_C::WaitingForReply:
      if (WasClosedInOrder(strand) && !CheckedConnection::Of(strand).HasReplyTo(attempt, false) &&
          !std::exchange(call.closedInOrder, true)) {
        call.repeat = true;
        return;
      }
      if (strand.connection != nullptr) CheckedConnection::Of(strand).NoteFailure();
      break;
    default:
      break;
  }
  call.refusal = omni::COMM_FAILURE_WaitingForReply;
}

CORBA::Boolean WatchConnection(omniInterceptors::clientOpenConnection_T::info_T& info) {
  giopStrand& strand = info.giop_c.strand();
  CheckedConnection& connection = CheckedConnection::Of(strand);
  connection.ServeStrand(strand);
  WatchPeer(connection.Socket(), limits.keepAlive, limits.unacknowledged);
  return true;
}

// Before GIOP 1.2 omniORB skips the reply to another call while it holds a lock that it takes again
// if that fails. A reply that asks for another form of address applies to all later calls, also if
// there is no such form, and omniORB cannot receive the reply to the call in that form.
CORBA::Boolean CheckReply(omniInterceptors::clientReceiveReply_T::info_T& info) {
  GIOP_C& attempt = info.giop_c;
  // From a permanent forward omniORB would not return when its place cannot be called.
  if (attempt.replyStatus() == GIOP::LOCATION_FORWARD_PERM) {
    attempt.replyStatus(GIOP::LOCATION_FORWARD);
  }
  if (attempt.replyStatus() == GIOP::NEEDS_ADDRESSING_MODE) {
    Fail(omni::COMM_FAILURE_WaitingForReply, CORBA::COMPLETED_NO);
  }
  if (attempt.version().minor < 2 && attempt.replyId() != RequestIdOf(attempt)) {
    Fail(omni::COMM_FAILURE_WaitingForReply, CORBA::COMPLETED_MAYBE);
  }
  return true;
}

// omniORB takes the code set of the server's call for the next call of the client, also one that it
// does not know. That call now chooses one itself.
CORBA::Boolean KeepCodeSet(omniInterceptors::serverReceiveRequest_T::info_T& info) {
  giopStrand& strand = info.giop_s.strand();
  if (strand.tcs_c == nullptr) strand.tcs_selected = false;
  return true;
}

// The client's POA may let a call of the server wait, such as while its manager holds requests.
// omniORB holds the lock for reading meanwhile, for which a caller would wait at its end. A request
// that has arrived whole no longer needs it.
CORBA::Boolean EndReadingRequest(omniInterceptors::serverReceiveRequest_T::info_T& info) {
  giopStrand& strand = info.giop_s.strand();
  if (!strand.isClient() || !CheckedConnection::Of(strand).IsBetweenMessages()) return true;
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  info.giop_s.rdUnLock();
  return true;
}

// Whether connections for such a reference take calls: only with GIOP 1.2, which a host's options
// may switch off. omniORB would share one between earlier calls, whose threads read, and its own
// thread.
bool TakesCalls(const omniIOR::IORInfo& info) {
  const auto minor = std::min(info.version().minor, omni::orbParameters::maxGIOPVersion.minor);
  return omni::orbParameters::offerBiDirectionalGIOP && minor >= 2;
}

// The connections to one server; Base is omniORB's class for them.
template <class Base>
class CheckedRope : public Base {
 public:
  CheckedRope(const omni::giopAddressList& addresses, omniIOR::IORInfo* info)
      : Base(addresses, info) {
    for (omni::giopAddress*& address : this->pd_addresses) address = new CheckedAddress(address);
  }

  CORBA::Boolean match(const omni::giopAddressList& addresses,
                       omniIOR::IORInfo* info) const override {
    return kTakesCalls == TakesCalls(*info) && Base::match(addresses, info);
  }

  omni::IOP_C* acquireClient(const omniIOR* ior, const CORBA::Octet* key, CORBA::ULong keySize,
                             omniCallDescriptor* descriptor) override {
    if (call.descriptor != descriptor || !(call.end == descriptor->getDeadline())) {
      Begin(*descriptor);
    }
    omni_time_t now = Now();
    if (call.refusal != 0) {
      // A handler of the program's own may repeat the failed call.
      if (call.end <= now) call.refusal = omni::TRANSIENT_CallTimedout;
      Fail(call.refusal, CORBA::COMPLETED_MAYBE);
    }
    call.repeat = false;
    const omni_time_t connectEnd = std::min(call.end, now + ToOmni(limits.connect));
    for (std::size_t tried = 0;; now = Now()) {
      if (call.end <= now) Fail(omni::TRANSIENT_CallTimedout, CORBA::COMPLETED_NO);
      if (++call.connections > kMostConnections) {
        Fail(call.forwarded ? omni::TRANSIENT_FailedOnForwarded : omni::TRANSIENT_ConnectFailed,
             CORBA::COMPLETED_NO);
      }
      try {
        GIOP_C& attempt = Connected(ior, key, keySize, *descriptor, tried, connectEnd);
        if (IsUsable(attempt)) return &attempt;
        --call.connections;
      } catch (const CommFailure& failure) {
        descriptor->setDeadline(call.end);
        if (++tried >= AddressCount() || connectEnd <= Now()) {
          Fail(failure.minor(), failure.completed());
        }
      }
    }
  }

  // omniORB calls it in a destructor.
  void releaseClient(omni::IOP_C* client) override {
    auto& attempt = *static_cast<GIOP_C*>(client);
    try {
      if (kTakesCalls && attempt.state() != omni::IOP_C::Idle) EndReading(attempt);
      if (attempt.calldescriptor() == call.descriptor) {
        if (IsLost(attempt)) SuspectIdle(attempt.strand());
        NoteEnd(attempt);
      }
      if (attempt.strand().connection != nullptr) {
        CheckedConnection::Of(attempt.strand()).ForgetReplyTo(attempt);
      }
      if (!ReleaseTakingCalls(attempt)) Base::releaseClient(&attempt);
    } catch (const omniORB::fatalException& exception) {
      Report(exception);
    }
    DisableNewReferences();
  }

 private:
  static constexpr bool kTakesCalls = std::is_same_v<Base, BiDirClientRope>;

  static CallDeadline::Clock::time_point LastReceived(giopStrand& strand) {
    return CheckedConnection::Of(strand).LastReceived();
  }

  // Whether a call over a connection that had been idle has no reply.
  static bool IsLost(GIOP_C& attempt) {
    const bool isSent = attempt.state() == omni::IOP_C::RequestInProgress ||
                        attempt.state() == omni::IOP_C::WaitingForReply;
    return isSent && !attempt.strand().first_use && attempt.strand().connection != nullptr;
  }

  // Since then the network may have lost the connections from which nothing has come, too.
  void SuspectIdle(giopStrand& lost) {
    const auto since = std::max(call.begin, LastReceived(lost));
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    m_silentSince = std::max(m_silentSince.load(), since);
  }

  std::size_t AddressCount() {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    return this->pd_addrs_filtered ? this->pd_addresses_order.size() : this->pd_addresses.size();
  }

  // Until when the next address may take to connect: those left share the time.
  omni_time_t Share(std::size_t tried, const omni_time_t& connectEnd) {
    const std::size_t left = std::max(AddressCount(), tried + 1) - tried;
    return Now() + ToOmni(Until(connectEnd) / left);
  }

  // An attempt with a connection: an idle one, or a new one to the address whose turn it is.
  GIOP_C& Connected(const omniIOR* ior, const CORBA::Octet* key, CORBA::ULong keySize,
                    omniCallDescriptor& descriptor, std::size_t tried,
                    const omni_time_t& connectEnd) {
    RefuseAtEnd();
    try {
      std::shared_lock<std::shared_timed_mutex> open;
      std::unique_lock<std::timed_mutex> opening;
      if constexpr (kTakesCalls) {
        open = std::shared_lock(opens);
        RefuseAtEnd();
        opening = LockOpening();
        EndDying();
        descriptor.setDeadline(Share(tried, connectEnd));
      }
      auto& attempt =
          *static_cast<GIOP_C*>(leaving ? giopRope::acquireClient(ior, key, keySize, &descriptor)
                                        : Base::acquireClient(ior, key, keySize, &descriptor));
      if (attempt.strand().connection == nullptr) Open(attempt, Share(tried, connectEnd));
      return attempt;
    } catch (const CORBA::TRANSIENT& exception) {
      // omniORB forgets a forward when its own exception says that it leads nowhere.
      Fail(exception.minor(), exception.completed());
    } catch (const omniORB::fatalException& exception) {  // such as a handshake it does not expect
      Report(exception);
      Fail(omni::TRANSIENT_ConnectFailed, CORBA::COMPLETED_NO);
    }
  }

  // A connection from which its caller reads.
  void Open(GIOP_C& attempt, const omni_time_t& end) {
    {
      const omni_tracedmutex_lock transport(*omni::omniTransportLock);
      attempt.strand().flags &= ~CORBA::ULong{GIOPSTRAND_BIDIR};
    }
    attempt.setDeadline(end);
    try {
      attempt.openConnection();
    } catch (...) {
      Discard(attempt.strand());
      Base::releaseClient(&attempt);
      DisableNewReferences();
      throw;
    }
  }

  static void Discard(giopStrand& strand) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    strand.state(giopStrand::DYING);
  }

  // Where connections take calls omniORB opens them itself, under a lock for which it waits without
  // limit. This lock is taken first, with a limit.
  std::unique_lock<std::timed_mutex> LockOpening() {
    std::unique_lock opening(m_opening, std::defer_lock);
    const auto left = std::chrono::floor<std::chrono::microseconds>(Until(call.end));
    if (!opening.try_lock() && !opening.try_lock_until(std::chrono::system_clock::now() + left)) {
      Fail(omni::TRANSIENT_CallTimedout, CORBA::COMPLETED_NO);
    }
    return opening;
  }

  // omniORB keeps the descriptor of a connection that took calls and died for minutes, or for good
  // where the client passed a reference over it. Another thread of omniORB may be about to delete
  // the connection, too, under this lock.
  void EndDying() {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    for (omni::RopeLink* link = this->pd_strands.next; link != &this->pd_strands;) {
      auto* const strand = static_cast<giopStrand*>(link);
      link = link->next;
      if (strand->state() == giopStrand::DYING && !IsInUse(*strand)) {
        strand->StrandList::remove();
        strand->RopeLink::remove();
        strand->safeDelete(true);
      }
    }
  }

  // omniORB's destructor of a connection ends the process while a thread still uses it.
  static bool IsInUse(giopStrand& strand) {
    return AnyOf<GIOP_C>(strand.clients, [](const GIOP_C& attempt) {
      return attempt.state() != omni::IOP_C::UnUsed;
    });
  }

  // Ends the reading by the ORB's thread, which may still add to the reply: that is deleted with
  // the attempt. A thread that waits in a POA, with a call of which a part is still to be read, is
  // not awaited for longer than this; the attempt is then kept as long as the connection.
  void EndReading(GIOP_C& attempt) {
    giopStrand& strand = attempt.strand();
    if (strand.connection == nullptr || !strand.isBiDir()) return;
    ::shutdown(CheckedConnection::Of(strand).Socket(), SHUT_RDWR);
    EndWriting(attempt);
    constexpr int kMost = 100;  // milliseconds for the replies to other threads that have arrived
    constexpr int kLongest = 300;
    for (int i = 0; IsBeingRead(strand, i >= kMost) && i < kLongest; ++i) {
      omni_thread::sleep(0, 1'000'000);
    }
    DropUnfinished(strand);
  }

  // The thread that reads may wait to write, to refuse a message.
  static void EndWriting(GIOP_C& attempt) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    attempt.wrUnLock();
  }

  // Releases an attempt on a connection that takes calls, as omniORB 4.2 does. omniORB 4.3 forgets
  // one that ends beside others, and keeps its memory.
  bool ReleaseTakingCalls(GIOP_C& attempt) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    giopStrand& strand = attempt.strand();
    if (!kTakesCalls || !strand.isBiDir() || strand.connection == nullptr) return false;
    attempt.rdUnLock();
    attempt.wrUnLock();
    if (attempt.state() != omni::IOP_C::Idle) strand.state(giopStrand::DYING);
    const bool isDying = strand.state() == giopStrand::DYING;
    const bool isAlone = strand.clients.next == strand.clients.prev;
    if (isDying || isAlone) {
      if (isDying && strand.rd_nwaiting < 0) {  // It is kept: a thread may still add to the reply.
        attempt.state(omni::IOP_C::UnUsed);
        attempt.calldescriptor(nullptr);
      } else {
        attempt.cleanup();
      }
      if (isDying ? !IsInUse(strand) : !strand.biDir_has_callbacks) strand.startIdleCounter();
      this->pd_cond.signal();
    } else {
      attempt.giopStreamList::remove();
      delete &attempt;
    }
    return true;
  }

  // Calls of the server of which a part has arrived. omniORB keeps them while a caller waits, and
  // its destructor of the connection would end the process.
  static void DropUnfinished(giopStrand& strand) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    for (auto* link = strand.servers.next; link != &strand.servers; link = link->next) {
      auto& incoming = *static_cast<omni::GIOP_S*>(link);
      if (incoming.state() == omni::IOP_S::InputPartiallyBuffered ||
          incoming.state() == omni::IOP_S::InputFullyBuffered) {
        incoming.state(omni::IOP_S::UnUsed);
      }
    }
  }

  // After false, or with `stop`, no thread begins to read.
  bool IsBeingRead(giopStrand& strand, bool stop) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    const bool isBeingRead = strand.rd_nwaiting < 0;
    if (stop || !isBeingRead) strand.state(giopStrand::DYING);
    return isBeingRead;
  }

  // False when the connection was idle and is dead, and has been discarded. The one repetition of a
  // call needs a new connection: the server may be closing all idle ones.
  bool IsUsable(GIOP_C& attempt) {
    giopStrand& strand = attempt.strand();
    const bool isNewNeeded =
        !kTakesCalls && (call.closedInOrder || LastReceived(strand) < m_silentSince.load());
    if (!strand.first_use && (isNewNeeded || IsDead(strand, kTakesCalls))) {
      if constexpr (kTakesCalls) {
        AwaitOtherReplies(strand);
        EndReading(attempt);
      }
      Discard(strand);
      if (!ReleaseTakingCalls(attempt)) Base::releaseClient(&attempt);
      return false;
    }
    attempt.setDeadline(call.end);
    attempt.calldescriptor()->setDeadline(call.end);
    return true;
  }

  // The replies to calls of other threads may have come before the end of the connection.
  void AwaitOtherReplies(giopStrand& strand) {
    while (AwaitsReplies(strand) && Now() < call.end) omni_thread::sleep(0, 1'000'000);
  }

  bool AwaitsReplies(giopStrand& strand) {
    const omni_tracedmutex_lock transport(*omni::omniTransportLock);
    if (strand.state() == giopStrand::DYING) return false;
    return AnyOf<GIOP_C>(strand.clients, [](const GIOP_C& attempt) {
      return attempt.state() != omni::IOP_C::UnUsed && attempt.state() != omni::IOP_C::Idle;
    });
  }

  std::timed_mutex m_opening;
  std::atomic<CallDeadline::Clock::time_point> m_silentSince{};
};

CORBA::Boolean MakeRope(omniInterceptors::createRope_T::info_T& info) {
  if (TakesCalls(*info.ior_info)) {
    info.rope = new CheckedRope<BiDirClientRope>(info.addrlist, info.ior_info);
  } else {
    info.rope = new CheckedRope<giopRope>(info.addrlist, info.ior_info);
  }
  return true;
}

// What a handler of omniORB returns: whether the failed call is repeated. Otherwise it is over, and
// the thread's next call may look the same.
bool Repeats(bool again) {
  if (!again) call.descriptor = nullptr;
  return again;
}

// The place that an earlier call was forwarded to cannot be reached. Nothing was sent, so the
// server that forwarded is asked anew.
CORBA::Boolean RetryUnsent(void* /*cookie*/, CORBA::ULong /*retries*/,
                           const CORBA::TRANSIENT& exception) {
  DisableNewReferences();
  return Repeats(exception.minor() == omni::TRANSIENT_FailedOnForwarded &&
                 exception.completed() == CORBA::COMPLETED_NO && call.descriptor != nullptr &&
                 call.refusal == 0 && !call.forwarded && !std::exchange(call.reverted, true));
}

// For a call whose server closed in order. Where omniORB has seen that, it repeats the call itself.
CORBA::Boolean RetryClosed(void* /*cookie*/, CORBA::ULong /*retries*/,
                           const CORBA::COMM_FAILURE& /*exception*/) {
  return Repeats(call.descriptor != nullptr && call.refusal == 0 &&
                 std::exchange(call.repeat, false));
}

// Instead of a handler of the program's own, which would have the call sent again, with a new
// deadline.
CORBA::Boolean NeverRetry(void* /*cookie*/, CORBA::ULong /*retries*/,
                          const CORBA::TIMEOUT& /*exception*/) {
  return Repeats(false);
}

// When another product answers at the place of a forward that the object does not exist,
// omniORB 4.3 stays with that place. The server that forwarded is asked anew the next time.
CORBA::Boolean LeaveForward(void* /*cookie*/, CORBA::ULong /*retries*/,
                            const CORBA::SystemException& exception, CORBA::Object_ptr object,
                            const char* /*operation*/) {
  if (CORBA::OBJECT_NOT_EXIST::_downcast(&exception) != nullptr) {
    omni::revertToOriginalProfile(object->_PR_getobj());
    DisableNewReferences();
  }
  return Repeats(false);
}

}  // namespace

void InstallCalls(const OrbSettings& settings) {
  ending = false;
  limits = {settings.callTimeout, settings.connectTimeout, settings.tcpKeepAlive,
            settings.tcpUserTimeout};
  // Each of these, set by omniORB's own options, would let a call last longer: its limit, that of
  // connecting, which extends the call's, and a new deadline for each repetition.
  omniORB::setClientCallTimeout(static_cast<CORBA::ULong>(settings.callTimeout.count()));
  omniORB::setClientConnectTimeout(0);
  omni::orbParameters::resetTimeOutOnRetries = false;
  omniORB::installTransientExceptionHandler(nullptr, RetryUnsent);
  omniORB::installCommFailureExceptionHandler(nullptr, RetryClosed);
  omniORB::installTimeoutExceptionHandler(nullptr, NeverRetry);
  omniORB::installSystemExceptionHandlerExt(nullptr, LeaveForward);
  omniInterceptors& interceptors = *omniORB::getInterceptors();
  interceptors.createRope.add(MakeRope);
  interceptors.clientOpenConnection.add(WatchConnection);
  interceptors.clientReceiveReply.add(CheckReply);
  interceptors.serverReceiveRequest.add(KeepCodeSet);
  interceptors.serverReceiveRequest.add(EndReadingRequest);
  GuardMessages();
}

void StopTakingCalls() {
  leaving = true;
  const std::unique_lock last(opens, InASecond());  // connections that are being opened
  CloseBiDirectional();
  StopWatching();
}

void EndCalls() {
  ending = true;
  const std::unique_lock last(opens);
  CloseBiDirectional();
}

}  // namespace vq::orb
