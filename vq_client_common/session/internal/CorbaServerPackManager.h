// The cache of references to server objects, one for each service and server kind.
//
// GetCRBServant (CorbaGlobalFuncs.h) fills it and reads it. A reference to a server that has ended
// stays in the cache, and calls through it fail, until GL_LogOut empties the cache.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_CORBASERVERPACKMANAGER_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_CORBASERVERPACKMANAGER_H

#include <map>
#include <string>
#include <utility>

#include <support/orb/Corba.h>
#include <support/os_toolkit/os_critical_section.h>
#include <vq_client_common/session/ServerId.h>

// Owns one counted reference for each key.
//
// Thread safety: FindItem, Reset and Exchange lock; InsertItem does not, so two threads must not
// look up a missing key at the same time. The lock is never held during a remote call.
class CorbaServerPackManager {
 public:
  using Key = std::pair<std::string, SERVER_ID>;
  using Items = std::map<Key, CORBA::Object_ptr>;

  // The one instance, created by the first call, which must not run on two threads at once.
  static CorbaServerPackManager* Get();

  CorbaServerPackManager() = default;
  ~CorbaServerPackManager() { Reset(); }
  CorbaServerPackManager(const CorbaServerPackManager&) = delete;
  CorbaServerPackManager& operator=(const CorbaServerPackManager&) = delete;

  // The reference under the key, owned by the cache; the nil object when there is none.
  CORBA::Object_ptr FindItem(const char* name, SERVER_ID serverId);

  // Takes ownership of the reference. A reference that the key held before is not released.
  void InsertItem(const char* name, SERVER_ID serverId, CORBA::Object_ptr object);

  // Releases every reference, in key order, and empties the map.
  void Reset();

  // Puts these references in the place of all others, which it returns in `items`. Their owner
  // changes, and callers may still use them.
  void Exchange(Items& items);

  // Logs one line under this class's module, for GetCRBServant.
  static void DiagPdefWrapper(int level, const std::string& text);

  inline static CorbaServerPackManager* pCorbaServerPackManager = nullptr;  // until the first Get

 private:
  Items m_items;
  os_critical_section m_lock{false};
};

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_CORBASERVERPACKMANAGER_H
