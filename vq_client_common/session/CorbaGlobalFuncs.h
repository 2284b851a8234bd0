// The one way to a server object.
//
//   #include <vq_idl/UsersManagerC.h>   // the type that is asked for
//
//   QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
//   if (GetCRBServant<QCSCorbaUsersManager>("UsersManager", users, E_GSR, true) == 1) {
//     users->CRB_ClientKeepAlive(ConnectionSettings::Get()->GetUserID().c_str());
//   }
//
// The reference is borrowed from the process's cache: the caller neither releases it nor keeps it
// beyond GL_LogOut or exit_vqclient_common.
#ifndef VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H
#define VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H

#include <support/Export.h>
#include <vq_client_common/session/ServerId.h>

class QCSCorbaUsersManager;
class VQCorbaSystemConfiguration;

// Finds the service `name` of the server kind `serverId`, in the cache or else through the naming
// service under the server name of ConnectionSettings. With `probe` a server that is bound anew is
// asked at once whether it answers. Returns 1 and sets `result`; 0 when the object is of another
// type; -3 on any CORBA exception, which is logged at level 1. `result` is then as it was (0: nil).
// A cached reference is given out whatever the server name is now.
//
// Exists for QCSCorbaUsersManager ("UsersManager") and VQCorbaSystemConfiguration
// ("SystemConfiguration"). Thread contract: as CorbaServerPackManager.
template <class T>
int GetCRBServant(const char* name, typename T::_ptr_type& result, SERVER_ID serverId, bool probe);

#endif  // VQ_CLIENT_COMMON_SESSION_CORBAGLOBALFUNCS_H
