// The client's copy of what the logged-in user may do. A login fills it; a question makes no remote
// call.
//
// Terms. A *privilege* is a general right, such as to see alerts; it has one level. A *kind* is a
// kind of object, such as calendars. A *grant* gives a level of access to the objects of a kind
// that its *criteria* select; the user has own grants and grants of the user's groups. The criteria
// name *attributes* of an object: a program describes the object by those that the site's criteria
// use, since an attribute that is missing fits no criteria. docs/selection-language.md has a table
// of the usual names.
//
//   const UserAuthorizations* user = UserAuthorizations::Get();
//   if (user->IsAlertsAccessAllowed(BROWSE_ACCESS)) Show("alerts");   // a privilege
//   if (user->IsCalendarsAccessAllowed()) Show("calendars");          // any grant for calendars
//   QCSObject calendar;
//   calendar.SetAttribute("CALENDAR", "WORKDAYS");
//   if (user->IsCalendarAccessAllowed(calendar, UPDATE_ACCESS)) Show("WORKDAYS");   // one object
#ifndef VQ_CLIENT_COMMON_AUTHORIZATIONS_USERAUTHORIZATIONS_H
#define VQ_CLIENT_COMMON_AUTHORIZATIONS_USERAUTHORIZATIONS_H

#include <list>
#include <string>

#include <support/Export.h>
#include <support/grants/AuthLevelBySelection.h>
#include <support/grants/VQServiceUserAuth.h>
#include <support/orb/Corba.h>
#include <support/selection/QCSObject.h>
#include <vq_idl/AuthorizationC.h>

// The privileges and grants of one user.
//
// Thread safety: no lock. Any number of threads may ask at a time, but not during a load or a
// reset.
class VQ_CLIENT_COMMON_API UserAuthorizations {
 public:
  // The instance of the process's session, which owns it; never null.
  static UserAuthorizations* Get();

  // No grants, every flag false, every level DEFAULT_ACCESS.
  UserAuthorizations();
  // A copy has its own reference to the server's authorization object.
  UserAuthorizations(const UserAuthorizations& other);
  UserAuthorizations& operator=(const UserAuthorizations& other);
  virtual ~UserAuthorizations();

  // Loads what the user of this session may do from the server. `userId`: the session's user ID.
  // Returns 1; 0 when the server cannot be found or does not know the user ID; 43 when the user is
  // not authorized; 23 on a CORBA system exception. Each failure is logged at level 1; what was
  // copied before it stays. Other CORBA user exceptions reach the caller.
  int LoadAuthorizations(const std::string& userId);

  // Releases the reference and resets every flag and privilege. The grants stay until the next
  // load.
  void Reset();

  // Gets the queries that the server makes from the user's grants for the data centers `names`.
  // `text` and the flags are sent as they are. Returns the server's result, 1 on success; the
  // caller owns both outputs then. Returns 0, with both outputs null, on any CORBA exception, which
  // is logged at level 1, and before a load.
  int GetUserAuthQueries(const std::list<std::string>& names, const std::string& text, bool flag1,
                         bool flag2, QCSCorbaUserDefinitionQueries_out definitionQueries,
                         QCSCorbaUserActiveQueriesSeq*& activeQueries, const std::string& userId);

  // ---- Privileges: whether the user's level is at least `level`, compared as numbers. So
  // DEFAULT_ACCESS (0) is always allowed, and a user with DEFAULT_ACCESS is allowed nothing else.
  bool IsAuthDefAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsChangePasswordAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsCommAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsQIMAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsForecastAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsPeriodStatAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsForecastQIMConfigAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsCollDefAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsHierDefAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsFiltDefAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsViewDefAccessAllowed(QCSAuthLevelEnum level) const;
  bool IsAlertsAccessAllowed(QCSAuthLevelEnum level) const;

  // ---- One object: whether the grants of its kind give at least `level`. AuthLevelBySelection.h
  // describes how the user's own grants and those of the groups combine.
  bool IsCalendarAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsPrereqCondAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsControlResAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsQuantResAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsGlobalCondAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsSchedTblAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsOwnerAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsWorkloadAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsServiceAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;

  // Whether the action with this number is allowed on the service (VQServiceUserAuth.h).
  bool IsServiceActionAccessAllowed(const QCSObject& object, int action) const;

  // ---- A kind: whether there is any grant for it, the user's own or a group's. A grant whose
  // criteria do not parse counts, although it fits no object.
  bool IsCalendarsAccessAllowed() const;
  bool IsPrereqCondsAccessAllowed() const;
  bool IsControlRessAccessAllowed() const;
  bool IsQuantRessAccessAllowed() const;
  bool IsGlobalCondsAccessAllowed() const;
  bool IsSchdTblsAccessAllowed() const;
  bool IsOwnersAccessAllowed() const;
  bool IsWorkloadsAccessAllowed() const;
  bool IsServicesAccessAllowed() const;

  // ---- The flags and the level of the command-line interface, as loaded.
  bool IsAdministrator() const { return m_IsAdministrator; }
  bool IsJobLevelAuthExist() const { return m_JobLevelAuthExist; }
  bool CanBrowseUserOrderForce() const { return m_CanBrowseUserOrderForce; }
  bool IsOpenArchivedViewPointAllowed() const { return m_OpenArchivedViewPoint; }
  QCSAuthLevelEnum GetCLIAccess() const { return m_CLILevel; }

 private:
  void CopyPrivileges(const QCSAuthLevelEnumSeq& privileges);
  void LoadGrants(const QCSCorbaAuthorizationStruct& snapshot);
  int LoadAuthLevelForOrderForce();
  int LoadChangePasswordAuthorization();

  QCSCorbaAuthorization_var m_Authorization;
  bool m_IsAdministrator = false;
  bool m_CanBrowseUserOrderForce = false;
  bool m_OpenArchivedViewPoint = false;
  bool m_JobLevelAuthExist = false;
  QCSAuthLevelEnum m_ChangePasswordLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_AuthDefLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_CommLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_CollDefLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_HierDefLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_FiltDefLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_ViewDefLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_AlertsLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_QIMLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_ForecastLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_PeriodStatLevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_CLILevel = DEFAULT_ACCESS;
  QCSAuthLevelEnum m_ForecastQIMConfigLevel = DEFAULT_ACCESS;
  AuthLevelBySelection m_SchedTblAuth;
  AuthLevelBySelection m_CalendarAuth;
  AuthLevelBySelection m_OwnerAuth;
  AuthLevelBySelection m_WorkloadAuth;
  VQServiceUserAuth m_ServiceAuth;
  AuthLevelBySelection m_PrereqCondAuth;
  AuthLevelBySelection m_ControlResAuth;
  AuthLevelBySelection m_QuantResAuth;
  AuthLevelBySelection m_GlobalCondAuth;
};

#endif  // VQ_CLIENT_COMMON_AUTHORIZATIONS_USERAUTHORIZATIONS_H
