// The users manager: sessions, passwords, the version check, and what a user may do.
//
// Thread contract: any thread; the ORB calls it from one thread a connection.
#ifndef VQ_SIMULATOR_USERSMANAGERSERVANT_H
#define VQ_SIMULATOR_USERSMANAGERSERVANT_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <simulator/Callbacks.h>
#include <simulator/PartOfUsersManager.h>

namespace vq::sim {

class UsersManagerServant : public PartOfUsersManager {
 public:
  // Gives out the authorization object of a user; the caller owns the reference.
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
  // A password's form for the log, judged by the password that is right at present.
  std::string_view Form(const char* userName, const char* shown);

  // What a registration answers.
  struct Reply {
    std::string message, userId, dbUserName;
    std::vector<LoginMessage> loginMessages;
  };
  // `newPassword` is null for a registration that changes none.
  CORBA::Long Register(Call& call, const char* userName, const char* password,
                       const char* newPassword, CORBA::ULong timeOut, Reply& reply);
  // A session for a user who may have one.
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
