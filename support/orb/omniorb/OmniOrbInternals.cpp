#include <support/orb/omniorb/OmniOrbInternals.h>

#include <array>
#include <atomic>
#include <utility>

#include <omniORB4/callDescriptor.h>
#include <omniORB4/minorCode.h>
#include <omniORB4/omniORB.h>
// These build on each other in this order.
// clang-format off
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopServer.h>
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/GIOP_C.h>
#include <omniORB4/internal/GIOP_S.h>
#include <omniORB4/internal/objectAdapter.h>
#include <omniORB4/internal/orbParameters.h>
// clang-format on

#include <support/orb/omniorb/OmniOrbConnection.h>
#include <support/orb/omniorb/OmniOrbEndpoint.h>

namespace vq::orb {
namespace {

using omni::giopServer;
using omni::giopStrand;

std::vector<std::string> Texts(const omni::orbServer::EndpointList& endpoints) {
  std::vector<std::string> texts;
  for (CORBA::ULong i = 0; i < endpoints.length(); ++i) texts.emplace_back(endpoints[i]);
  return texts;
}

// Announces the orderly end of the connection to the server.
void SendCloseConnection(giopStrand& strand) {
  constexpr CORBA::Octet kKind = GIOP::CloseConnection;
  const auto [major, minor] = strand.version;
  std::array<CORBA::Octet, 12> message{'G', 'I', 'O', 'P', major, minor, omni::myByteOrder, kKind};
  strand.connection->Send(message.data(), message.size(), omni_time_t());
}

// Closes the connections of guests in one of omniORB's lists, whose lock is held. An idle one is
// deleted at once: omniORB counts marked connections against its limit, so some of them would make
// the next call wait, and the scan that deletes them wakes no waiting call. Only connections that
// take calls are left to that scan.
void CloseGuests(omni::StrandList& list) {
  for (omni::StrandList* link = list.next; link != &list;) {
    auto* const strand = static_cast<giopStrand*>(link);
    link = link->next;
    const auto* const connection = dynamic_cast<CheckedConnection*>(strand->connection);
    const bool isDying = strand->state() == giopStrand::DYING;
    if (connection == nullptr || !connection->IsGuests() || isDying) continue;
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

// A server clears the place of omniORB's own server when it ends. One that is stopped first stays
// in memory if one of its threads does not end in time.
void Remove(giopServer* server) {
  giopServer*& place = giopServer::singleton();
  giopServer* const host = place;
  server->stop();
  server->remove();
  place = host;
}

// False while omniORB has not noticed the end of one.
bool TryToCloseBiDirectional() {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  bool isNoticed = true;
  for (auto* link = giopStrand::active.next; link != &giopStrand::active; link = link->next) {
    auto& strand = *static_cast<giopStrand*>(link);
    if (!strand.isBiDir() || strand.connection == nullptr) continue;
    if (strand.state() != giopStrand::DYING) SendCloseConnection(strand);
    strand.state(giopStrand::DYING);
    strand.connection->Shutdown();
    strand.rdcond.broadcast();
    if (CheckedConnection::Of(strand).IsWatched()) isNoticed = false;
  }
  return isNoticed;
}

// In seconds; returns the one before. omniORB's threads may read it at any time.
unsigned int SetScanPeriod(unsigned int period) {
  return std::atomic_ref(omni::orbParameters::scanGranularity).exchange(period);
}

}  // namespace

void OfferBiDirectional(bool offer) {
  omni::orbParameters::offerBiDirectionalGIOP = offer;
}

std::vector<std::string> OpenEndpoints() {
  return Texts(omni::omniObjAdapter::listMyEndpoints());
}

void OpenOnly(const std::string& endpoint) {
  auto& endpoints = omni::omniObjAdapter::options.endpoints;
  for (auto known = endpoints.begin(); known != endpoints.end();) {
    if (endpoint == (*known)->uri.in()) {
      ++known;
    } else {
      delete *known;
      endpoints.erase(known);
    }
  }
}

void CloseEndpoints() {
  omni::omniObjAdapter::shutdown();
}

LongerEnd::LongerEnd() : m_usual(SetScanPeriod(10)) {}

LongerEnd::~LongerEnd() {
  SetScanPeriod(m_usual);
}

void CloseGuestConnections() {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  const CORBA::ULong usualBeats = std::exchange(giopStrand::idleOutgoingBeats, 1U);
  CloseGuests(giopStrand::active);
  CloseGuests(giopStrand::active_timedout);
  giopStrand::idleOutgoingBeats = usualBeats;
}

void CloseBiDirectional() {
  for (int i = 0; !TryToCloseBiDirectional() && i < 1000; ++i) omni_thread::sleep(0, 1'000'000);
}

CallTarget TargetOf(omni::GIOP_C& call) {
  const giopStrand& strand = call.strand();
  const char* const peer =
      strand.connection != nullptr ? strand.connection->peeraddress() : nullptr;
  return {strand.address != nullptr ? strand.address->address() : peer, peer, call.operation(),
          call.calldescriptor()->objref()};
}

bool IsOverOwnConnection(omni::GIOP_S& request) {
  return request.strand().isClient();
}

ListeningServer::ListeningServer(const std::string& endpoint) {
  // omniORB creates a server when the place of its own one is empty.
  giopServer*& place = giopServer::singleton();
  giopServer* const host = std::exchange(place, nullptr);
  m_server = giopServer::singleton();
  place = host;

  omni::orbServer::EndpointList addresses;
  try {
    if (!m_server->instantiate(CheckedEndpoint(endpoint).c_str(), false, addresses)) {
      throw CORBA::INITIALIZE(omni::INITIALIZE_TransportError, CORBA::COMPLETED_NO);
    }
  } catch (const CORBA::Exception&) {
    Remove(m_server);
    throw;
  }
  m_addresses = Texts(addresses);
  m_server->start();
}

ListeningServer::~ListeningServer() {
  Remove(m_server);
}

}  // namespace vq::orb
