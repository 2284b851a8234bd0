// omniORB connections that check each incoming message before omniORB reads it.
//
// omniORB 4.2 trusts the header of a message. A header that announces nearly 4 GiB makes it
// allocate memory without end, and a message without its request id makes it read beyond its
// buffers. On a bidirectional connection a thread of the ORB reads, and four more things fail:
// messages are buffered without limit, a reply is lost when the connection ends right behind it,
// the caller does not learn that the server closed the connection in order, and two threads use
// OpenSSL at a time. omniORB 4.3 checks the sizes and locks OpenSSL itself. Tried with
// omniORB 4.2.5 and 4.3.3.
//
//   pd_addresses[i] = new CheckedAddress(pd_addresses[i]);  // of a rope
//
//   // Once, before anything is read:
//   CheckedConnection& connection = CheckedConnection::Of(strand);
//   connection.ServeStrand(strand);
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBCONNECTION_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBCONNECTION_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <omniORB4/CORBA.h>
#include <omniORB4/giopEndpoint.h>
#include <openssl/ssl.h>

#include <support/orb/FailureCause.h>

namespace omni {
class GIOP_C;
class giopStrand;
class giopStream;
}  // namespace omni

namespace vq::orb {

class CheckedConnection : public omni::giopActiveConnection, public omni::giopConnection {
 public:
  using Clock = std::chrono::steady_clock;

  explicit CheckedConnection(omni::giopActiveConnection& opened);
  explicit CheckedConnection(omni::giopConnection& accepted);

  // That of a strand whose address is a CheckedAddress, once it is open.
  static CheckedConnection& Of(const omni::giopStrand& strand);

  int Socket() const { return m_socket; }  // -1 for an unknown transport
  void ServeStrand(omni::giopStrand& strand) { m_strand = &strand; }

  // Whether it was opened while there was a guest (OmniOrbGuest.h), at whose end it is closed.
  bool IsGuests() const { return m_isGuests; }
  static void OpenForGuest(bool hasGuest);

  // Whether at least a part of the reply to a call has arrived, or the whole of it, until the call
  // has ended and its reply is forgotten.
  bool HasReplyTo(omni::GIOP_C& call, bool whole) const;
  void ForgetReplyTo(omni::GIOP_C& call);
  // Whether omniORB has received a CloseConnection, and no message had begun before.
  bool WasClosedInOrder() const { return m_closedInOrder; }
  bool IsBetweenMessages() const { return m_isBetweenMessages; }
  // Whether data has arrived that omniORB has not received yet.
  bool HasRest() const { return m_hasRest; }
  // Whether a thread has received the end of the connection, which the socket then no longer shows.
  bool HasEnded() const;
  // Notes why TLS has ended, if it has, for the calling thread's call.
  void NoteFailure() const;
  // When data arrived last, or else when it was opened.
  Clock::time_point LastReceived() const { return m_lastReceived; }
  // Whether omniORB waits for calls that arrive over it.
  bool IsWatched() const { return m_isWatched; }

  omni::giopActiveCollection* registerMonitor() override;
  omni::giopConnection& getConnection() override { return *this; }

  int Send(void* data, std::size_t size, const omni_time_t& deadline) override;
  // Returns at most one message, so that each is checked before omniORB receives it.
  int Recv(void* data, std::size_t size, const omni_time_t& deadline) override;
  void Shutdown() override;
  const char* myaddress() override { return m_connection.myaddress(); }
  const char* peeraddress() override { return m_connection.peeraddress(); }
  const char* peeridentity() override { return m_connection.peeridentity(); }
  void* peerdetails() override { return m_connection.peerdetails(); }
  CORBA::Boolean gatekeeperCheckSpecific(omni::giopStrand* strand) override;
  void setSelectable(int now, CORBA::Boolean dataInBuffer) override;
  void clearSelectable() override;
  CORBA::Boolean isSelectable() override { return m_connection.isSelectable(); }
  CORBA::Boolean Peek() override;

 private:
  ~CheckedConnection() override;  // omniORB counts references.

  static constexpr std::uint64_t kNoId = std::uint64_t{1} << 32U;  // before GIOP 1.2

  bool HasStrand() const { return m_strand != nullptr; }
  omni::giopStrand& Strand() const { return *m_strand; }
  bool IsTls() const;
  void UseTls();
  bool HasDecrypted() const;
  void ReceiveReason();
  template <class Function>
  int Exchange(Function exchange, const omni_time_t& deadline);
  int Receive(unsigned char* data, std::size_t size, const omni_time_t& deadline);
  bool BeginMessage();
  int End(int result);
  bool Refuse(std::uint64_t size);
  bool IsReadByCaller() const;
  bool NoteId(const unsigned char* body, std::size_t size);
  bool MayFollow(std::uint64_t id);
  bool StaysInHand(std::uint64_t id) const;
  bool IsInHand(std::uint64_t id) const;
  bool NoteReply(std::uint32_t id, bool begins);
  bool HasId() const { return m_header[5] >= 2; }
  bool IsLast() const {
    return m_header[7] == GIOP::CloseConnection || m_header[7] == GIOP::MessageError;
  }
  bool BeginsCall() const {
    return m_header[7] == GIOP::Request || m_header[7] == GIOP::LocateRequest;
  }
  bool MoreFollows() const { return (m_header[6] & 2) != 0; }
  bool HasUntakenReply() const;

  omni::giopActiveConnection* const m_opened;  // null for an accepted one
  omni::giopConnection& m_connection;
  const int m_socket;
  const bool m_isGuests;
  mutable std::mutex m_tlsMutex;
  SSL* m_tls = nullptr;  // after the handshake
  std::mutex m_handshake;
  std::optional<bool> m_accepted;  // whether the handshake of an accepted one succeeded
  std::atomic<omni::giopStrand*> m_strand = nullptr;

  std::array<unsigned char, 12> m_header{};  // of the latest message
  std::size_t m_headerSize = 0;              // received so far of the next one
  std::size_t m_toCome = 0;                  // bytes of the latest message still to arrive
  std::array<unsigned char, 4> m_id{};
  std::size_t m_idSize = 0;
  std::uint32_t m_size = 0;                             // of the latest message
  std::map<std::uint64_t, std::uint64_t> m_unfinished;  // messages that fragments are still to
                                                        // follow, and their sizes so far
  std::uint64_t m_kept = 0;                             // the sum of these
  std::vector<unsigned char> m_rest;
  std::atomic<bool> m_hasRest = false;
  std::atomic<bool> m_isBetweenMessages = true;
  std::atomic<bool> m_hasEnded = false;
  std::atomic<bool> m_closedInOrder = false;
  std::atomic<bool> m_isWatched = false;
  std::atomic<Clock::time_point> m_lastReceived = Clock::now();

  mutable std::mutex m_mutex;
  std::map<std::uint32_t, bool> m_replies;  // to calls in progress, and whether they are whole
};

// Whether one of a connection's calls, its `clients` or `servers`, meets the condition. omniORB's
// lock is held.
template <class Call, class List, class Condition>
bool AnyOf(List& calls, Condition meets) {
  for (auto* link = calls.next; link != &calls; link = link->next) {
    if (meets(*static_cast<Call*>(link))) return true;
  }
  return false;
}

// The number by which the peer of a call identifies it.
std::uint32_t RequestIdOf(const omni::giopStream& call);

// Notes it for the cause if the calling thread's call fails.
void NoteAddress(const omni::giopAddress& address);

// Whether no connection came about because the look-up of the host's name used up the time, of
// which omniORB does not tell. Notes the cause.
bool HasSlowName(const omni::giopAddress& address, const omni_time_t& deadline);

// An address whose connections are checked.
class CheckedAddress : public omni::giopAddress {
 public:
  explicit CheckedAddress(omni::giopAddress* address) : m_address(address) {}

  const char* type() const override { return m_address->type(); }
  const char* address() const override { return m_address->address(); }
  const char* host() const override { return m_address->host(); }
  omni::giopAddress* duplicate() const override {
    return new CheckedAddress(m_address->duplicate());
  }
  omni::giopAddress* duplicate(const char* host) const override {
    return new CheckedAddress(m_address->duplicate(host));
  }
  omni::giopActiveConnection* Connect(const omni_time_t& deadline, CORBA::ULong flags,
                                      CORBA::Boolean& timedOut) const override {
    NoteAddress(*m_address);
    omni::giopActiveConnection* const opened = m_address->Connect(deadline, flags, timedOut);
    if (opened == nullptr) {
      if (!timedOut) timedOut = HasSlowName(*m_address, deadline);
      return nullptr;
    }
    NoteCause("");  // why an address before it failed
    return new CheckedConnection(*opened);
  }

 private:
  const std::unique_ptr<omni::giopAddress> m_address;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBCONNECTION_H
