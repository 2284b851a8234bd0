// What the logged-in user may do: the client's own copy, filled once a login.
//
// Terms. A *privilege* is a right in general (to see alerts, to use the command line); it has one
// level. A *kind* is a kind of object (calendars, tables, services); the user has *grants* on it,
// each a level over the objects that its criteria select (docs/selection-language.md), some the
// user's own and some of the user's groups. After the load every question is answered here, without
// a call to the server.
//
//   const UserAuthorizations* may = UserAuthorizations::Get();
//   if (may->IsAlertsAccessAllowed(UPDATE_ACCESS)) Show("alerts");    // a privilege
//   if (may->IsCalendarsAccessAllowed()) Show("calendars");              // any grant on calendars?
//   QCSObject calendar;
//   calendar.SetAttribute("CALENDAR", "HOLIDAYS");
//   if (may->IsCalendarAccessAllowed(calendar, BROWSE_ACCESS)) Show("HOLIDAYS");   // on this one
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

// Thread contract: no lock. The load and the reset belong to one thread, with no question
// meanwhile; between them any number of threads may ask.
class VQ_CLIENT_COMMON_API UserAuthorizations {
 public:
  // The instance of the process's session, made with it. Borrowed; never null.
  static UserAuthorizations* Get();

  // Without a load: no reference, every flag false, every level DEFAULT_ACCESS, no grants.
  UserAuthorizations();
  // Copies hold a reference of their own to the server's authorization object.
  UserAuthorizations(const UserAuthorizations& other);
  UserAuthorizations& operator=(const UserAuthorizations& other);
  virtual ~UserAuthorizations();

  // Fetches the snapshot of the user with this session user ID from the server, over what was
  // there. Returns 1; 0 when the server cannot be found or does not know the user ID; 43 when the
  // user is not authorized; 23 on a CORBA system exception. Each failure is logged at level 1. A
  // load that fails leaves what it had copied until then. Other CORBA user exceptions pass through.
  int LoadAuthorizations(const std::string& userId);

  // Releases the reference and sets every flag and level to nothing. The grants on objects stay as
  // they are until the next load.
  void Reset();

  // Asks the server for the queries that it makes of the user's grants, for the data centers
  // `names`. `text` and the flags are passed on as they are. Returns the server's result, 1 on
  // success; the caller then owns what both outputs hold. Returns 0 on any CORBA exception, logged
  // at level 1, the outputs being null; so also before a load.
  int GetUserAuthQueries(const std::list<std::string>& names, const std::string& text, bool flag1,
                         bool flag2, QCSCorbaUserDefinitionQueries_out definitionQueries,
                         QCSCorbaUserActiveQueriesSeq*& activeQueries, const std::string& userId);

  // ---- Privileges: whether the stored level is at least the one asked for, as numbers. So
  // DEFAULT_ACCESS (0) is always allowed, and a stored DEFAULT_ACCESS allows nothing else.
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

  // ---- One object: whether the grants give at least this level over it. How the user's own and
  // the groups' combine: AuthLevelBySelection.h.
  bool IsCalendarAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsPrereqCondAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsControlResAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsQuantResAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsGlobalCondAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsSchedTblAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsOwnerAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsWorkloadAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;
  bool IsServiceAccessAllowed(const QCSObject& object, QCSAuthLevelEnum level) const;

  // Whether the action of this number is allowed on the service (VQServiceUserAuth.h).
  bool IsServiceActionAccessAllowed(const QCSObject& object, int action) const;

  // ---- A kind: whether the user has any grant on it, own or by a group. Grants whose criteria do
  // not parse count, although they fit no object. The names are those that client programs know,
  // spelling included.
  bool IsCalendarsAccessAllowed() const;
  bool IsPrereqCondsAccessAllowed() const;
  bool IsControlRessAccessAllowed() const;
  bool IsQuantRessAccessAllowed() const;
  bool IsGlobalCondsAccessAllowed() const;
  bool IsSchdTblsAccessAllowed() const;
  bool IsOwnersAccessAllowed() const;
  bool IsWorkloadsAccessAllowed() const;
  bool IsServicesAccessAllowed() const;

  // ---- As stored.
  bool IsAdministrator() const { return m_IsAdministrator; }
  bool IsJobLevelAuthExist() const { return m_JobLevelAuthExist; }
  bool CanBrowseUserOrderForce() const { return m_CanBrowseUserOrderForce; }
  bool IsOpenArchivedViewPointAllowed() const { return m_OpenArchivedViewPoint; }
  QCSAuthLevelEnum GetCLIAccess() const { return m_CLILevel; }

 private:
  // A level that is copied from the snapshot as it is: the field and the place in "Privileges".
  struct LevelField {
    QCSAuthLevelEnum UserAuthorizations::*level;
    PrivilegeTypeEnum privilege;
  };
  static const LevelField kLevelFields[];

  // The two lists of the snapshot that fill a holder.
  struct HolderField {
    AuthLevelBySelection UserAuthorizations::*holder;
    QCSCorbaAuth2LvlSeq QCSCorbaAuthorizationStruct::*user;
    QCSCorbaAuth2LvlSeq QCSCorbaAuthorizationStruct::*group;
  };
  static const HolderField kHolderFields[];

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
