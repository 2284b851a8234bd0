#include <support/orb/omniorb/OmniOrbConnection.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

// These build on each other in this order.
// clang-format off
#include <omniORB4/omniORB.h>
#include <omniORB4/internal/orbParameters.h>
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/GIOP_C.h>
#include <omniORB4/internal/GIOP_S.h>
#include <omniORB4/internal/libcWrapper.h>
#include <omniORB4/tcpConnection.h>
#include <omniORB4/unixConnection.h>
#include <omniORB4/sslContext.h>
#include <omniORB4/sslConnection.h>
// clang-format on

#include <openssl/err.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/FailureCause.h>
#include <support/orb/Tls.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/omniorb/OmniOrbWatcher.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

using omni::giopConnection;

std::atomic<bool> openForGuest = false;

SSL* TlsOf(giopConnection& connection) {
  const auto* const tls = dynamic_cast<omni::sslConnection*>(&connection);
  return tls != nullptr ? tls->ssl_handle() : nullptr;
}

int SocketOf(giopConnection& connection) {
  if (const auto* tcp = dynamic_cast<omni::tcpConnection*>(&connection)) return tcp->handle();
  if (const auto* tls = dynamic_cast<omni::sslConnection*>(&connection)) return tls->handle();
  if (const auto* local = dynamic_cast<omni::unixConnection*>(&connection)) return local->handle();
  return -1;
}

bool WasReset(int socket) {
  pollfd events{socket, 0, 0};
  return ::poll(&events, 1, 0) == 1 && (events.revents & POLLERR) != 0;
}

bool IsOver(const omni_time_t& deadline) {
  omni_time_t now;
  omni_thread::get_time(now);
  return deadline && deadline <= now;
}

// Waits for that event of the socket. False at the deadline, if there is one.
bool Await(int socket, short event, const omni_time_t& deadline) {
  omni_time_t now;
  omni_thread::get_time(now);
  int milliseconds = -1;
  if (deadline) {
    if (deadline <= now) return false;
    const omni_time_t left = deadline - now;
    milliseconds = static_cast<int>(std::min(left.s, 1'000'000UL) * 1000 + left.ns / 1'000'000 + 1);
  }
  pollfd events{socket, event, 0};
  return ::poll(&events, 1, milliseconds) != 0;
}

std::uint32_t NumberIn(const unsigned char* data, bool littleEndian) {
  std::uint32_t number = 0;
  for (int i = 0; i < 4; ++i) number = number << 8U | data[littleEndian ? 3 - i : i];
  return number;
}

bool AwaitsReply(omni::GIOP_C& call) {
  return call.state() == omni::IOP_C::RequestInProgress ||
         call.state() == omni::IOP_C::WaitingForReply;
}

bool IsDeleted(omni::giopStrand& strand) {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  return strand.deletePending();
}

}  // namespace

std::uint32_t RequestIdOf(const omni::giopStream& call) {
  struct Access : omni::GIOP_C {  // It is protected.
    static std::uint32_t Of(const omni::giopStream& stream) {
      CORBA::ULong (omni::giopStream::*const id)() const = &Access::requestId;
      return (stream.*id)();
    }
  };
  return Access::Of(call);
}

void NoteAddress(const omni::giopAddress& address) {
  const std::string_view text = address.address();
  if (text.starts_with(kTcp) || text.starts_with(kTls))
    NotePeer(text.substr(std::string_view(kTcp).size()));
}

bool HasSlowName(const omni::giopAddress& address, const omni_time_t& deadline) {
  const std::string host = address.host() != nullptr ? address.host() : "";
  if (host.empty() || omni::LibcWrapper::isipaddr(host.c_str())) return false;
  omni_time_t now;
  omni_thread::get_time(now);
  // A little later, so that it is no failure at the last moment.
  if (!deadline || now < deadline + omni_time_t(0, 20'000'000)) return false;
  NoteCause("the host " + host + " cannot be resolved: no answer within the time-out");
  return true;
}

CheckedConnection::CheckedConnection(omni::giopActiveConnection& opened)
    : m_opened(&opened),
      m_connection(opened.getConnection()),
      m_socket(SocketOf(m_connection)),
      m_isGuests(openForGuest) {
  UseTls();
}

CheckedConnection::CheckedConnection(giopConnection& accepted)
    : m_opened(nullptr),
      m_connection(accepted),
      m_socket(SocketOf(m_connection)),
      m_isGuests(false) {
  Watcher::Add(m_connection, *this);
}

void CheckedConnection::clearSelectable() {
  m_connection.clearSelectable();
  m_isWatched = false;
  Watcher::RemoveAndWait(m_connection);
}

CheckedConnection::~CheckedConnection() {
  Watcher::Remove(m_connection);
  m_connection.decrRefCount(true);
}

CheckedConnection& CheckedConnection::Of(const omni::giopStrand& strand) {
  return dynamic_cast<CheckedConnection&>(*strand.connection);
}

void CheckedConnection::OpenForGuest(bool hasGuest) {
  openForGuest = hasGuest;
}

omni::giopActiveCollection* CheckedConnection::registerMonitor() {
  Watcher::Add(m_connection, *this);
  return &WatcherOfOpened(*m_opened->registerMonitor());
}

// When it ends, omniORB sends CloseConnection to each peer in turn, and would wait for one that
// does not read.
int CheckedConnection::Send(void* data, std::size_t size, const omni_time_t& deadline) {
  omni_time_t end = deadline;
  const auto* const bytes = static_cast<const unsigned char*>(data);
  const bool isHeader = size == m_header.size() && std::memcmp(bytes, "GIOP", 4) == 0;
  if (isHeader && bytes[7] == GIOP::CloseConnection) {
    omni_thread::get_time(end, omni_time_t(0, 20'000'000));
    if (deadline) end = std::min(end, deadline);
  }
  if (!IsTls()) return m_connection.Send(data, size, end);
  constexpr std::size_t kRecord = 16384;
  const int length = static_cast<int>(std::min(size, kRecord));
  const int sent = Exchange([=](SSL* tls) { return SSL_write(tls, data, length); }, end);
  if (sent < 0) ReceiveReason();
  return sent;
}

// Why the peer closed the connection: with TLS 1.3 it may refuse a certificate after the handshake,
// or it may have done so in order.
void CheckedConnection::ReceiveReason() {
  const std::lock_guard lock(m_tlsMutex);
  std::array<unsigned char, 12> next{};
  const int length = m_tls != nullptr ? SSL_peek(m_tls, next.data(), next.size()) : 0;
  ERR_clear_error();
  if (length == next.size() && m_isBetweenMessages && !m_hasRest &&
      std::memcmp(next.data(), "GIOP", 4) == 0 && next[7] == GIOP::CloseConnection) {
    m_closedInOrder = true;
  }
}

int CheckedConnection::Recv(void* data, std::size_t size, const omni_time_t& deadline) {
  auto* const bytes = static_cast<unsigned char*>(data);
  const int received = Receive(bytes, size, deadline);
  if (received <= 0) return End(received);
  m_lastReceived = Clock::now();
  const auto length = static_cast<std::size_t>(received);
  std::size_t used = 0;
  if (m_toCome == 0) {
    used = std::min(length, m_header.size() - m_headerSize);
    std::memcpy(m_header.data() + m_headerSize, bytes, used);
    m_headerSize += used;
    m_isBetweenMessages = false;
    if (m_headerSize < m_header.size()) return received;
    m_headerSize = 0;
    if (!BeginMessage()) return End(-1);
  }
  const std::size_t body = std::min(length - used, m_toCome);
  m_toCome -= body;
  if (!NoteId(bytes + used, body)) return End(-1);
  m_isBetweenMessages = m_toCome == 0 && m_unfinished.empty();
  used += body;
  m_rest.insert(m_rest.begin(), bytes + used, bytes + length);
  m_hasRest = !m_rest.empty();
  return static_cast<int>(used);
}

void CheckedConnection::setSelectable(int now, CORBA::Boolean dataInBuffer) {
  m_isWatched = true;
  Watcher::Add(m_connection, *this);
  const bool hasData = dataInBuffer || m_hasRest || HasDecrypted();
  if (auto* const tls = dynamic_cast<omni::sslConnection*>(&m_connection)) {
    tls->SocketHolder::setSelectable(now, hasData);
  } else {
    m_connection.setSelectable(now, hasData);
  }
}

CORBA::Boolean CheckedConnection::Peek() {
  if (m_hasRest || HasDecrypted()) return true;
  auto* const tls = dynamic_cast<omni::sslConnection*>(&m_connection);
  return tls != nullptr ? tls->SocketHolder::Peek() : m_connection.Peek();
}

// With TLS omniORB would use OpenSSL here while another thread does, such as one that waits for the
// rest of a handshake.
void CheckedConnection::Shutdown() {
  if (IsTls()) {
    ::shutdown(m_socket, SHUT_RDWR);
  } else {
    m_connection.Shutdown();
  }
}

// A handshake that is under way when the ORB ends is left to its thread. For omniORB a second one
// does it as well, and when both fail, both delete the connection.
CORBA::Boolean CheckedConnection::gatekeeperCheckSpecific(omni::giopStrand* strand) {
  const std::lock_guard lock(m_handshake);
  if (!m_accepted) {
    m_strand = strand;
    m_accepted = m_connection.gatekeeperCheckSpecific(strand);
    if (*m_accepted) UseTls();
    return *m_accepted;
  }
  while (!*m_accepted && !IsDeleted(*strand)) omni_thread::sleep(0, 1'000'000);
  return true;
}

bool CheckedConnection::IsTls() const {
  return TlsOf(m_connection) != nullptr;
}

// Once the handshake is over.
void CheckedConnection::UseTls() {
  SSL* const tls = TlsOf(m_connection);
  if (tls == nullptr) return;
  ::fcntl(m_socket, F_SETFL, ::fcntl(m_socket, F_GETFL) | O_NONBLOCK);
  SSL_clear_mode(tls, SSL_MODE_AUTO_RETRY);  // It returns after each record.
  const std::lock_guard lock(m_tlsMutex);
  m_tls = tls;
}

// What OpenSSL has received is no longer seen at the socket.
bool CheckedConnection::HasDecrypted() const {
  const std::lock_guard lock(m_tlsMutex);
  return m_tls != nullptr && SSL_pending(m_tls) > 0;
}

bool CheckedConnection::HasEnded() const {
  const std::lock_guard lock(m_tlsMutex);
  return m_hasEnded || (m_tls != nullptr && SSL_get_shutdown(m_tls) != 0);
}

void CheckedConnection::NoteFailure() const {
  const std::lock_guard lock(m_tlsMutex);
  if (m_tls != nullptr) NoteFailureOf(*m_tls);
}

// Reads or writes, as omniORB does with TLS. While it waits, other threads can use the connection.
// OpenSSL allows one at a time, which omniORB 4.2 does not heed.
template <class Function>
int CheckedConnection::Exchange(Function exchange, const omni_time_t& deadline) {
  if (IsOver(deadline)) return 0;
  while (true) {  // As omniORB, not by the clock once it waits: that may be set meanwhile.
    int error = SSL_ERROR_NONE;
    {
      const std::lock_guard lock(m_tlsMutex);
      if (m_tls == nullptr) return -1;
      ERR_clear_error();  // An earlier error on this thread would count for this one.
      const int length = exchange(m_tls);
      if (length > 0) return length;
      error = SSL_get_error(m_tls, length);
      if (error == SSL_ERROR_SSL) ReportEnd(*m_tls);
      ERR_clear_error();
    }
    if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE) return -1;
    const short event = error == SSL_ERROR_WANT_READ ? POLLIN : POLLOUT;
    if (!Await(m_socket, event, deadline)) return 0;
  }
}

int CheckedConnection::Receive(unsigned char* data, std::size_t size, const omni_time_t& deadline) {
  if (!m_hasRest && IsTls()) {
    return Exchange([=](SSL* tls) { return SSL_read(tls, data, static_cast<int>(size)); },
                    deadline);
  }
  if (!m_hasRest) {
    // Without a deadline omniORB would make the socket block, also for a thread that sends with
    // one.
    omni_time_t end = deadline;
    int received = 0;
    do {
      if (!deadline) omni_thread::get_time(end, omni_time_t(3600));
      received = m_connection.Recv(data, size, end);
    } while (received == 0 && !deadline);
    if (received >= 0 || !WasReset(m_socket)) return received;
    // omniORB gives up, and what arrived before the reset can still be read, without waiting.
    return m_connection.Recv(data, size, omni_time_t());
  }
  const std::size_t length = std::min(size, m_rest.size());
  std::memcpy(data, m_rest.data(), length);
  m_rest.erase(m_rest.begin(), m_rest.begin() + static_cast<std::ptrdiff_t>(length));
  m_hasRest = !m_rest.empty();
  return static_cast<int>(length);
}

// Whether omniORB may receive the message of this header.
bool CheckedConnection::BeginMessage() {
  m_idSize = 0;
  if (std::memcmp(m_header.data(), "GIOP", 4) != 0) {
    End(-1);
    return true;  // omniORB closes the connection.
  }
  m_size = NumberIn(&m_header[8], (m_header[6] & 1) != 0);
  const int kind = m_header[7];
  const bool isBare = IsLast() || (kind == GIOP::Fragment && !HasId());
  const bool isTooLarge = m_size > std::numeric_limits<std::uint32_t>::max() - m_header.size() ||
                          (!IsReadByCaller() && m_size > omni::orbParameters::giopMaxMsgSize);
  // omniORB can cancel no call, and does not end a connection on which it was asked to. Before GIOP
  // 1.2 it skips a LocateReply without a request while it holds a lock. After a call back of such a
  // version it never uses the connection again, nor closes it.
  const bool isOldCallBack = m_opened != nullptr && BeginsCall() && !HasId();
  const bool isUseless =
      kind == GIOP::CancelRequest || isOldCallBack || (kind == GIOP::LocateReply && !HasId());
  if (isUseless || isTooLarge || (!isBare && m_size < m_id.size())) return Refuse(m_size);
  m_closedInOrder = kind == GIOP::CloseConnection && m_unfinished.empty();
  if (IsLast()) End(-1);
  m_toCome = m_size;
  return HasId() || IsLast() || MayFollow(kNoId);
}

bool CheckedConnection::Refuse(std::uint64_t size) {
  VQ_LOG(diagModule, 2) << peeraddress() << " sent a message of " << size
                        << " bytes, which is refused";
  return false;
}

// omniORB itself then checks the limit of the settings.
bool CheckedConnection::IsReadByCaller() const {
  return m_opened != nullptr && HasStrand() && !Strand().isBiDir();
}

// False for a message that omniORB must not receive.
bool CheckedConnection::NoteId(const unsigned char* body, std::size_t size) {
  if (!HasId() || IsLast()) return true;
  const std::size_t part = std::min(size, m_id.size() - m_idSize);
  std::memcpy(m_id.data() + m_idSize, body, part);
  m_idSize += part;
  if (m_idSize < m_id.size()) return true;
  const std::uint32_t id = NumberIn(m_id.data(), (m_header[6] & 1) != 0);
  if (part > 0 && !MayFollow(id)) return false;
  const int kind = m_header[7];
  const bool isReply = kind == GIOP::Reply || kind == GIOP::LocateReply;
  return !(isReply || kind == GIOP::Fragment) || NoteReply(id, isReply && part > 0);
}

// omniORB adds a fragment to any call with its number, also to one that another thread processes.
// It keeps the fragments until the last one comes.
bool CheckedConnection::MayFollow(std::uint64_t id) {
  constexpr std::size_t kMost = 1000;
  const int kind = m_header[7];
  const bool isOpen = m_unfinished.contains(id);
  const bool begins = BeginsCall();
  if (kind == GIOP::Fragment ? !isOpen
                             : (isOpen && (begins || id == kNoId)) || (begins && StaysInHand(id))) {
    VQ_LOG(diagModule, 2) << peeraddress() << " sent a message out of turn, which is refused";
    return false;
  }
  if (isOpen || MoreFollows()) {
    m_unfinished[id] += m_size;
    m_kept += m_size;
    const bool isTooLarge = !IsReadByCaller() && m_kept > omni::orbParameters::giopMaxMsgSize;
    if (isTooLarge || m_unfinished.size() > kMost) return Refuse(m_kept);
  }
  if (!MoreFollows() && isOpen) m_kept -= m_unfinished.extract(id).mapped();
  return true;
}

// The peer may use a number again when it has the reply, which is a moment before the call has
// ended here.
bool CheckedConnection::StaysInHand(std::uint64_t id) const {
  for (int i = 0; i < 100; ++i) {
    if (!IsInHand(id)) return false;
    omni_thread::sleep(0, 1'000'000);
  }
  return true;
}

// Whether a call of the peer's with this number is under way. A call has no number until its header
// has arrived.
bool CheckedConnection::IsInHand(std::uint64_t id) const {
  if (!HasStrand()) return false;
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  return AnyOf<omni::GIOP_S>(Strand().servers, [id](omni::GIOP_S& call) {
    const bool hasNumber =
        call.state() != omni::IOP_S::UnUsed && call.state() != omni::IOP_S::WaitForRequestHeader;
    return hasNumber && RequestIdOf(call) == id;
  });
}

// False at the beginning of a reply that no call awaits, such as a second one: omniORB adds it to a
// call that is not sent yet or has just ended.
bool CheckedConnection::NoteReply(std::uint32_t id, bool begins) {
  if (!HasStrand()) return true;
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  const bool isAwaited = AnyOf<omni::GIOP_C>(Strand().clients, [id](omni::GIOP_C& call) {
    return AwaitsReply(call) && RequestIdOf(call) == id;
  });
  const std::lock_guard lock(m_mutex);
  if (begins && (!isAwaited || m_replies.contains(id))) {
    VQ_LOG(diagModule, 2) << peeraddress() << " sent a reply to no call, which is refused";
    return false;
  }
  if (!isAwaited) return true;
  bool& whole = m_replies[id];
  if (m_toCome == 0 && !MoreFollows()) whole = true;
  return true;
}

void CheckedConnection::ForgetReplyTo(omni::GIOP_C& call) {
  const std::lock_guard lock(m_mutex);
  m_replies.erase(RequestIdOf(call));
}

bool CheckedConnection::HasReplyTo(omni::GIOP_C& call, bool whole) const {
  const std::lock_guard lock(m_mutex);
  const auto reply = m_replies.find(RequestIdOf(call));
  return reply != m_replies.end() && (reply->second || !whole);
}

bool CheckedConnection::HasUntakenReply() const {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  if (Strand().state() == omni::giopStrand::DYING) return false;
  return AnyOf<omni::GIOP_C>(Strand().clients, [this](omni::GIOP_C& call) {
    return AwaitsReply(call) && HasReplyTo(call, true);
  });
}

// No call begins on it any more. omniORB would report the end to callers whose replies have
// arrived, so they get the time to take these.
int CheckedConnection::End(int result) {
  m_hasEnded = true;
  while (HasStrand() && Strand().isBiDir() && HasUntakenReply()) omni_thread::sleep(0, 1'000'000);
  return result;
}

}  // namespace vq::orb
