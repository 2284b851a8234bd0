#include <simulator/CallbackRepositoryServant.h>

#include <utility>

namespace vq::sim {

CallbackRepositoryServant::CallbackRepositoryServant(World& world, std::string kind,
                                                     Callbacks& callbacks)
    : Servant(world, std::move(kind), "CallbackRepository"), m_callbacks(callbacks) {}

CORBA::Long CallbackRepositoryServant::CRB_RegisterCallback(const char* userId,
                                                            CORBA::Object_ptr callback,
                                                            CORBA::Boolean isActive) {
  Call call = Begin("CRB_RegisterCallback");
  call.Argument("userId", userId)
      .Argument("callback", CORBA::is_nil(callback) ? "nil" : "object")
      .Argument("isActive", static_cast<bool>(isActive));
  return call.Run([&]() -> CORBA::Long {
    if (!m_world.sessions.UserOf(userId)) return 0;
    return m_callbacks.Add(userId, callback);
  });
}

CORBA::Boolean CallbackRepositoryServant::CRB_UnregisterCallbackById(CORBA::Long callbackId) {
  Call call = Begin("CRB_UnregisterCallbackById");
  call.Argument("callbackId", callbackId);
  return call.Run([&]() -> CORBA::Boolean { return m_callbacks.Remove(callbackId); });
}

CORBA::Boolean CallbackRepositoryServant::CRB_UnregisterCallbacksByUserToken(
    const char* userToken) {
  Call call = Begin("CRB_UnregisterCallbacksByUserToken");
  call.Argument("userToken", userToken);
  return call.Run([&]() -> CORBA::Boolean { return m_callbacks.RemoveOf(userToken); });
}

void CallbackRepositoryServant::CRB_SocketHeartBeat(const char* userToken) {
  Call call = Begin("CRB_SocketHeartBeat");
  call.Argument("userToken", userToken);
  call.Run([] {});
}

CORBA::Object_ptr CallbackRepositoryServant::CRB_GetCallbackById(CORBA::Long callbackId) {
  Call call = Begin("CRB_GetCallbackById");
  call.Argument("callbackId", callbackId);
  CORBA::Object_var object =
      call.Run([&] { return CORBA::Object_var(m_callbacks.Find(callbackId)); });
  return object._retn();
}

}  // namespace vq::sim
