// The operations of QCSCorbaUsersManager that the simulator does not offer: each is written to the
// log like any other, can be hit by a fault, and answers NO_IMPLEMENT.
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_PARTOFUSERSMANAGER_H
#define VQ_SIMULATOR_PARTOFUSERSMANAGER_H

#include <simulator/Servant.h>
#include <vq_idl/UsersManagerS.h>

namespace vq::sim {

class PartOfUsersManager : public Servant<POA_QCSCorbaUsersManager> {
 protected:
  PartOfUsersManager(World& world, std::string kind)
      : Servant(world, std::move(kind), "UsersManager") {}

 private:
  CORBA::Long CRB_CreateOrUpdateUserPref(const char*, const char*, const stringSeq&,
                                         const stringSeq&) override {
    NotHere("CRB_CreateOrUpdateUserPref");
  }
  CORBA::Long CRB_GetUserPref(const char*, const char*, stringSeq_out, stringSeq_out) override {
    NotHere("CRB_GetUserPref");
  }
  CORBA::Long CRB_DeleteUserPref(const char*, const char*) override {
    NotHere("CRB_DeleteUserPref");
  }
  CORBA::Long CRB_ListUserPrefs(const char*, stringSeq_out, stringSeq_out) override {
    NotHere("CRB_ListUserPrefs");
  }
  CORBA::Long CRB_SetItemInCategory(const char*, const char*, const char*, const char*, const char*,
                                    CORBA::Boolean, CORBA::Long) override {
    NotHere("CRB_SetItemInCategory");
  }
  CORBA::Long CRB_DeleteItemInCategory(const char*, const char*, const char*,
                                       const char*) override {
    NotHere("CRB_DeleteItemInCategory");
  }
  CORBA::Long CRB_PinItemInCategory(const char*, const char*, const char*, const char*,
                                    CORBA::Boolean) override {
    NotHere("CRB_PinItemInCategory");
  }
  CORBA::Long CRB_GetItemsList(const char*, const char*, const char*,
                               ItemInCategorySeq_out) override {
    NotHere("CRB_GetItemsList");
  }
  CORBA::Long CRB_RegisterServer(const char*, const char*, const char*, const char*, const char*,
                                 CORBA::ULong, CORBA::String_out) override {
    NotHere("CRB_RegisterServer");
  }
  CORBA::Long CRB_LoadAuthorizations(const char*, QCSCorbaAuthorization_out,
                                     QCSCorbaAuthorizationStruct_out, const char*) override {
    NotHere("CRB_LoadAuthorizations");
  }
  void CRB_GetMyAuthorizationsFromMemoryEx(const char*, QCSCorbaAuthorization_out,
                                           QCSCorbaAuthorizationStructEx_out) override {
    NotHere("CRB_GetMyAuthorizationsFromMemoryEx");
  }
  void CRB_GetMyAuthorizationsFromMemoryEx2(const char*, QCSCorbaAuthorization_out,
                                            QCSCorbaAuthorizationStructEx2_out) override {
    NotHere("CRB_GetMyAuthorizationsFromMemoryEx2");
  }
  CORBA::Long CRB_LoadAuthorizationsEx2(const char*, QCSCorbaAuthorization_out,
                                        QCSCorbaAuthorizationStructEx2_out, const char*) override {
    NotHere("CRB_LoadAuthorizationsEx2");
  }
  void CRB_GetMyAuthorizationsFromMemoryA(const char*, QCSCorbaAuthorizationStructA_out) override {
    NotHere("CRB_GetMyAuthorizationsFromMemoryA");
  }
  CORBA::Long CRB_LoadAuthorizationsEx(const char*, QCSCorbaAuthorization_out,
                                       QCSCorbaAuthorizationStructEx_out, const char*) override {
    NotHere("CRB_LoadAuthorizationsEx");
  }
  CORBA::Long CRB_LoadAuthorizationsExA(const char*, QCSCorbaAuthorizationStructA_out,
                                        const char*) override {
    NotHere("CRB_LoadAuthorizationsExA");
  }
  QCSAuthLevelEnum CRB_GetActionAuthLevel(const char*) override {
    NotHere("CRB_GetActionAuthLevel");
  }
  CORBA::Long CRB_AquireRSAChallenge(const char*, CrbOctetSeq_out) override {
    NotHere("CRB_AquireRSAChallenge");
  }
  CORBA::Long CRB_VerifyClientServerVersion_Ext(const char*, const stringSeq&, const char*,
                                                CORBA::String_out, stringSeq_out) override {
    NotHere("CRB_VerifyClientServerVersion_Ext");
  }
  void CRB_UpdateClientPlayerControl(const char*, CORBA::Long) override {
    NotHere("CRB_UpdateClientPlayerControl");
  }
  CORBA::Long CRB_GetClientPlayerControl(const char*, const char*) override {
    NotHere("CRB_GetClientPlayerControl");
  }
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_PARTOFUSERSMANAGER_H
