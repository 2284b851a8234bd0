#include <support/orb/omniorb/OmniOrbGuest.h>

#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>

#include <support/orb/OrbProduct.h>
#include <support/orb/omniorb/OmniOrbConnection.h>

namespace vq::orb {
namespace {

using omni::omniInterceptors;

thread_local bool cameOverOwnConnection = false;

CORBA::Boolean NoteConnection(omniInterceptors::serverReceiveRequest_T::info_T& info) {
  cameOverOwnConnection = IsOverOwnConnection(info.giop_s);
  return true;
}

}  // namespace

void OmniOrbGuest::Install() {
  omniORB::getInterceptors()->serverReceiveRequest.add(NoteConnection);
}

bool CameOverOwnConnection() {
  return cameOverOwnConnection;
}

OmniOrbGuest::OmniOrbGuest() {
  CheckedConnection::OpenForGuest(true);
}

OmniOrbGuest::~OmniOrbGuest() {
  CheckedConnection::OpenForGuest(false);
  CloseGuestConnections();
}

const std::vector<std::string>& OmniOrbGuest::Listen(const std::string& endpoint) {
  if (!m_server) m_server.emplace(endpoint);
  return m_server->Addresses();
}

}  // namespace vq::orb
