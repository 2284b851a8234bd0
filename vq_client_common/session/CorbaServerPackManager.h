// The references to server objects that the process holds, one for each service and server kind, so
// that the naming service is asked once a session.
//
// GetCRBServant (CorbaGlobalFuncs.h) is the way to a reference; this class is where it keeps them.
// A reference whose server has gone away stays here and fails on use, until GL_LogOut empties the
// cache.
#ifndef VQ_CLIENT_COMMON_SESSION_CORBASERVERPACKMANAGER_H
#define VQ_CLIENT_COMMON_SESSION_CORBASERVERPACKMANAGER_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <support/orb/Corba.h>
#include <support/os_toolkit/os_critical_section.h>
#include <vq_client_common/session/ServerId.h>

// Thread contract: FindItem and Reset lock. InsertItem does not lock: two threads that miss the
// same key at the same moment both bind, so the first use of a key belongs to one thread. The lock
// is never held across a remote call.
class CorbaServerPackManager {
 public:
  // The one instance; made on first use, which belongs to one thread.
  static CorbaServerPackManager* Get();

  CorbaServerPackManager();
  ~CorbaServerPackManager();  // runs Reset
  CorbaServerPackManager(const CorbaServerPackManager&) = delete;
  CorbaServerPackManager& operator=(const CorbaServerPackManager&) = delete;

  // The reference under the key, borrowed; the nil object when there is none.
  CORBA::Object_ptr FindItem(const char* name, SERVER_ID serverId);

  // Takes over the caller's reference. What the key held before is overwritten, not released.
  void InsertItem(const char* name, SERVER_ID serverId, CORBA::Object_ptr object);

  // Releases every reference, in key order, and empties the map.
  void Reset();

  // Empties the map and hands its references over, for those who still borrow them.
  std::vector<CORBA::Object_var> TakeAll();

  // One line in this module of the log, for code that is compiled into other modules.
  static void DiagPdefWrapper(int level, const std::string& text);
  static bool IsDiagActive(int level);

  static CorbaServerPackManager* pCorbaServerPackManager;  // null until the first Get

 private:
  using Key = std::pair<std::string, SERVER_ID>;
  std::map<Key, CORBA::Object_ptr> m_items;
  os_critical_section m_lock;
};

#endif  // VQ_CLIENT_COMMON_SESSION_CORBASERVERPACKMANAGER_H
