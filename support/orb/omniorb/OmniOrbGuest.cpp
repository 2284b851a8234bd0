#include <support/orb/omniorb/OmniOrbGuest.h>

#include <atomic>
#include <mutex>
#include <set>

#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>

#include <support/orb/OrbProduct.h>

namespace vq::orb {
namespace {

using omni::omniInterceptors;

// The names of the connections that were opened while a guest existed.
struct Notes {
  std::atomic<bool> taken = false;
  std::mutex mutex;
  std::set<std::string> opened;

  static Notes& Instance() {
    static auto* const notes = new Notes;
    return *notes;
  }
};

CORBA::Boolean NoteOpened(omniInterceptors::clientOpenConnection_T::info_T& info) {
  Notes& notes = Notes::Instance();
  if (!notes.taken) return true;
  const std::lock_guard lock(notes.mutex);
  notes.opened.insert(ConnectionName(info));
  return true;
}

thread_local bool cameOverOwnConnection = false;

CORBA::Boolean NoteConnection(omniInterceptors::serverReceiveRequest_T::info_T& info) {
  cameOverOwnConnection = IsOverOwnConnection(info.giop_s);
  return true;
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
  CloseConnections(opened);
}

const std::vector<std::string>& OmniOrbGuest::Listen(const std::string& endpoint) {
  if (!m_server) m_server.emplace(endpoint);
  return m_server->Addresses();
}

}  // namespace vq::orb
