// The operations of QCSCorbaAuthorization that the simulator does not offer: each is written to the
// log like any other, can be hit by a fault, and answers NO_IMPLEMENT.
//
// Thread contract: any thread.
#ifndef VQ_SIMULATOR_PARTOFAUTHORIZATION_H
#define VQ_SIMULATOR_PARTOFAUTHORIZATION_H

#include <simulator/Servant.h>
#include <vq_idl/AuthorizationS.h>

namespace vq::sim {

class PartOfAuthorization : public Servant<POA_QCSCorbaAuthorization> {
 protected:
  PartOfAuthorization(World& world, std::string kind)
      : Servant(world, std::move(kind), "Authorization") {}

 private:
  void CRB_Initialize(CORBA::Boolean, const char*) override { NotHere("CRB_Initialize"); }
  void CRB_SetUserName(const char*, const char*) override { NotHere("CRB_SetUserName"); }
  void CRB_SetIsGroup(CORBA::Boolean, const char*) override { NotHere("CRB_SetIsGroup"); }
  void CRB_SetUserFullName(const char*, const char*) override { NotHere("CRB_SetUserFullName"); }
  char* CRB_GetUserPwd(const char*) override { NotHere("CRB_GetUserPwd"); }
  void CRB_SetUserPwd(const char*, const char*) override { NotHere("CRB_SetUserPwd"); }
  void CRB_SetDesc(const char*, const char*) override { NotHere("CRB_SetDesc"); }
  void CRB_AddUserGroup(const char*, const char*) override { NotHere("CRB_AddUserGroup"); }
  void CRB_DelAllUserGroups(const char*) override { NotHere("CRB_DelAllUserGroups"); }
  CORBA::Long CRB_GetPwdExpDays(const char*) override { NotHere("CRB_GetPwdExpDays"); }
  CORBA::Boolean CRB_IsPwdNeverExpires(const char*) override { NotHere("CRB_IsPwdNeverExpires"); }
  CORBA::Boolean CRB_IsPwdExpireOnNextLogon(const char*) override {
    NotHere("CRB_IsPwdExpireOnNextLogon");
  }
  void CRB_SetPwdExpDays(CORBA::Long, const char*) override { NotHere("CRB_SetPwdExpDays"); }
  void CRB_SetPwdImmediatlyExpires(CORBA::Boolean, const char*) override {
    NotHere("CRB_SetPwdImmediatlyExpires");
  }
  CORBA::ULong CRB_GetPwdExpDate(const char*) override { NotHere("CRB_GetPwdExpDate"); }
  void CRB_LockUnlockAccount(CORBA::Boolean, const char*, const char*) override {
    NotHere("CRB_LockUnlockAccount");
  }
  CORBA::ULong CRB_GetAccountLockDate(const char*) override { NotHere("CRB_GetAccountLockDate"); }
  char* CRB_GetAccountLockOriginator(const char*) override {
    NotHere("CRB_GetAccountLockOriginator");
  }
  CORBA::Long CRB_UpdatePasswordAndPwdExpiration(CORBA::Boolean, const char*, CORBA::Boolean,
                                                 CORBA::Long, CORBA::Boolean, CORBA::Boolean,
                                                 const char*) override {
    NotHere("CRB_UpdatePasswordAndPwdExpiration");
  }
  void CRB_SetPrivilegeAuthLevel(PrivilegeTypeEnum, QCSAuthLevelEnum, const char*) override {
    NotHere("CRB_SetPrivilegeAuthLevel");
  }
  void CRB_SetLdapOnlyAuthentication(CORBA::Boolean, const char*) override {
    NotHere("CRB_SetLdapOnlyAuthentication");
  }
  CORBA::Boolean CRB_GetLdapOnlyAuthentication(const char*) override {
    NotHere("CRB_GetLdapOnlyAuthentication");
  }
  void CRB_SetJobsFilterForGroup(UseGroupFilterEnum, const char*) override {
    NotHere("CRB_SetJobsFilterForGroup");
  }
  UseGroupFilterEnum CRB_GetJobsFilterForGroup(const char*) override {
    NotHere("CRB_GetJobsFilterForGroup");
  }
  QCSCorbaAuthSelectionDef_ptr CRB_GetBrowseAccessJobsDef(const char*) override {
    NotHere("CRB_GetBrowseAccessJobsDef");
  }
  CORBA::Boolean CRB_IsJobActionAllowed(QCSJobActions, const char*) override {
    NotHere("CRB_IsJobActionAllowed");
  }
  void CRB_AllowJobAction(QCSJobActions, const char*) override { NotHere("CRB_AllowJobAction"); }
  void CRB_InitJobActions(const char*) override { NotHere("CRB_InitJobActions"); }
  CORBA::Boolean CRB_AddResAccess(QCSResTypeEnum, const QCSCorbaAuth2LvlSeq&,
                                  const char*) override {
    NotHere("CRB_AddResAccess");
  }
  CORBA::Boolean CRB_SetResAccess(QCSResTypeEnum, const QCSCorbaAuth2LvlSeq&,
                                  const char*) override {
    NotHere("CRB_SetResAccess");
  }
  void CRB_ResetResAccess(QCSResTypeEnum, const char*) override { NotHere("CRB_ResetResAccess"); }
  CORBA::Boolean CRB_AddServiceAccess(const QCSCorbaAuth2LvlSeq2&, const char*) override {
    NotHere("CRB_AddServiceAccess");
  }
  CORBA::Boolean CRB_SetServiceAccess(const QCSCorbaAuth2LvlSeq2&, const char*) override {
    NotHere("CRB_SetServiceAccess");
  }
  void CRB_ResetServiceAccess(const char*) override { NotHere("CRB_ResetServiceAccess"); }
  QCSCorbaAuthFolderIncJLSeq* CRB_GetFolderAccess(const char*) override {
    NotHere("CRB_GetFolderAccess");
  }
  CORBA::Boolean CRB_AddFolderAccess(const QCSCorbaAuthFolderIncJLSeq&, const char*) override {
    NotHere("CRB_AddFolderAccess");
  }
  CORBA::Boolean CRB_SetFolderAccess(const QCSCorbaAuthFolderIncJLSeq&, const char*) override {
    NotHere("CRB_SetFolderAccess");
  }
  void CRB_ResetFolderAccess(const char*) override { NotHere("CRB_ResetFolderAccess"); }
  char* CRB_GetFoldersWithJLSD(const char*) override { NotHere("CRB_GetFoldersWithJLSD"); }
  CORBA::Long CRB_RetAllUsersFullNameDesc(CORBA::Boolean, QCSCorbaUserDetSeq_out,
                                          const char*) override {
    NotHere("CRB_RetAllUsersFullNameDesc");
  }
  CORBA::Long CRB_WriteAllDetailesToDB(CORBA::Boolean, const char*,
                                       const QCSCorbaAttrHolder&) override {
    NotHere("CRB_WriteAllDetailesToDB");
  }
  CORBA::Long CRB_ReadUserGroupFromDB(const char*, CORBA::Boolean, const char*) override {
    NotHere("CRB_ReadUserGroupFromDB");
  }
  CORBA::Long CRB_DelUserGroupFromDB(const char*, CORBA::Boolean, const char*,
                                     const QCSCorbaAttrHolder&) override {
    NotHere("CRB_DelUserGroupFromDB");
  }
  CORBA::Long CRB_CopyUserGroupInDB(const char*, const char*, CORBA::Boolean, const char*,
                                    const QCSCorbaAttrHolder&) override {
    NotHere("CRB_CopyUserGroupInDB");
  }
  CORBA::Long CRB_RenameUserGroupInDB(const char*, const char*, CORBA::Boolean, const char*,
                                      const QCSCorbaAttrHolder&) override {
    NotHere("CRB_RenameUserGroupInDB");
  }
  void CRB_SetLdapName(const stringSeq&, const char*) override { NotHere("CRB_SetLdapName"); }
  stringSeq* CRB_GetLdapName(const char*) override { NotHere("CRB_GetLdapName"); }
  void CRB_SetFuture1(const char*, const char*) override { NotHere("CRB_SetFuture1"); }
  char* CRB_GetFuture1(const char*) override { NotHere("CRB_GetFuture1"); }
  void CRB_SetFuture2(const char*, const char*) override { NotHere("CRB_SetFuture2"); }
  char* CRB_GetFuture2(const char*) override { NotHere("CRB_GetFuture2"); }
  void CRB_SetFuture3(const char*, const char*) override { NotHere("CRB_SetFuture3"); }
  char* CRB_GetFuture3(const char*) override { NotHere("CRB_GetFuture3"); }
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_PARTOFAUTHORIZATION_H
