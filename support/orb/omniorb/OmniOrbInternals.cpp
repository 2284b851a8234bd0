#include <support/orb/omniorb/OmniOrbInternals.h>

#include <array>
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

namespace vq::orb {
namespace {

using omni::giopServer;
using omni::giopStrand;

std::vector<std::string> Texts(const omni::orbServer::EndpointList& endpoints) {
  std::vector<std::string> texts;
  for (CORBA::ULong i = 0; i < endpoints.length(); ++i) texts.emplace_back(endpoints[i]);
  return texts;
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

// Shuts the named connections of one list of omniORB's, whose lock is held. An idle one goes at
// once: a handful that is only marked would keep the next call waiting, as omniORB opens no further
// connection then, and wakes nobody when its scan for idle connections removes them. That scan is
// for those that calls come back on.
void Close(omni::StrandList& list, const std::set<std::string>& names) {
  for (omni::StrandList* link = list.next; link != &list;) {
    auto* const strand = static_cast<giopStrand*>(link);
    link = link->next;
    if (strand->connection == nullptr || !names.contains(ConnectionName(*strand->connection)))
      continue;
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

// A server takes itself out of its place when it goes, whoever is there. One that was stopped first
// stays in memory where a thread of it does not end in time.
void Remove(giopServer* server) {
  giopServer*& place = giopServer::singleton();
  giopServer* const host = place;
  server->stop();
  server->remove();
  place = host;
}

}  // namespace

void OfferBiDirectional(bool offer) {
  omni::orbParameters::offerBiDirectionalGIOP = offer;
}

std::vector<std::string> OpenEndpoints() {
  return Texts(omni::omniObjAdapter::listMyEndpoints());
}

void CloseEndpoints() {
  omni::omniObjAdapter::shutdown();
}

void CloseConnections(const std::set<std::string>& names) {
  const omni_tracedmutex_lock transport(*omni::omniTransportLock);
  const CORBA::ULong usualBeats = std::exchange(giopStrand::idleOutgoingBeats, 1U);
  Close(giopStrand::active, names);
  Close(giopStrand::active_timedout, names);
  giopStrand::idleOutgoingBeats = usualBeats;
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

ListeningServer::ListeningServer(const std::vector<std::string>& endpoints) {
  // omniORB makes a server when it finds the place of its own one empty.
  giopServer*& place = giopServer::singleton();
  giopServer* const host = std::exchange(place, nullptr);
  m_server = giopServer::singleton();
  place = host;

  omni::orbServer::EndpointList addresses;
  try {
    for (const std::string& endpoint : endpoints) {
      if (!m_server->instantiate(CheckedEndpoint(endpoint).c_str(), false, addresses)) {
        throw CORBA::INITIALIZE(omni::INITIALIZE_TransportError, CORBA::COMPLETED_NO);
      }
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
