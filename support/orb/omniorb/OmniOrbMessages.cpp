#include <support/orb/omniorb/OmniOrbMessages.h>

#include <algorithm>
#include <array>
#include <utility>

// These build on each other in this order.
// clang-format off
#include <omniORB4/omniORB.h>
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopStreamImpl.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/GIOP_S.h>
// clang-format on

#include <support/diagnostics/TDiag.h>

namespace vq::orb {
namespace {

using omni::giopStream;
using omni::giopStreamImpl;

TDiagRegister diagModule("ORB");

// Elements of a list, bytes of a list of numbers or characters of a string in one message. omniORB
// allocates all that a message announces before it has arrived, up to 40 bytes for each.
constexpr std::size_t kMostElements = std::size_t{16} << 20U;

// omniORB does not delete a call that was received when its connection ends before the reply.
void EndReceived(giopStream& stream) {
  auto* const received = omni::GIOP_S::downcast(&stream);
  if (received != nullptr && received->state() == omni::IOP_S::WaitingForReply) {
    received->state(omni::IOP_S::ReplyCompleted);
  }
}

// Replaces a function of omniORB that reads or writes messages: a failed assertion fails the call.
template <auto Member>
struct Guarded;
template <class... Arguments, void (*giopStreamImpl::*Member)(giopStream*, Arguments...)>
struct Guarded<Member> {
  static void Call(giopStream* stream, Arguments... arguments) {
    try {
      original.at(stream->version().minor)(stream, arguments...);
    } catch (const giopStream::CommFailure&) {
      EndReceived(*stream);
      throw;
    } catch (const omniORB::fatalException& exception) {
      Report(exception);
      throw CORBA::INTERNAL(0, CORBA::COMPLETED_MAYBE);
    }
  }

  static void Replace(giopStreamImpl& version) {
    if (version.*Member != Call) {
      original.at(version.version().minor) = std::exchange(version.*Member, Call);
    }
  }

  static inline std::array<void (*)(giopStream*, Arguments...), 3>
      original{};  // for GIOP 1.0 to 1.2
};

std::array<std::size_t (*)(giopStream*), 3> remainingInput{};  // for GIOP 1.0 to 1.2

// omniORB compares it with the number of elements that a list announces.
std::size_t LimitedRemainingInput(giopStream* stream) {
  return std::min(remainingInput.at(stream->version().minor)(stream), kMostElements);
}

}  // namespace

// fatalException is no CORBA exception, and the ORB's own threads survive it.
void Report(const omniORB::fatalException& exception) {
  VQ_LOG(diagModule, 1) << "omniORB gives up: " << exception.errmsg() << " (" << exception.file()
                        << ":" << exception.line() << ")";
}

void GuardMessages() {
  for (CORBA::Octet minor = 0; minor < 3; ++minor) {
    giopStreamImpl* const version = giopStreamImpl::matchVersion({1, minor});
    if (version == nullptr) continue;
    if (version->inputRemaining != LimitedRemainingInput) {
      remainingInput.at(minor) = std::exchange(version->inputRemaining, LimitedRemainingInput);
    }
    Guarded<&giopStreamImpl::inputMessageBegin>::Replace(*version);
    Guarded<&giopStreamImpl::inputMessageEnd>::Replace(*version);
    Guarded<&giopStreamImpl::getInputData>::Replace(*version);
    Guarded<&giopStreamImpl::skipInputData>::Replace(*version);
    Guarded<&giopStreamImpl::copyInputData>::Replace(*version);
    Guarded<&giopStreamImpl::unmarshalRequestHeader>::Replace(*version);
    Guarded<&giopStreamImpl::unmarshalLocateRequest>::Replace(*version);
    Guarded<&giopStreamImpl::sendSystemException>::Replace(*version);
    Guarded<&giopStreamImpl::sendUserException>::Replace(*version);
    Guarded<&giopStreamImpl::sendLocateReply>::Replace(*version);
    Guarded<&giopStreamImpl::sendLocationForwardReply>::Replace(*version);
    Guarded<&giopStreamImpl::outputMessageBegin>::Replace(*version);
    Guarded<&giopStreamImpl::outputMessageEnd>::Replace(*version);
    Guarded<&giopStreamImpl::getReserveSpace>::Replace(*version);
    Guarded<&giopStreamImpl::copyOutputData>::Replace(*version);
  }
}

}  // namespace vq::orb
