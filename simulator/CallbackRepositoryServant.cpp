#include <simulator/CallbackRepositoryServant.h>

#include <utility>

namespace vq::sim {

CallbackRepositoryServant::CallbackRepositoryServant(World& world, std::string kind,
                                                     Callbacks& callbacks)
    : Servant(world, std::move(kind), "CallbackRepository"), m_callbacks(callbacks) {}

CORBA::Long CallbackRepositoryServant::CRB_RegisterCallback(const char* userId,
                                                            CORBA::Object_ptr callback,
                                                            CORBA::Boolean isActive) {
  return Serve(
      "CRB_RegisterCallback",
      {{"userId", userId},
       {"callback", CORBA::is_nil(callback) ? "nil" : "object"},
       {"isActive", static_cast<bool>(isActive)}},
      [&] { return m_world.sessions.UserOf(userId) ? m_callbacks.Add(userId, callback) : 0; });
}

CORBA::Boolean CallbackRepositoryServant::CRB_UnregisterCallbackById(CORBA::Long callbackId) {
  return Serve("CRB_UnregisterCallbackById", {{"callbackId", callbackId}},
               [&] { return m_callbacks.Remove(callbackId); });
}

CORBA::Boolean CallbackRepositoryServant::CRB_UnregisterCallbacksByUserToken(
    const char* userToken) {
  return Serve("CRB_UnregisterCallbacksByUserToken", {{"userToken", userToken}},
               [&] { return m_callbacks.RemoveOf(userToken); });
}

void CallbackRepositoryServant::CRB_SocketHeartBeat(const char* userToken) {
  Serve("CRB_SocketHeartBeat", {{"userToken", userToken}}, [] {});
}

CORBA::Object_ptr CallbackRepositoryServant::CRB_GetCallbackById(CORBA::Long callbackId) {
  CORBA::Object_var object = Serve("CRB_GetCallbackById", {{"callbackId", callbackId}},
                                   [&] { return CORBA::Object_var(m_callbacks.Find(callbackId)); });
  return object._retn();
}

}  // namespace vq::sim
