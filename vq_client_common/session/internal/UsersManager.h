// Finds the server's users manager, the object for login, keep-alive and logout.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_USERSMANAGER_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_USERSMANAGER_H

#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_idl/UsersManagerC.h>

namespace vq::session {

// GetCRBServant for the users manager. The cache owns `users`, which is nil unless the result is 1.
inline int GetUsersManager(QCSCorbaUsersManager_ptr& users, SERVER_ID serverId, bool probe = true) {
  users = QCSCorbaUsersManager::_nil();
  return GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, serverId, probe);
}

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_USERSMANAGER_H
