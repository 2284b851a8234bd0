// The users manager: sessions, passwords, the version check, and the users' rights.
#ifndef VQ_SIMULATOR_USERSMANAGERSERVANT_H
#define VQ_SIMULATOR_USERSMANAGERSERVANT_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <simulator/Callbacks.h>
#include <simulator/Servant.h>
#include <vq_idl/UsersManagerS.h>

namespace vq::sim {

class UsersManagerServant : public Servant<POA_QCSCorbaUsersManager> {
 public:
  // Returns the authorization object of a user; the caller owns the reference.
  using AuthorizationOf = std::function<QCSCorbaAuthorization_ptr(const std::string& user)>;

  UsersManagerServant(World& world, std::string kind, Callbacks& callbacks,
                      AuthorizationOf authorizationOf);

  CORBA::Long CRB_CheckUserPassword(const char* userName, const char* password,
                                    CORBA::String_out message) override;
  CORBA::Long CRB_UpdateUserPassword(const char* userName, const char* newPassword,
                                     const char* userId) override;
  CORBA::Long CRB_Register(const char* userName, const char* password, const char* hostName,
                           const char* systemUserName, const char* clientName,
                           const char* clientVersion, QCSCorbaLMInfoSeq_out loginMessages,
                           CORBA::ULong timeOut, CORBA::String_out message,
                           CORBA::String_out userId, CORBA::String_out dbUserName) override;
  CORBA::Long CRB_RegisterAndUpdatePassword(
      const char* userName, const char* password, const char* newPassword, const char* hostName,
      const char* systemUserName, const char* clientName, const char* clientVersion,
      QCSCorbaLMInfoSeq_out loginMessages, CORBA::ULong timeOut, CORBA::String_out message,
      CORBA::String_out userId, CORBA::String_out dbUserName) override;
  CORBA::Long CRB_Unregister(const char* userId) override;
  QCSCorbaAuthorization_ptr CRB_AllocUserAuth(const char* userId) override;
  CORBA::Long CRB_ClientKeepAlive(const char* userId) override;
  CORBA::Long CRB_ClientsKeepAlive(const stringSeq& userIds) override;
  CORBA::Long CRB_ResetTimeout(const char* userId, CORBA::ULong timeOut) override;
  CORBA::Boolean CRB_CheckCertificateExpiration(const char* userId,
                                                CORBA::String_out message) override;
  void CRB_GetMyAuthorizationsFromMemory(const char* userId,
                                         QCSCorbaAuthorization_out authorization,
                                         QCSCorbaAuthorizationStruct_out details) override;
  CORBA::Long CRB_AquireChallenge(CORBA::String_out first, CORBA::String_out second) override;
  CORBA::Long CRB_VerifyClientServerVersion(const char* clientVersion,
                                            CORBA::String_out serverVersion) override;
  CORBA::Boolean CRB_TryCallback(CORBA::Long callbackId, CORBA::Long timeOut,
                                 CORBA::String_out message) override;

 private:
  VQ_NOT_OFFERED(CORBA::Long, CRB_CreateOrUpdateUserPref, const char*, const char*,
                 const stringSeq&, const stringSeq&)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetUserPref, const char*, const char*, stringSeq_out,
                 stringSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_DeleteUserPref, const char*, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_ListUserPrefs, const char*, stringSeq_out, stringSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_SetItemInCategory, const char*, const char*, const char*,
                 const char*, const char*, CORBA::Boolean, CORBA::Long)
  VQ_NOT_OFFERED(CORBA::Long, CRB_DeleteItemInCategory, const char*, const char*, const char*,
                 const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_PinItemInCategory, const char*, const char*, const char*,
                 const char*, CORBA::Boolean)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetItemsList, const char*, const char*, const char*,
                 ItemInCategorySeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_RegisterServer, const char*, const char*, const char*,
                 const char*, const char*, CORBA::ULong, CORBA::String_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_LoadAuthorizations, const char*, QCSCorbaAuthorization_out,
                 QCSCorbaAuthorizationStruct_out, const char*)
  VQ_NOT_OFFERED(void, CRB_GetMyAuthorizationsFromMemoryEx, const char*, QCSCorbaAuthorization_out,
                 QCSCorbaAuthorizationStructEx_out)
  VQ_NOT_OFFERED(void, CRB_GetMyAuthorizationsFromMemoryEx2, const char*, QCSCorbaAuthorization_out,
                 QCSCorbaAuthorizationStructEx2_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_LoadAuthorizationsEx2, const char*, QCSCorbaAuthorization_out,
                 QCSCorbaAuthorizationStructEx2_out, const char*)
  VQ_NOT_OFFERED(void, CRB_GetMyAuthorizationsFromMemoryA, const char*,
                 QCSCorbaAuthorizationStructA_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_LoadAuthorizationsEx, const char*, QCSCorbaAuthorization_out,
                 QCSCorbaAuthorizationStructEx_out, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_LoadAuthorizationsExA, const char*,
                 QCSCorbaAuthorizationStructA_out, const char*)
  VQ_NOT_OFFERED(QCSAuthLevelEnum, CRB_GetActionAuthLevel, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_AquireRSAChallenge, const char*, CrbOctetSeq_out)
  VQ_NOT_OFFERED(CORBA::Long, CRB_VerifyClientServerVersion_Ext, const char*, const stringSeq&,
                 const char*, CORBA::String_out, stringSeq_out)
  VQ_NOT_OFFERED(void, CRB_UpdateClientPlayerControl, const char*, CORBA::Long)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetClientPlayerControl, const char*, const char*)

  // A password's form for the log, compared with the current password.
  std::string_view Form(const char* userName, const char* sent);

  // The answer to a registration.
  struct Reply {
    std::string message, userId, dbUserName;
    std::vector<LoginMessage> loginMessages;
  };
  // `newPassword` is null for a registration that changes none.
  CORBA::Long Register(Call& call, const char* userName, const char* password,
                       const char* newPassword, CORBA::ULong timeOut, Reply& reply);
  // Opens a session for a user.
  CORBA::Long OpenSession(const Site& site, const std::string& name, CORBA::ULong timeOut,
                          Reply& reply);

  static void Put(const Reply& reply, QCSCorbaLMInfoSeq_out loginMessages,
                  CORBA::String_out message, CORBA::String_out userId,
                  CORBA::String_out dbUserName);

  Callbacks& m_callbacks;
  AuthorizationOf m_authorizationOf;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_USERSMANAGERSERVANT_H
