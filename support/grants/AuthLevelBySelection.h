// The grants of one kind of object, such as calendars: the user's own and those of the user's
// groups.
//
// A *grant* is a level of access over the objects that a criteria text selects
// (docs/selection-language.md). The user's own grants decide wherever one of them fits the object,
// and the highest level that fits wins; so a grant of the user's own may lower the level of a
// group. Only where none fits do the groups' grants decide, again the highest. Where none of either
// fits, the level is DEFAULT_ACCESS, which allows only itself.
//
//   QCSCorbaAuthorizationStruct snapshot;   // from the server
//   AuthLevelBySelection calendars;
//   calendars.UserAuthFromCORBA(snapshot.m_CalendarsUserAccess, true);
//   calendars.GroupAuthFromCORBA(snapshot.m_CalendarsGroupAccess, true);
//   QCSObject calendar;
//   calendar.SetAttribute("CALENDAR", "WORKDAYS");
//   if (calendars.IsAuthorized(calendar, UPDATE_ACCESS)) Show("WORKDAYS");
//
// The grants are indexed when they are loaded; a query does not try them one by one.
#ifndef VQ_SUPPORT_GRANTS_AUTHLEVELBYSELECTION_H
#define VQ_SUPPORT_GRANTS_AUTHLEVELBYSELECTION_H

#include <memory>

#include <support/Export.h>
#include <support/orb/Corba.h>
#include <support/selection/QCSObject.h>
#include <vq_idl/AuthorizationC.h>

namespace vq {
class GrantIndex;
}

// Copies share their grants, so that copying takes no time, and do not affect each other.
class VQ_CLIENT_COMMON_API AuthLevelBySelection {
 public:
  AuthLevelBySelection();
  AuthLevelBySelection(const AuthLevelBySelection&);
  AuthLevelBySelection& operator=(const AuthLevelBySelection&);
  virtual ~AuthLevelBySelection();

  // Loads the user's or the groups' grants. With `replace` they replace the former ones, so a
  // second load leaves nothing of the first; without it they are added. A grant whose criteria do
  // not parse fits no object, and a line at level 1 gives the reason. UserAuthFromCORBA returns
  // whether all criteria parsed. On std::bad_alloc the object is unchanged.
  bool UserAuthFromCORBA(const QCSCorbaAuth2LvlSeq& grants, bool replace);
  void GroupAuthFromCORBA(const QCSCorbaAuth2LvlSeq& grants, bool replace);

  // Whether the grants give at least this level over the object. Levels compare as numbers.
  bool IsAuthorized(const QCSObject& object, const QCSAuthLevelEnum& level) const;

  // Whether there is no grant at all, the user's or a group's. One whose criteria do not parse
  // counts as a grant.
  bool IsEmpty() const;

 private:
  std::shared_ptr<const vq::GrantIndex> m_user;   // never null
  std::shared_ptr<const vq::GrantIndex> m_group;  // never null
};

#endif  // VQ_SUPPORT_GRANTS_AUTHLEVELBYSELECTION_H
