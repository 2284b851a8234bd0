#include <support/orb/tao/TaoConnector.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <ace/Event_Handler.h>
#include <tao/CDR.h>
#include <tao/IIOP_Transport.h>
#include <tao/ORB_Core.h>
#include <tao/Profile.h>
#include <tao/Profile_Transport_Resolver.h>
#include <tao/Stub.h>
#include <tao/Thread_Lane_Resources.h>
#include <tao/Transport.h>
#include <tao/Transport_Descriptor_Interface.h>

#include <tao/Transport_Cache_Manager.h>  // It does not include what it needs of the above.

#include <support/orb/PeerSocket.h>
#include <support/orb/tao/TaoCalls.h>

namespace vq::orb {
namespace {

// New connections in one call that may turn out dead at once.
constexpr int kMostConnections = 16;

// Whether the peer has closed an idle connection. With TLS or bidirectional IIOP other data may
// have arrived; before the first call, a greeting.
bool HasEnded(TAO_Transport& transport, int socket, bool takesCalls) {
  const bool isTls = dynamic_cast<TAO_IIOP_Transport*>(&transport) == nullptr;
  return IsDead(socket, isTls, takesCalls || isTls || transport.first_request());
}

// The addresses that TAO tries in turn. They share the time: TAO would give all of it to the first.
CORBA::ULong AddressCount(TAO::Profile_Transport_Resolver& resolver) {
  return resolver.profile()->endpoint_count() * resolver.stub()->base_profiles().profile_count();
}

void Discard(TAO_Transport& transport) {
  transport.purge_entry();  // For TAO a closed one in its cache is about to connect.
  transport.close_connection();
  transport.remove_reference();
}

// Discards that dead connection and all others to its place that are idle. TAO looks for an idle
// one up to the first gap, which the discarded one leaves, and would keep the dead ones behind it.
void DiscardDead(TAO_Transport& first, TAO_Transport_Descriptor_Interface* descriptor) {
  auto& cache = first.orb_core()->lane_resources().transport_cache();
  std::vector<TAO_Transport*> dead{&first};
  std::vector<TAO_Transport*> alive;
  while (true) {
    TAO_Transport* found = nullptr;
    std::size_t busy = 0;
    if (cache.find_transport(descriptor, found, busy) !=
        TAO::Transport_Cache_Manager::CACHE_FOUND_AVAILABLE) {
      if (found != nullptr) found->remove_reference();
      break;
    }
    const int socket = found->event_handler_i()->get_handle();
    (HasEnded(*found, socket, false) ? dead : alive).push_back(found);
  }
  for (TAO_Transport* const transport : alive) {
    transport->make_idle();
    transport->remove_reference();
  }
  for (TAO_Transport* const transport : dead) Discard(*transport);
}

}  // namespace

Countdown::Countdown(ACE_Time_Value* left) : m_left(left), m_end(Clock::now()) {
  if (left != nullptr) m_end += std::chrono::milliseconds(left->msec());
}

bool Countdown::Update() const {
  if (m_left == nullptr) return true;
  const auto left = std::chrono::floor<std::chrono::milliseconds>(m_end - Clock::now());
  m_left->msec(static_cast<long>(std::max<std::int64_t>(left.count(), 0)));
  if (left.count() <= 0) errno = ETIME;
  return left.count() > 0;
}

bool CheckedConnector::HasEmptyList(const TAO_InputCDR& profile) {
  constexpr CORBA::ULong kTaoTags = 0x54414F00;  // "TAO" and a number
  TAO_InputCDR stream(profile);
  CORBA::Octet major = 0, minor = 0;
  CORBA::UShort port = 0;
  CORBA::ULong keySize = 0, count = 0;
  if (!stream.read_octet(major) || !stream.read_octet(minor) || !stream.skip_string() ||
      !stream.read_ushort(port) || !stream.read_ulong(keySize) || !stream.skip_bytes(keySize) ||
      minor == 0 || !stream.read_ulong(count)) {
    return false;
  }
  for (CORBA::ULong tag = 0, size = 0; count > 0; --count) {
    if (!stream.read_ulong(tag) || !stream.read_ulong(size)) return false;
    TAO_InputCDR content(stream, size);
    CORBA::Boolean order = false;
    CORBA::ULong elements = 1;
    if ((tag & 0xFFFFFF00) == kTaoTags && size > 0 && content.read_boolean(order)) {
      content.reset_byte_order(order);
      if (content.read_ulong(elements) && elements == 0) return true;
    }
    if (!stream.skip_bytes(size)) return false;
  }
  return false;
}

TAO_Transport* CheckedConnector::connect(TAO::Profile_Transport_Resolver* resolver,
                                         TAO_Transport_Descriptor_Interface* descriptor,
                                         ACE_Time_Value* timeout) {
  ACE_Time_Value share;
  const CORBA::ULong addresses = AddressCount(*resolver);
  if (timeout != nullptr && addresses > 1) {
    share.msec(static_cast<long>(timeout->msec() / addresses));
    timeout = &share;
  }
  const NoServants none;
  const Countdown countdown(timeout);
  for (int connections = 0; connections < kMostConnections && countdown.Update();) {
    bool isNew = false;
    TAO_Transport* const transport = Connect(*m_connector, resolver, descriptor, timeout, isNew);
    if (transport == nullptr && timeout == &share && errno == ETIME) errno = EHOSTUNREACH;
    if (transport == nullptr || !transport->is_connected()) return transport;
    const int socket = transport->event_handler_i()->get_handle();
    if (isNew) {
      WatchPeer(socket, m_settings.tcpKeepAlive, m_settings.tcpUserTimeout);
      ++connections;
    }
    if (!HasEnded(*transport, socket, m_settings.biDirectional)) return transport;
    // With bidirectional IIOP the threads share a connection.
    m_settings.biDirectional ? Discard(*transport) : DiscardDead(*transport, descriptor);
  }
  return nullptr;
}

}  // namespace vq::orb
