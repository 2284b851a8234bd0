// The authorization objects of all users, in one servant: the object id of a reference is the name
// of its user, so that references need no bookkeeping.
#ifndef VQ_SIMULATOR_AUTHORIZATIONSERVANT_H
#define VQ_SIMULATOR_AUTHORIZATIONSERVANT_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <simulator/Servant.h>
#include <vq_idl/AuthorizationS.h>

namespace vq::sim {

class AuthorizationServant : public Servant<POA_QCSCorbaAuthorization> {
 public:
  // `current` has the object of a call.
  AuthorizationServant(World& world, std::string kind, PortableServer::Current_ptr current);

  char* CRB_GetUserName(const char* userId) override;
  CORBA::Boolean CRB_IsGroup(const char* userId) override;
  char* CRB_GetUserFullName(const char* userId) override;
  char* CRB_GetDesc(const char* userId) override;
  stringSeq* CRB_GetUserGroups(const char* userId) override;
  CORBA::Boolean CRB_BelongsToGroup(const char* group, const char* userId) override;
  CORBA::Boolean CRB_IsAccountLocked(const char* userId) override;
  QCSAuthLevelEnum CRB_GetPrivilegeAuthLevel(PrivilegeTypeEnum privilege,
                                             const char* userId) override;
  QCSCorbaAuth2LvlSeq* CRB_GetResAccess(QCSResTypeEnum kind, const char* userId) override;
  QCSCorbaAuth2LvlSeq2* CRB_GetServiceAccess(const char* userId) override;
  CORBA::Boolean CRB_IsJobLevelAuthExist(const char* userId) override;
  CORBA::Long CRB_RetAllGroups(stringSeq_out groups, const char* userId) override;
  CORBA::Long CRB_RetAllUsers(stringSeq_out users, const char* userId) override;
  CORBA::Long CRB_RetGroupUsers(const char* group, stringSeq_out users,
                                const char* userId) override;
  CORBA::Long CRB_GetUserAuthQueries(const char* text, const stringSeq& names,
                                     QCSCorbaUserDefinitionQueries_out definitionQueries,
                                     QCSCorbaUserActiveQueriesSeq_out activeQueries,
                                     const char* userId) override;
  CORBA::Long CRB_GetUserAuthQueriesEx(const char* text, const stringSeq& names,
                                       CORBA::Boolean flag1, CORBA::Boolean flag2,
                                       QCSCorbaUserDefinitionQueries_out definitionQueries,
                                       QCSCorbaUserActiveQueriesSeq_out activeQueries,
                                       const char* userId) override;

 private:
  VQ_NOT_OFFERED(void, CRB_Initialize, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(void, CRB_SetUserName, const char*, const char*)
  VQ_NOT_OFFERED(void, CRB_SetIsGroup, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(void, CRB_SetUserFullName, const char*, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetUserPwd, const char*)
  VQ_NOT_OFFERED(void, CRB_SetUserPwd, const char*, const char*)
  VQ_NOT_OFFERED(void, CRB_SetDesc, const char*, const char*)
  VQ_NOT_OFFERED(void, CRB_AddUserGroup, const char*, const char*)
  VQ_NOT_OFFERED(void, CRB_DelAllUserGroups, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_GetPwdExpDays, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_IsPwdNeverExpires, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_IsPwdExpireOnNextLogon, const char*)
  VQ_NOT_OFFERED(void, CRB_SetPwdExpDays, CORBA::Long, const char*)
  VQ_NOT_OFFERED(void, CRB_SetPwdImmediatlyExpires, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(CORBA::ULong, CRB_GetPwdExpDate, const char*)
  VQ_NOT_OFFERED(void, CRB_LockUnlockAccount, CORBA::Boolean, const char*, const char*)
  VQ_NOT_OFFERED(CORBA::ULong, CRB_GetAccountLockDate, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetAccountLockOriginator, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_UpdatePasswordAndPwdExpiration, CORBA::Boolean, const char*,
                 CORBA::Boolean, CORBA::Long, CORBA::Boolean, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(void, CRB_SetPrivilegeAuthLevel, PrivilegeTypeEnum, QCSAuthLevelEnum, const char*)
  VQ_NOT_OFFERED(void, CRB_SetLdapOnlyAuthentication, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_GetLdapOnlyAuthentication, const char*)
  VQ_NOT_OFFERED(void, CRB_SetJobsFilterForGroup, UseGroupFilterEnum, const char*)
  VQ_NOT_OFFERED(UseGroupFilterEnum, CRB_GetJobsFilterForGroup, const char*)
  VQ_NOT_OFFERED(QCSCorbaAuthSelectionDef_ptr, CRB_GetBrowseAccessJobsDef, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_IsJobActionAllowed, QCSJobActions, const char*)
  VQ_NOT_OFFERED(void, CRB_AllowJobAction, QCSJobActions, const char*)
  VQ_NOT_OFFERED(void, CRB_InitJobActions, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_AddResAccess, QCSResTypeEnum, const QCSCorbaAuth2LvlSeq&,
                 const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_SetResAccess, QCSResTypeEnum, const QCSCorbaAuth2LvlSeq&,
                 const char*)
  VQ_NOT_OFFERED(void, CRB_ResetResAccess, QCSResTypeEnum, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_AddServiceAccess, const QCSCorbaAuth2LvlSeq2&, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_SetServiceAccess, const QCSCorbaAuth2LvlSeq2&, const char*)
  VQ_NOT_OFFERED(void, CRB_ResetServiceAccess, const char*)
  VQ_NOT_OFFERED(QCSCorbaAuthFolderIncJLSeq*, CRB_GetFolderAccess, const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_AddFolderAccess, const QCSCorbaAuthFolderIncJLSeq&,
                 const char*)
  VQ_NOT_OFFERED(CORBA::Boolean, CRB_SetFolderAccess, const QCSCorbaAuthFolderIncJLSeq&,
                 const char*)
  VQ_NOT_OFFERED(void, CRB_ResetFolderAccess, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetFoldersWithJLSD, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_RetAllUsersFullNameDesc, CORBA::Boolean, QCSCorbaUserDetSeq_out,
                 const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_WriteAllDetailesToDB, CORBA::Boolean, const char*,
                 const QCSCorbaAttrHolder&)
  VQ_NOT_OFFERED(CORBA::Long, CRB_ReadUserGroupFromDB, const char*, CORBA::Boolean, const char*)
  VQ_NOT_OFFERED(CORBA::Long, CRB_DelUserGroupFromDB, const char*, CORBA::Boolean, const char*,
                 const QCSCorbaAttrHolder&)
  VQ_NOT_OFFERED(CORBA::Long, CRB_CopyUserGroupInDB, const char*, const char*, CORBA::Boolean,
                 const char*, const QCSCorbaAttrHolder&)
  VQ_NOT_OFFERED(CORBA::Long, CRB_RenameUserGroupInDB, const char*, const char*, CORBA::Boolean,
                 const char*, const QCSCorbaAttrHolder&)
  VQ_NOT_OFFERED(void, CRB_SetLdapName, const stringSeq&, const char*)
  VQ_NOT_OFFERED(stringSeq*, CRB_GetLdapName, const char*)
  VQ_NOT_OFFERED(void, CRB_SetFuture1, const char*, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetFuture1, const char*)
  VQ_NOT_OFFERED(void, CRB_SetFuture2, const char*, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetFuture2, const char*)
  VQ_NOT_OFFERED(void, CRB_SetFuture3, const char*, const char*)
  VQ_NOT_OFFERED(char*, CRB_GetFuture3, const char*)

  // The site, and the user of the object of this call.
  struct Subject {
    std::shared_ptr<const Site> site;
    std::string name;
    const User* user;
  };
  // Raises USER_NOT_FOUND when the user id names no session or the user is gone, and
  // USER_NOT_AUTHORIZED when the session's user is another one and no administrator.
  Subject Ask(const char* userId, bool anyUser = false);
  // Serves an operation that returns a list of names.
  CORBA::Long RetNames(const char* operation, Call::Arguments arguments, stringSeq_out out,
                       const char* userId,
                       const std::function<void(const Subject&, std::vector<std::string>&)>& list);
  CORBA::Long Queries(const char* operation, Call::Arguments arguments, const stringSeq& names,
                      QCSCorbaUserDefinitionQueries_out definitionQueries,
                      QCSCorbaUserActiveQueriesSeq_out activeQueries, const char* userId);

  PortableServer::Current_var m_current;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_AUTHORIZATIONSERVANT_H
