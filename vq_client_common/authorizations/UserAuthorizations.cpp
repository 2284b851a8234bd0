#include <vq_client_common/authorizations/UserAuthorizations.h>

#include <cstring>
#include <type_traits>
#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaConversions.h>
#include <support/orb/CorbaText.h>
#include <support/orb/FailureCause.h>
#include <vq_client_common/authorizations/QCSGuiAuthActJobsDef.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/internal/Collaborators.h>
#include <vq_client_common/session/internal/UsersManager.h>

namespace {

TDiagRegister diagModule("UserAuthorizations");

constexpr int kSuccess = vq::CodeOf(vq::LoginResult::kSuccess);
constexpr int kFailure = vq::CodeOf(vq::LoginResult::kFailed);
constexpr int kNotAuthorized = vq::CodeOf(vq::LoginResult::kNotAuthorized);
constexpr int kSystemException = 23;

bool IsAtLeast(QCSAuthLevelEnum stored, QCSAuthLevelEnum wanted) {
  return static_cast<int>(stored) >= static_cast<int>(wanted);
}

// DEFAULT_ACCESS for a snapshot that is too short and for a number that is no level. An ORB may
// copy the list from the wire without a check, so the number is tested before it becomes an
// enumerator.
QCSAuthLevelEnum LevelOf(const QCSAuthLevelEnumSeq& privileges, PrivilegeTypeEnum privilege) {
  const auto place = static_cast<CORBA::ULong>(privilege);
  if (place >= LengthOnTheWire(privileges)) return DEFAULT_ACCESS;
  std::underlying_type_t<QCSAuthLevelEnum> number{};
  static_assert(sizeof number == sizeof privileges[place]);
  std::memcpy(&number, &privileges[place], sizeof number);
  return number <= MAX_ACCESS ? static_cast<QCSAuthLevelEnum>(number) : DEFAULT_ACCESS;
}

// The reference for a call. Raises INV_OBJREF for nil: some ORB products would dereference it.
QCSCorbaAuthorization_ptr Callable(const QCSCorbaAuthorization_var& authorization) {
  if (CORBA::is_nil(authorization.in())) throw CORBA::INV_OBJREF(0, CORBA::COMPLETED_NO);
  return authorization.in();
}

}  // namespace

UserAuthorizations* UserAuthorizations::Get() {
  return LoginHandler::GetGlobal()->GetUserAuthorizations();
}

UserAuthorizations::UserAuthorizations() = default;
UserAuthorizations::UserAuthorizations(const UserAuthorizations&) = default;
UserAuthorizations& UserAuthorizations::operator=(const UserAuthorizations&) = default;

UserAuthorizations::~UserAuthorizations() {
  const TDiagFunc diag(diagModule, "UserAuthorizations::~UserAuthorizations");
  Reset();
}

int UserAuthorizations::LoadAuthorizations(const std::string& userId) {
  const TDiagFunc diag(diagModule, "UserAuthorizations::LoadAuthorizations");
  QCSCorbaUsersManager_ptr users = QCSCorbaUsersManager::_nil();
  try {
    if (vq::session::GetUsersManager(users, LoginHandler::GetGlobal()->GetServerID()) != 1) {
      // Intentional: there is no reconnection; readers of logs search for this line.
      VQ_LOG(diag, 1) << "couldn't get CORBA servant automatic reconnect process is to be invoked.";
      return kFailure;
    }
    QCSCorbaAuthorizationStruct_var snapshot;
    users->CRB_GetMyAuthorizationsFromMemory(userId.c_str(), m_Authorization.out(), snapshot.out());
    CopyPrivileges(snapshot->Privileges);
    m_JobLevelAuthExist = Callable(m_Authorization)->CRB_IsJobLevelAuthExist(userId.c_str());
    LoadGrants(snapshot.in());
    LoadAuthLevelForOrderForce();
    LoadChangePasswordAuthorization();
    return kSuccess;
  } catch (const USER_NOT_FOUND& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotFound Exception - " << e.Message.in();
    return kFailure;
  } catch (const USER_NOT_AUTHORIZED& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotAuthorized Exception - " << e.Message.in();
    return kNotAuthorized;
  } catch (const QCSCorbaUsersManager::INVALID_ACTION_NAME&) {
    VQ_LOG(diag, 1) << "CRB_GetActionAuthLevel Failed with INVALID_ACTION_NAME exception";
    return kSuccess;  // Intentional: counts as success; the login continues.
  } catch (const CORBA::SystemException& e) {
    vq::orb::NoteFailedCall(e, users);
    VQ_LOG(diag, 1) << "CORBA Exception " << e;
    return kSystemException;
  }
}

void UserAuthorizations::CopyPrivileges(const QCSAuthLevelEnumSeq& privileges) {
  m_ChangePasswordLevel = LevelOf(privileges, AUTHORIZATION_PRIV_TYPE);
  m_AuthDefLevel = LevelOf(privileges, AUTHORIZATION_PRIV_TYPE);
  m_CommLevel = LevelOf(privileges, VMC_CONFIGURATION_PRIV_TYPE);
  m_CollDefLevel = LevelOf(privileges, COLLECTIONDEF_PRIV_TYPE);
  m_HierDefLevel = LevelOf(privileges, HIERARCHIEDEF_PRIV_TYPE);
  m_FiltDefLevel = LevelOf(privileges, FILTERDEF_PRIV_TYPE);
  m_ViewDefLevel = LevelOf(privileges, ACTIVEVP_PRIV_TYPE);
  m_AlertsLevel = LevelOf(privileges, ALERT_PRIV_TYPE);
  m_QIMLevel = LevelOf(privileges, QIM_PRIV_TYPE);
  m_ForecastLevel = LevelOf(privileges, FORECAST_PRIV_TYPE);
  m_PeriodStatLevel = LevelOf(privileges, PERIOD_STAT_PRIV_TYPE);
  m_CLILevel = LevelOf(privileges, CLI_PRIV_TYPE);
  m_ForecastQIMConfigLevel = LevelOf(privileges, QIMFOR_CONFIG_PRIV_TYPE);
  // Intentional: only FULL_ACCESS makes an administrator, MAX_ACCESS does not.
  m_IsAdministrator = m_AuthDefLevel == FULL_ACCESS;
  m_OpenArchivedViewPoint = IsAtLeast(LevelOf(privileges, ARCHIVEVP_PRIV_TYPE), BROWSE_ACCESS);
}

void UserAuthorizations::LoadGrants(const QCSCorbaAuthorizationStruct& snapshot) {
  const auto load = [](AuthLevelBySelection& holder, const QCSCorbaAuth2LvlSeq& user,
                       const QCSCorbaAuth2LvlSeq& groups) {
    holder.UserAuthFromCORBA(user, true);
    holder.GroupAuthFromCORBA(groups, true);
  };
  load(m_SchedTblAuth, snapshot.m_TablesUserAccess, snapshot.m_TablesGroupAccess);
  load(m_CalendarAuth, snapshot.m_CalendarsUserAccess, snapshot.m_CalendarsGroupAccess);
  load(m_PrereqCondAuth, snapshot.m_PrereqCondsUserAccess, snapshot.m_PrereqCondsGroupAccess);
  load(m_ControlResAuth, snapshot.m_ControlResUserAccess, snapshot.m_ControlResGroupAccess);
  load(m_QuantResAuth, snapshot.m_QuantResUserAccess, snapshot.m_QuantResGroupAccess);
  load(m_GlobalCondAuth, snapshot.m_GlobalPrefixUserAccess, snapshot.m_GlobalPrefixGroupAccess);
  load(m_OwnerAuth, snapshot.m_OwnerUserAccess, snapshot.m_OwnerGroupAccess);
  load(m_WorkloadAuth, snapshot.m_WorkloadsUserAccess, snapshot.m_WorkloadsGroupAccess);

  m_ServiceAuth.Clear();  // also when the new grants cannot be read
  std::list<VQServiceAuth> user;
  std::list<VQServiceAuth> groups;
  CrbConvert(snapshot.ServiceUserAccess, user);
  CrbConvert(snapshot.ServiceGroupAccess, groups);
  m_ServiceAuth = VQServiceUserAuth(std::move(user), std::move(groups));
}

int UserAuthorizations::LoadAuthLevelForOrderForce() {
  std::string value;
  // Intentional: the old value stays; a server that answers late does not remove the right.
  if (!GetSystemParameter("Action_OrderForce_AuthLevel", value, "gsr", E_GSR)) return kFailure;
  m_CanBrowseUserOrderForce = value == "BROWSE_ACCESS";
  return kSuccess;
}

int UserAuthorizations::LoadChangePasswordAuthorization() {
  std::string value;
  if (!GetSystemParameter("UserChangePassword", value, "gui", E_GSR)) return kFailure;
  // Intentional: the parameter only extends the right of the privilege.
  if (value == "1") m_ChangePasswordLevel = FULL_ACCESS;
  return kSuccess;
}

void UserAuthorizations::Reset() {
  const TDiagFunc diag(diagModule, "UserAuthorizations::Reset");
  m_Authorization = QCSCorbaAuthorization::_nil();
  CopyPrivileges(QCSAuthLevelEnumSeq());
  m_JobLevelAuthExist = false;
  m_CanBrowseUserOrderForce = false;
  // Intentional: the grants stay, so clients may ask about objects after a logout.
}

int UserAuthorizations::GetUserAuthQueries(const std::list<std::string>& names,
                                           const std::string& text, bool flag1, bool flag2,
                                           QCSCorbaUserDefinitionQueries_out definitionQueries,
                                           QCSCorbaUserActiveQueriesSeq*& activeQueries,
                                           const std::string& userId) {
  const TDiagFunc diag(diagModule, "UserAuthorizations::GetUserAuthQueries");
  activeQueries = nullptr;
  try {
    stringSeq sequence;
    StlVector2CorbaSequence(names, sequence);
    return Callable(m_Authorization)
        ->CRB_GetUserAuthQueriesEx(text.c_str(), sequence, flag1, flag2, definitionQueries,
                                   activeQueries, userId.c_str());
  } catch (const USER_NOT_AUTHORIZED& e) {
    VQ_LOG(diag, 1) << "Caught a UserNotAuthorized Exception - " << e.Message.in();
  } catch (const CORBA::Exception& e) {
    // Intentional: there is no reconnection; readers of logs search for this line.
    VQ_LOG(diag, 1) << "Caught CORBA exception, Trying to reconnect..." << e;
  }
  return kFailure;
}

// ---------------------------------------------------------------- privileges

bool UserAuthorizations::IsAuthDefAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_AuthDefLevel, level);
}
bool UserAuthorizations::IsChangePasswordAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_ChangePasswordLevel, level);
}
bool UserAuthorizations::IsCommAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_CommLevel, level);
}
bool UserAuthorizations::IsQIMAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_QIMLevel, level);
}
bool UserAuthorizations::IsForecastAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_ForecastLevel, level);
}
bool UserAuthorizations::IsPeriodStatAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_PeriodStatLevel, level);
}
bool UserAuthorizations::IsForecastQIMConfigAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_ForecastQIMConfigLevel, level);
}
bool UserAuthorizations::IsCollDefAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_CollDefLevel, level);
}
bool UserAuthorizations::IsHierDefAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_HierDefLevel, level);
}
bool UserAuthorizations::IsFiltDefAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_FiltDefLevel, level);
}
bool UserAuthorizations::IsViewDefAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_ViewDefLevel, level);
}
bool UserAuthorizations::IsAlertsAccessAllowed(QCSAuthLevelEnum level) const {
  return IsAtLeast(m_AlertsLevel, level);
}

// ---------------------------------------------------------------- one object

bool UserAuthorizations::IsCalendarAccessAllowed(const QCSObject& object,
                                                 QCSAuthLevelEnum level) const {
  return m_CalendarAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsPrereqCondAccessAllowed(const QCSObject& object,
                                                   QCSAuthLevelEnum level) const {
  return m_PrereqCondAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsControlResAccessAllowed(const QCSObject& object,
                                                   QCSAuthLevelEnum level) const {
  return m_ControlResAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsQuantResAccessAllowed(const QCSObject& object,
                                                 QCSAuthLevelEnum level) const {
  return m_QuantResAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsGlobalCondAccessAllowed(const QCSObject& object,
                                                   QCSAuthLevelEnum level) const {
  return m_GlobalCondAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsSchedTblAccessAllowed(const QCSObject& object,
                                                 QCSAuthLevelEnum level) const {
  return m_SchedTblAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsOwnerAccessAllowed(const QCSObject& object,
                                              QCSAuthLevelEnum level) const {
  return m_OwnerAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsWorkloadAccessAllowed(const QCSObject& object,
                                                 QCSAuthLevelEnum level) const {
  return m_WorkloadAuth.IsAuthorized(object, level);
}
bool UserAuthorizations::IsServiceAccessAllowed(const QCSObject& object,
                                                QCSAuthLevelEnum level) const {
  return m_ServiceAuth.IsDefAccessAllowed(object, level);
}
bool UserAuthorizations::IsServiceActionAccessAllowed(const QCSObject& object, int action) const {
  return m_ServiceAuth.IsActionAllowed(object, action);
}

// ---------------------------------------------------------------- kinds

bool UserAuthorizations::IsCalendarsAccessAllowed() const {
  return !m_CalendarAuth.IsEmpty();
}
bool UserAuthorizations::IsPrereqCondsAccessAllowed() const {
  return !m_PrereqCondAuth.IsEmpty();
}
bool UserAuthorizations::IsControlRessAccessAllowed() const {
  return !m_ControlResAuth.IsEmpty();
}
bool UserAuthorizations::IsQuantRessAccessAllowed() const {
  return !m_QuantResAuth.IsEmpty();
}
bool UserAuthorizations::IsGlobalCondsAccessAllowed() const {
  return !m_GlobalCondAuth.IsEmpty();
}
bool UserAuthorizations::IsSchdTblsAccessAllowed() const {
  return !m_SchedTblAuth.IsEmpty();
}
bool UserAuthorizations::IsOwnersAccessAllowed() const {
  return !m_OwnerAuth.IsEmpty();
}
bool UserAuthorizations::IsWorkloadsAccessAllowed() const {
  return !m_WorkloadAuth.IsEmpty();
}
bool UserAuthorizations::IsServicesAccessAllowed() const {
  return !m_ServiceAuth.IsEmpty();
}

// ---------------------------------------------------------------- QCSGuiAuthActJobsDef

QCSGuiAuthActJobsDef::QCSGuiAuthActJobsDef() = default;
QCSGuiAuthActJobsDef::QCSGuiAuthActJobsDef(const QCSGuiAuthActJobsDef&) = default;
QCSGuiAuthActJobsDef& QCSGuiAuthActJobsDef::operator=(const QCSGuiAuthActJobsDef&) = default;
QCSGuiAuthActJobsDef::~QCSGuiAuthActJobsDef() = default;

// ---------------------------------------------------------------- for the session

namespace vq::session {

UserAuthorizations* NewUserAuthorizations() {
  return new UserAuthorizations;
}

void DeleteUserAuthorizations(UserAuthorizations* authorizations) {
  delete authorizations;
}

void AssignUserAuthorizations(UserAuthorizations& target, const UserAuthorizations& source) {
  target = source;
}

int LoadUserAuthorizations(UserAuthorizations& authorizations, const std::string& userId) {
  return authorizations.LoadAuthorizations(userId);
}

void ResetUserAuthorizations(UserAuthorizations& authorizations) {
  authorizations.Reset();
}

bool IsAdministrator(const UserAuthorizations& authorizations) {
  return authorizations.IsAdministrator();
}

}  // namespace vq::session
