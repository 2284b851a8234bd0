// The repository of the clients' callback objects.
#ifndef VQ_SIMULATOR_CALLBACKREPOSITORYSERVANT_H
#define VQ_SIMULATOR_CALLBACKREPOSITORYSERVANT_H

#include <string>

#include <simulator/Callbacks.h>
#include <simulator/Servant.h>
#include <vq_idl/CallbackRepositoryS.h>

namespace vq::sim {

class CallbackRepositoryServant : public Servant<POA_CrbCallbackRepository> {
 public:
  CallbackRepositoryServant(World& world, std::string kind, Callbacks& callbacks);

  CORBA::Long CRB_RegisterCallback(const char* userId, CORBA::Object_ptr callback,
                                   CORBA::Boolean isActive) override;
  CORBA::Boolean CRB_UnregisterCallbackById(CORBA::Long callbackId) override;
  CORBA::Boolean CRB_UnregisterCallbacksByUserToken(const char* userToken) override;
  void CRB_SocketHeartBeat(const char* userToken) override;
  CORBA::Object_ptr CRB_GetCallbackById(CORBA::Long callbackId) override;

 private:
  Callbacks& m_callbacks;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CALLBACKREPOSITORYSERVANT_H
