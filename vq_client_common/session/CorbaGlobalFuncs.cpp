#include <vq_client_common/session/CorbaGlobalFuncs.h>

#include <string>

#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaCallbackCommand.h>
#include <vq_client_common/session/internal/CorbaServerPackManager.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

template <class T>
int GetCRBServant(const char* name, typename T::_ptr_type& result, SERVER_ID serverId, bool probe) {
  using Cache = CorbaServerPackManager;
  Cache::DiagPdefWrapper(6, "GetCRBServant");
  vq::orb::BeginCall();
  CORBA::Object_var object;
  try {
    Cache* const cache = Cache::Get();
    const CORBA::Object_ptr cached = cache->FindItem(name, serverId);
    if (!CORBA::is_nil(cached)) {
      Cache::DiagPdefWrapper(5, std::string(name) + ": CRB servant is already bound.");
      result = dynamic_cast<typename T::_ptr_type>(cached);
      return CORBA::is_nil(result) ? 0 : 1;
    }
    Cache::DiagPdefWrapper(4, std::string(name) + ": CRB servant is about to be bound.");
    object = ORBCommon<1>::Get()->Bind(ConnectionSettings::Get()->GetServerName(),
                                       GL_ResolveServerID(serverId), name, probe);
    typename T::_var_type bound = T::_narrow(object.in());
    if (CORBA::is_nil(bound.in())) {
      result = T::_nil();
      vq::orb::NoteCause(std::string("the ") + name +
                         " of the server is an object of another type");
      Cache::DiagPdefWrapper(5, std::string("Failed to obtain the CRB Servant: '") + name + "'");
      return 0;
    }
    cache->InsertItem(name, serverId, bound.in());
    result = bound._retn();  // the cache owns it
    Cache::DiagPdefWrapper(4, "GetCRBServant has succeeded");
    return 1;
  } catch (const CORBA::Exception& e) {
    vq::orb::NoteFailedCall(e, object.in());
    Cache::DiagPdefWrapper(1, "CORBA::Exception was caught. " + vq::orb::ExceptionText(e));
    return -3;
  }
}

template VQ_CLIENT_COMMON_API int GetCRBServant<QCSCorbaUsersManager>(
    const char*, QCSCorbaUsersManager::_ptr_type&, SERVER_ID, bool);
template VQ_CLIENT_COMMON_API int GetCRBServant<VQCorbaSystemConfiguration>(
    const char*, VQCorbaSystemConfiguration::_ptr_type&, SERVER_ID, bool);

CorbaCallbackCommand::~CorbaCallbackCommand() = default;

bool CorbaCallbackCommand::CanBeSkippedDuringChangeFilter() {
  return true;
}
