// The configuration of a simulated server: its users, parameters, rules and faults.
//
// A site is one JSON file (site.json beside this file is a sample, docs/simulator.md the
// reference). Its form is checked: an unknown key, a value of the wrong type, a name that does not
// exist are errors with their place in the file, so that a test never runs against a mistyped site.
//
//   const Site site = ReadSiteFile("site.json");       // raises SiteError
//   const User* ann = site.FindUser("ann");            // null: no such user
#ifndef VQ_SIMULATOR_SITE_H
#define VQ_SIMULATOR_SITE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vq::sim {

// A site that cannot be used. what() has the file, the place in it and the error.
class SiteError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// The names of the wire's levels and privileges; a value is the index of its name.
inline constexpr std::array<std::string_view, 6> kLevelNames = {
    "DEFAULT_ACCESS", "ACCESS_NONE", "BROWSE_ACCESS", "UPDATE_ACCESS", "FULL_ACCESS", "MAX_ACCESS"};
inline constexpr std::array<std::string_view, 22> kPrivilegeNames = {
    "COLLECTIONDEF_PRIV_TYPE", "HIERARCHIEDEF_PRIV_TYPE", "FILTERDEF_PRIV_TYPE",
    "ACTIVEVP_PRIV_TYPE",      "ARCHIVEVP_PRIV_TYPE",     "AUTHORIZATION_PRIV_TYPE",
    "CLI_PRIV_TYPE",           "ALERT_PRIV_TYPE",         "QIM_PRIV_TYPE",
    "FORECAST_PRIV_TYPE",      "VMC_LOGIN_PRIV_TYPE",     "VMC_CONFIGURATION_PRIV_TYPE",
    "VMC_OPERATION_PRIV_TYPE", "VMC_DB_PRIV_TYPE",        "VMC_VLT_SECURITY_PRIV_TYPE",
    "PERIOD_STAT_PRIV_TYPE",   "QIMFOR_CONFIG_PRIV_TYPE", "SITE_STANDARD_PRIV_TYPE",
    "SLS_LOGIN_PRIV_TYPE",     "WCM_LOGIN_PRIV_TYPE",     "OTHER_LOGIN_PRIV_TYPE",
    "AI_ACCESS_PRIV_TYPE"};

// Kinds of grant, in the order of the snapshot's pairs of lists; services come last.
enum class GrantKind {
  kTables,
  kCalendars,
  kQuantRes,
  kControlRes,
  kPrereqConds,
  kGlobalPrefix,
  kOwners,
  kWorkloads,
  kServices
};
inline constexpr std::array<std::string_view, 9> kGrantKindNames = {
    "tables",       "calendars", "quantRes",  "controlRes", "prereqConds",
    "globalPrefix", "owners",    "workloads", "services"};

// One grant: a level over what the criteria select. Actions are for services only.
struct Grant {
  std::string criteria;
  int level = 0;
  std::vector<std::int32_t> actions;
  bool operator==(const Grant&) const = default;
};

// The rights of a user or a group.
struct Rights {
  std::map<int, int> privileges;  // privilege -> level; one that is missing is not given here
  std::array<std::vector<Grant>, kGrantKindNames.size()> grants;
  bool operator==(const Rights&) const = default;
};

enum class Expiry { kNever, kSoon, kExpired };

struct User {
  std::string password;  // as typed
  std::string fullName;
  std::string description;
  std::string dbUser;  // empty: the site's
  Expiry expiry = Expiry::kNever;
  bool locked = false;
  std::optional<int> result;  // the answer to a registration with the right password
  std::string message;        // with an expiry, a lock or such a result; empty: the site's
  std::string replyUserId;    // the user id in an answer that opens no session
  bool jobLevelAuthorization = false;
  std::vector<std::string> groups;
  Rights rights;
  bool operator==(const User&) const = default;
};

// The user's own grants.
inline const std::vector<Grant>& OwnGrants(const User& user, GrantKind kind) {
  return user.rights.grants[static_cast<std::size_t>(kind)];
}

struct Group {
  std::string description;
  Rights rights;
};

// A system parameter: a value, or an exception instead.
struct Parameter {
  std::string value;
  std::optional<std::int32_t> fail;         // raises FAIL with this reason
  std::optional<std::string> userNotFound;  // raises USER_NOT_FOUND with this message
};

// The answer of the version check to clients whose version begins with `client`.
struct VersionRule {
  std::string client;
  std::int32_t result = 1;
  std::string server;
  bool missing = false;  // the operation does not exist, as on an old server
};

struct LoginMessage {
  std::string severity;
  std::string message;
};

// A misbehaviour on demand. It applies to calls of `operation` ("*": all) on a server of `kind`
// (empty: all), counted from 1 since the fault was set: from the call `nth` on, `times` calls.
struct Fault {
  enum class Action { kDelay, kDrop, kDie, kRaise, kReturn, kRefuse };
  std::string operation;
  std::string kind;
  std::uint64_t nth = 1;
  std::uint64_t times = 0;  // 0: no end
  Action action = Action::kDelay;
  bool after = false;  // after the work, before the answer is sent
  std::chrono::milliseconds delay{0};
  std::string exception;  // its name
  std::uint32_t minor = 0;
  std::string completed = "NO";
  std::int32_t result = 0;  // of kReturn; also the reason of FAIL
  std::string message;      // of kReturn, kRefuse and the exceptions that have one
  std::string reason;
};

// The messages of answers. For an empty one the client uses its own.
struct Messages {
  std::string registered, refused, expired, locked, aboutToExpire;
};

struct Site {
  std::string serverVersion;
  std::string dbUser;
  std::size_t userIdLength = 32;  // hexadecimal digits
  std::string userIdText;         // not empty: every session gets this one
  std::chrono::seconds challengeLifetime{60};
  std::size_t challengesPending = 64;
  int triesBeforeLock = 3;  // 0: never locks
  Messages messages;
  std::map<std::string, std::map<std::string, Parameter>> parameters;  // section -> name
  std::vector<VersionRule> versions;  // the first that fits applies
  std::vector<LoginMessage> loginMessages;
  std::set<std::string> annotationRequired;
  std::map<std::string, User> users;
  std::map<std::string, Group> groups;
  bool callbackRefused = false;
  std::string callbackMessage;
  std::chrono::milliseconds callbackDelay{0};
  std::vector<Fault> faults;

  // Null: no such user.
  [[nodiscard]] const User* FindUser(const std::string& name) const;
  // Null: no such parameter.
  [[nodiscard]] const Parameter* FindParameter(const std::string& section,
                                               const std::string& name) const;
  // Whether passwords travel encoded, and by challenge and response: the parameter
  // general/PasswordEncode is anything but "0".
  [[nodiscard]] bool EncodesPasswords() const;
  // The user's own level; without one the highest of the user's groups; without any 0.
  [[nodiscard]] int PrivilegeLevel(const User& user, int privilege) const;
  // The grants of the user's groups, group after group.
  [[nodiscard]] std::vector<Grant> GroupGrants(const User& user, GrantKind kind) const;
};

// Makes a site from a JSON value. `name` is used in the errors' texts. Raises SiteError.
Site ReadSite(const nlohmann::json& json, const std::string& name);

// Parses JSON. A syntax error is a SiteError with line and column.
nlohmann::json ParseSite(const std::string& text, const std::string& name);

// Reads and parses a file. Raises SiteError.
nlohmann::json ParseSiteFile(const std::filesystem::path& path);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SITE_H
