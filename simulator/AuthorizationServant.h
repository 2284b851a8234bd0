// The authorization objects of all users, in one servant: the object id of a reference is the name
// of its user, so that a reference costs nothing to give out and needs no cleaning up.
//
// Thread contract: any thread; the ORB calls it from one thread a connection.
#ifndef VQ_SIMULATOR_AUTHORIZATIONSERVANT_H
#define VQ_SIMULATOR_AUTHORIZATIONSERVANT_H

#include <memory>
#include <string>

#include <simulator/PartOfAuthorization.h>

namespace vq::sim {

class AuthorizationServant : public PartOfAuthorization {
 public:
  // `current` tells which object a call is for.
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
  // The site, and the user that the object of this call stands for.
  struct Subject {
    std::shared_ptr<const Site> site;
    std::string name;
    const User* user;
  };
  // Raises USER_NOT_FOUND when the user id names no session or the user is gone, and
  // USER_NOT_AUTHORIZED when the session's user is another one and no administrator.
  Subject Ask(const char* userId, bool anyUser = false);
  CORBA::Long Queries(Call& call, const stringSeq& names,
                      QCSCorbaUserDefinitionQueries_out definitionQueries,
                      QCSCorbaUserActiveQueriesSeq_out activeQueries, const char* userId);
  // The names in a map of the site.
  template <typename Map>
  static stringSeq Names(const Map& map);

  PortableServer::Current_var m_current;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_AUTHORIZATIONSERVANT_H
