// The grants on services: a list of the user's own and a list of the groups'.
//
// They combine as those of AuthLevelBySelection.h do: the user's own decide wherever one of them
// fits the service, and only where none fits do the groups'. An action is allowed when a grant of
// the deciding list fits and lists the action's number, whatever the grant's level.
//
//   VQServiceUserAuth own(grantsOfTheUser);
//   VQServiceUserAuth services;
//   services.AddUserAuth(own);
//   if (services.IsActionAllowed(service, 7)) ...
#ifndef VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H
#define VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H

#include <list>
#include <memory>

#include <support/Export.h>
#include <support/grants/VQServiceAuth.h>
#include <support/selection/QCSObject.h>

// Thread contract: several threads may ask one holder, as long as nobody changes it meanwhile.
// Copies share their grants, so that copying takes no time, and do not affect each other.
class VQ_SUPPORT_API VQServiceUserAuth {
 public:
  VQServiceUserAuth();
  // Takes over the two lists. Criteria that do not parse grant nothing and are logged at level 1.
  explicit VQServiceUserAuth(std::list<VQServiceAuth> user, std::list<VQServiceAuth> groups = {});
  VQServiceUserAuth(const VQServiceUserAuth&);
  VQServiceUserAuth& operator=(const VQServiceUserAuth&);
  ~VQServiceUserAuth();

  // Both lists become empty.
  void Clear();

  // Add the other object's user list to this one's, or its group list. Criteria that do not parse
  // grant nothing, and a line at level 1 said so when the other object was made.
  void AddUserAuth(const VQServiceUserAuth& other);
  void AddGroupAuth(const VQServiceUserAuth& other);

  // Whether the grants give at least this level over the service. Levels compare as numbers; where
  // no grant fits, DEFAULT_ACCESS alone is allowed.
  bool IsDefAccessAllowed(const QCSObject& service, QCSAuthLevelEnum level) const;

  // Whether the action of this number is allowed on the service.
  bool IsActionAllowed(const QCSObject& service, int action) const;

  // Whether there is no grant at all, the user's or a group's. One that does not parse is none.
  bool IsEmpty() const;

  // The two lists, in the order in which the grants were added. They live until the next change.
  const std::list<VQServiceAuth>& UserAuth() const;
  const std::list<VQServiceAuth>& GroupAuth() const;

 private:
  class Grants;  // a list with its index; does not change once made

  std::shared_ptr<const Grants> m_user;   // null: none
  std::shared_ptr<const Grants> m_group;  // null: none
};

#endif  // VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H
