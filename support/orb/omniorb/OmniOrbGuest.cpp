#include <support/orb/omniorb/OmniOrbGuest.h>

#include <array>
#include <atomic>
#include <mutex>
#include <set>
#include <utility>

#include <omniORB4/minorCode.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>
// These build on each other in this order.
// clang-format off
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopServer.h>
#include <omniORB4/internal/GIOP_S.h>
// clang-format on

#include <support/orb/OrbProduct.h>

namespace vq::orb {
namespace {

using omni::giopServer;
using omni::giopStrand;
using omni::omniInterceptors;

// Each connection by its two ends, which no other open connection of the process has.
struct Notes {
  std::atomic<bool> taken = false;
  std::mutex mutex;
  std::set<std::string> opened;

  static Notes& Instance() {
    static auto* const notes = new Notes;
    return *notes;
  }
};

template <class Ends>
std::string NameOf(Ends& connection) {
  return std::string(connection.myaddress()) + " " + connection.peeraddress();
}

CORBA::Boolean NoteOpened(omniInterceptors::clientOpenConnection_T::info_T& info) {
  Notes& notes = Notes::Instance();
  if (!notes.taken) return true;
  const std::lock_guard lock(notes.mutex);
  notes.opened.insert(NameOf(info));
  return true;
}

thread_local bool cameOverOwnConnection = false;

CORBA::Boolean NoteConnection(omniInterceptors::serverReceiveRequest_T::info_T& info) {
  cameOverOwnConnection = info.giop_s.strand().isClient();
  return true;
}

// Tells the server that the connection ends in order.
void SendCloseConnection(giopStrand& strand) {
  std::array<unsigned char, 12> message{'G',
                                        'I',
                                        'O',
                                        'P',
                                        strand.version.major,
                                        strand.version.minor,
                                        omni::myByteOrder,
                                        static_cast<unsigned char>(GIOP::CloseConnection)};
  omni_time_t deadline;
  omni_thread::get_time(deadline, omni_time_t(1));
  strand.connection->Send(message.data(), message.size(), deadline);
}

// Shuts the noted connections of one list of omniORB's, whose lock is held. An idle one goes at
// once: a handful that is only marked would keep the next call waiting, as omniORB opens no further
// connection then, and wakes nobody when its scan for idle connections removes them. That scan is
// for those that calls come back on.
void Close(omni::StrandList& list, const std::set<std::string>& names) {
  for (omni::StrandList* link = list.next; link != &list;) {
    auto* const strand = static_cast<giopStrand*>(link);
    link = link->next;
    if (strand->connection == nullptr || !names.contains(NameOf(*strand->connection))) continue;
    SendCloseConnection(*strand);
    strand->connection->Shutdown();
    strand->state(giopStrand::DYING);
    if (strand->idlebeats >= 0 && !strand->isBiDir()) {
      strand->StrandList::remove();
      strand->RopeLink::remove();
      strand->safeDelete(true);
    } else {
      strand->stopIdleCounter();
      strand->startIdleCounter();
    }
  }
}

void CloseOpened(const std::set<std::string>& names) {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  const CORBA::ULong usualBeats = std::exchange(giopStrand::idleOutgoingBeats, 1U);
  Close(giopStrand::active, names);
  Close(giopStrand::active_timedout, names);
  giopStrand::idleOutgoingBeats = usualBeats;
}

}  // namespace

void OmniOrbGuest::Install() {
  omniORB::getInterceptors()->clientOpenConnection.add(NoteOpened);
  omniORB::getInterceptors()->serverReceiveRequest.add(NoteConnection);
}

bool CameOverOwnConnection() {
  return cameOverOwnConnection;
}

OmniOrbGuest::OmniOrbGuest() {
  Notes::Instance().taken = true;
}

OmniOrbGuest::~OmniOrbGuest() {
  Notes& notes = Notes::Instance();
  notes.taken = false;
  std::set<std::string> opened;
  {
    const std::lock_guard lock(notes.mutex);
    opened.swap(notes.opened);
  }
  CloseOpened(opened);
  if (m_server == nullptr) return;
  // A server takes itself out of its place when it goes, whoever is there.
  giopServer*& place = giopServer::singleton();
  giopServer* const host = place;
  m_server->remove();
  place = host;
}

void OmniOrbGuest::Listen(const std::vector<std::string>& endpoints) {
  if (m_server != nullptr) return;
  // omniORB makes a server when it finds the place of its own one empty.
  giopServer*& place = giopServer::singleton();
  giopServer* const host = std::exchange(place, nullptr);
  m_server = giopServer::singleton();
  place = host;

  omni::orbServer::EndpointList addresses;
  for (const std::string& endpoint : endpoints) {
    if (!m_server->instantiate(endpoint.c_str(), false, addresses)) {
      throw CORBA::INITIALIZE(omni::INITIALIZE_TransportError, CORBA::COMPLETED_NO);
    }
  }
  for (CORBA::ULong i = 0; i < addresses.length(); ++i) m_addresses.emplace_back(addresses[i]);
  m_server->start();
}

}  // namespace vq::orb
