// GetCRBServant, which finds an object of the server.
//
//   #include <vq_idl/UsersManagerC.h>   // declares the type of the object
//
//   QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
//   if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, E_GSR, true) == 1) {
//     users->CRB_ClientKeepAlive(ConnectionSettings::Get()->GetUserID().c_str());
//   }
//
// The cache of the process owns the reference: the caller does not release it, and does not use it
// after GL_LogOut or exit_vqclient_common.
#ifndef VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H
#define VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

class QCSCorbaUsersManager;
class VQCorbaSystemConfiguration;

// Finds the service `name` of the server kind `serverId`: in the cache, or else in the naming
// service under the server name of ConnectionSettings. With `probe`, a server that comes from the
// naming service is called at once to test that it answers. A cached reference is returned even
// when the server name has changed since.
//
// Returns 1 and sets `result`; 0, with `result` nil, when the object has another type; -3, with
// `result` unchanged, on any CORBA exception, which is logged at level 1.
//
// Exists for QCSCorbaUsersManager ("UsersManager") and VQCorbaSystemConfiguration
// ("SystemConfiguration").
//
// Thread safety: two threads must not ask for a service at the same time while it is not cached.
template <class T>
int GetCRBServant(const char* name, typename T::_ptr_type& result, SERVER_ID serverId, bool probe);

#endif  // VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H
