// The grants on services: a list of the user's own and a list of the groups'.
//
// They combine as those of AuthLevelBySelection.h do: the user's own decide wherever one of them
// fits the service, and only where none fits do the groups'. An action is allowed when a grant of
// the deciding list fits and lists the action's number, whatever the grant's level.
//
//   const VQServiceUserAuth services({{"SERVICE LIKE 'PAY*'", UPDATE_ACCESS, {3, 7}}});
//   QCSObject service;
//   service.SetAttribute("SERVICE", "PAYROLL");
//   services.IsActionAllowed(service, 7);   // true
#ifndef VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H
#define VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H

#include <list>
#include <memory>
#include <string>
#include <vector>

#include <support/Export.h>
#include <support/orb/Corba.h>
#include <support/selection/QCSObject.h>
#include <vq_idl/AuthorizationC.h>

// One grant on services.
struct VQServiceAuth {
  std::string Criteria;                     // which services (docs/selection-language.md)
  QCSAuthLevelEnum Level = DEFAULT_ACCESS;  // the access it grants
  std::vector<int> Actions;                 // the numbers of the actions that it allows
};

// Converts a wire list; the former content of `grants` is replaced. For the library itself: it is
// not exported, and programs fill the list by hand.
void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants);

// Copies share their grants, so that copying takes no time, and do not affect each other.
class VQ_CLIENT_COMMON_API VQServiceUserAuth {
 public:
  VQServiceUserAuth();
  // Takes over the two lists. Criteria that do not parse fit no service and are logged at level 1.
  explicit VQServiceUserAuth(std::list<VQServiceAuth> user, std::list<VQServiceAuth> groups = {});
  VQServiceUserAuth(const VQServiceUserAuth&);
  VQServiceUserAuth& operator=(const VQServiceUserAuth&);
  ~VQServiceUserAuth();

  // Both lists become empty.
  void Clear();

  // Add the other object's user list to this one's, or its group list.
  void AddUserAuth(const VQServiceUserAuth& other);
  void AddGroupAuth(const VQServiceUserAuth& other);

  // Whether the grants give at least this level over the service. Levels compare as numbers; where
  // no grant fits, DEFAULT_ACCESS alone is allowed.
  bool IsDefAccessAllowed(const QCSObject& service, QCSAuthLevelEnum level) const;

  // Whether the action of this number is allowed on the service.
  bool IsActionAllowed(const QCSObject& service, int action) const;

  // Whether there is no grant at all, the user's or a group's. One whose criteria do not parse
  // counts as a grant.
  bool IsEmpty() const;

  // The two lists, in the order in which the grants were added. They live until the next change.
  const std::list<VQServiceAuth>& UserAuth() const;
  const std::list<VQServiceAuth>& GroupAuth() const;

 private:
  struct Grants;  // a list with its index; does not change once made

  static void Append(std::shared_ptr<const Grants>& grants,
                     const std::shared_ptr<const Grants>& others);

  std::shared_ptr<const Grants> m_user;   // never null
  std::shared_ptr<const Grants> m_group;  // never null
};

#endif  // VQ_SUPPORT_GRANTS_VQSERVICEUSERAUTH_H
