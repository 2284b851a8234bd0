// Makes a site of its JSON file. Every key of every object has a line here.
//
// A reader refuses a value that does not fit: it raises SiteError with the place in the file
// ("/users/ann/expiry"). A reader of an object looks at every key, so that a misspelt one is found.

#include <algorithm>
#include <concepts>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include <simulator/Raise.h>
#include <simulator/Site.h>

namespace vq::sim {

using nlohmann::json;

namespace {

// The operations of the interfaces that are served, as idl/ has them.
constexpr std::string_view kOperations[] = {
#include <simulator/OperationNames.inc>
};

// One value of the file, with its place in it. Borrows what it refers to.
struct Value {
  const json& node;
  const std::string& file;
  std::string place;

  [[noreturn]] void Fail(const std::string& what) const {
    throw SiteError(file + ": " + (place.empty() ? "/" : place) + ": " + what);
  }
  Value Child(const std::string& key, const json& child) const {
    return {child, file, place + "/" + key};
  }
};

// Puts a value where it belongs; the target outlives the reader.
using Reader = std::function<void(const Value&)>;
using Fields = std::map<std::string_view, Reader>;

// Reads an object whose keys are names of the site's own.
void ReadNamed(const Value& value,
               const std::function<void(const std::string&, const Value&)>& item) {
  if (!value.node.is_object()) value.Fail("must be an object");
  for (const auto& [key, child] : value.node.items()) item(key, value.Child(key, child));
}

// Reads an object by its keys; each key must be one of the fields. Keys may be missing.
void ReadObject(const Value& value, const Fields& fields) {
  ReadNamed(value, [&](const std::string& key, const Value& child) {
    const auto field = fields.find(key);
    if (field == fields.end()) child.Fail("unknown key");
    field->second(child);
  });
}

void ReadArray(const Value& value, const Reader& item) {
  if (!value.node.is_array()) value.Fail("must be an array");
  std::size_t index = 0;
  for (const json& child : value.node) item(value.Child(std::to_string(index++), child));
}

// Without zero characters, which the wire cannot carry.
std::string Text(const Value& value) {
  if (!value.node.is_string()) value.Fail("must be a string");
  auto text = value.node.get<std::string>();
  if (text.find('\0') != std::string::npos) value.Fail("must not hold a zero character");
  return text;
}

std::int64_t WholeNumber(const Value& value, std::int64_t least, std::int64_t most) {
  const bool isWhole = value.node.is_number_integer();
  const bool isTooLarge = value.node.is_number_unsigned() &&
                          value.node.get<std::uint64_t>() > static_cast<std::uint64_t>(most);
  const std::int64_t number = isWhole ? value.node.get<std::int64_t>() : 0;
  if (!isWhole || isTooLarge || number < least || number > most) {
    value.Fail("must be a whole number from " + std::to_string(least) + " to " +
               std::to_string(most));
  }
  return number;
}

// The index of a text in a list of names.
template <typename Names>
int OneOf(const Value& value, const std::string& text, const Names& names) {
  const auto found = std::find(std::begin(names), std::end(names), text);
  if (found != std::end(names)) return static_cast<int>(std::distance(std::begin(names), found));
  std::string all;
  for (const std::string_view name : names) all += (all.empty() ? "" : ", ") + std::string(name);
  value.Fail("'" + text + "' is not one of " + all);
}

Reader Into(std::string& target) {
  return [&target](const Value& value) { target = Text(value); };
}
Reader Into(bool& target) {
  return [&target](const Value& value) {
    if (!value.node.is_boolean()) value.Fail("must be true or false");
    target = value.node.get<bool>();
  };
}
template <std::integral Number>
Reader Into(Number& target, std::int64_t least = std::numeric_limits<Number>::min(),
            std::int64_t most = std::numeric_limits<Number>::max()) {
  return [&target, least, most](const Value& value) {
    target = static_cast<Number>(WholeNumber(value, least, most));
  };
}
template <typename Unit>
Reader Into(std::chrono::duration<std::int64_t, Unit>& target, std::int64_t least,
            std::int64_t most) {
  return [&target, least, most](const Value& value) {
    target = std::chrono::duration<std::int64_t, Unit>(WholeNumber(value, least, most));
  };
}
template <typename Item>
Reader Into(std::optional<Item>& target) {
  return [&target](const Value& value) { Into(target.emplace())(value); };
}
// The enumerator with the number of the name.
template <typename Enumeration, typename Names>
Reader IntoOneOf(Enumeration& target, const Names& names) {
  return [&target, &names](const Value& value) {
    target = static_cast<Enumeration>(OneOf(value, Text(value), names));
  };
}
template <typename Item>
Reader IntoList(std::vector<Item>& target, Item (*read)(const Value&)) {
  return [&target, read](const Value& value) {
    ReadArray(value, [&](const Value& item) { target.push_back(read(item)); });
  };
}
template <typename Item>
Reader IntoMap(std::map<std::string, Item>& target, Item (*read)(const Value&)) {
  return [&target, read](const Value& value) {
    ReadNamed(value,
              [&](const std::string& name, const Value& item) { target[name] = read(item); });
  };
}
Reader Object(Fields fields) {
  return [fields = std::move(fields)](const Value& value) { ReadObject(value, fields); };
}

std::int32_t ReadAction(const Value& value) {
  std::int32_t number = 0;
  Into(number)(value);
  return number;
}

Grant ReadGrant(const Value& value, bool isService) {
  Grant grant;
  Fields fields = {{"criteria", Into(grant.criteria)},
                   {"level", IntoOneOf(grant.level, kLevelNames)}};
  if (isService) fields["actions"] = IntoList(grant.actions, ReadAction);
  ReadObject(value, fields);
  if (!value.node.contains("criteria") || !value.node.contains("level")) {
    value.Fail("needs criteria and level");
  }
  return grant;
}

// The two keys that users and groups have in common.
void AddRights(Fields& fields, Rights& rights) {
  fields["privileges"] = [&rights](const Value& value) {
    ReadNamed(value, [&](const std::string& name, const Value& level) {
      IntoOneOf(rights.privileges[OneOf(value, name, kPrivilegeNames)], kLevelNames)(level);
    });
  };
  fields["grants"] = [&rights](const Value& value) {
    ReadNamed(value, [&](const std::string& name, const Value& list) {
      const int kind = OneOf(value, name, kGrantKindNames);
      const bool isService = kind == static_cast<int>(GrantKind::kServices);
      auto& grants = rights.grants[static_cast<std::size_t>(kind)];
      ReadArray(list, [&](const Value& item) { grants.push_back(ReadGrant(item, isService)); });
    });
  };
}

User ReadUser(const Value& value) {
  constexpr static std::array<std::string_view, 3> kExpiries = {"never", "soon", "expired"};
  User user;
  Fields fields = {{"password", Into(user.password)},
                   {"fullName", Into(user.fullName)},
                   {"description", Into(user.description)},
                   {"dbUser", Into(user.dbUser)},
                   {"locked", Into(user.locked)},
                   {"message", Into(user.message)},
                   {"replyUserId", Into(user.replyUserId)},
                   {"jobLevelAuthorization", Into(user.jobLevelAuthorization)},
                   {"result", Into(user.result)},
                   {"expiry", IntoOneOf(user.expiry, kExpiries)},
                   {"groups", IntoList(user.groups, Text)}};
  AddRights(fields, user.rights);
  ReadObject(value, fields);
  return user;
}

Group ReadGroup(const Value& value) {
  Group group;
  Fields fields = {{"description", Into(group.description)}};
  AddRights(fields, group.rights);
  ReadObject(value, fields);
  return group;
}

Parameter ReadParameter(const Value& value) {
  Parameter parameter;
  if (value.node.is_string()) {
    parameter.value = Text(value);
  } else if (value.node.is_object() && value.node.size() == 1) {
    ReadObject(value,
               {{"fail", Into(parameter.fail)}, {"userNotFound", Into(parameter.userNotFound)}});
  } else {
    value.Fail("must be a string, {\"fail\": NUMBER} or {\"userNotFound\": TEXT}");
  }
  return parameter;
}

VersionRule ReadVersionRule(const Value& value) {
  VersionRule rule;
  ReadObject(value, {{"client", Into(rule.client)},
                     {"result", Into(rule.result)},
                     {"server", Into(rule.server)},
                     {"missing", Into(rule.missing)}});
  return rule;
}

LoginMessage ReadLoginMessage(const Value& value) {
  LoginMessage message;
  ReadObject(value, {{"severity", Into(message.severity)}, {"message", Into(message.message)}});
  return message;
}

constexpr std::int64_t kLongestDelay = 3'600'000;  // milliseconds

Fault ReadFault(const Value& value) {
  constexpr static std::array<std::string_view, 6> kActions = {"delay", "drop",   "die",
                                                               "raise", "return", "refuse"};
  constexpr static std::array<std::string_view, 2> kMoments = {"before", "after"};
  constexpr static std::array<std::string_view, 3> kCompletions = {"YES", "NO", "MAYBE"};
  constexpr std::int64_t kMost = 1'000'000'000;
  Fault fault;
  bool once = false;
  ReadObject(
      value,
      {{"operation",
        [&](const Value& v) {
          fault.operation = Text(v);
          if (fault.operation != "*" && std::ranges::count(kOperations, fault.operation) == 0) {
            v.Fail("'" + fault.operation + "' is no operation of the server's, and not *");
          }
        }},
       {"kind", Into(fault.kind)},
       {"nth",
        [&](const Value& v) {
          once = v.node != "always";
          if (once) Into(fault.nth, 1, kMost)(v);
        }},
       {"times", Into(fault.times, 1, kMost)},
       {"action", IntoOneOf(fault.action, kActions)},
       {"when", IntoOneOf(fault.after, kMoments)},
       {"ms", Into(fault.delay, 0, kLongestDelay)},
       {"exception",
        [&](const Value& v) {
          fault.exception = Text(v);
          OneOf(v, fault.exception, ExceptionNames());
        }},
       {"minor", Into(fault.minor)},
       {"completed",
        [&](const Value& v) {
          fault.completed = Text(v);
          OneOf(v, fault.completed, kCompletions);
        }},
       {"result", Into(fault.result)},
       {"message", Into(fault.message)},
       {"reason", Into(fault.reason)}});
  if (once && fault.times == 0) fault.times = 1;
  if (fault.operation.empty()) value.Fail("needs an operation");
  if (!value.node.contains("action")) value.Fail("needs an action");
  if (fault.action == Fault::Action::kRaise && fault.exception.empty()) {
    value.Fail("needs an exception to raise");
  }
  return fault;
}

// The names that refer to each other.
void CheckGroups(const Site& site, const Value& root) {
  for (const auto& [name, user] : site.users) {
    for (const std::string& group : user.groups) {
      if (site.groups.contains(group)) continue;
      throw SiteError(root.file + ": /users/" + name + "/groups: no group '" + group + "'");
    }
  }
}

}  // namespace

Site ReadSite(const json& document, const std::string& name) {
  Site site;
  Messages& texts = site.messages;
  const Value root{document, name, ""};
  ReadObject(
      root,
      {{"server", Object({{"version", Into(site.serverVersion)}, {"dbUser", Into(site.dbUser)}})},
       {"userId",
        Object({{"length", Into(site.userIdLength, 1, 4096)}, {"text", Into(site.userIdText)}})},
       {"challenge", Object({{"lifetimeSeconds", Into(site.challengeLifetime, 1, 86'400)},
                             {"pending", Into(site.challengesPending, 1, 1024)}})},
       {"lockout", Object({{"tries", Into(site.triesBeforeLock, 0, 1000)}})},
       {"messages", Object({{"registered", Into(texts.registered)},
                            {"refused", Into(texts.refused)},
                            {"expired", Into(texts.expired)},
                            {"locked", Into(texts.locked)},
                            {"aboutToExpire", Into(texts.aboutToExpire)}})},
       {"parameters",
        [&](const Value& v) {
          ReadNamed(v, [&](const std::string& section, const Value& names) {
            IntoMap(site.parameters[section], ReadParameter)(names);
          });
        }},
       {"versions", IntoList(site.versions, ReadVersionRule)},
       {"loginMessages", IntoList(site.loginMessages, ReadLoginMessage)},
       {"annotationRequired",
        [&](const Value& v) {
          ReadArray(v, [&](const Value& item) { site.annotationRequired.insert(Text(item)); });
        }},
       {"users", IntoMap(site.users, ReadUser)},
       {"groups", IntoMap(site.groups, ReadGroup)},
       {"callback", Object({{"refuse", Into(site.callbackRefused)},
                            {"message", Into(site.callbackMessage)},
                            {"delayMs", Into(site.callbackDelay, 0, kLongestDelay)}})},
       {"faults", IntoList(site.faults, ReadFault)}});
  CheckGroups(site, root);
  return site;
}

json ParseSite(const std::string& text, const std::string& name) {
  constexpr int kDeepest = 32;  // no site nests deeper; what does is an attack on the stack
  const auto isShallow = [&](int depth, json::parse_event_t, json&) {
    if (depth > kDeepest) throw SiteError(name + ": nested too deeply");
    return true;
  };
  try {
    return json::parse(text, isShallow, true, true);
  } catch (const json::parse_error& error) {
    const std::size_t end = std::min(error.byte == 0 ? 0 : error.byte - 1, text.size());
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    const std::size_t start = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::size_t column = start == std::string::npos ? end + 1 : end - start;
    throw SiteError(name + ":" + std::to_string(line) + ":" + std::to_string(column) +
                    ": not JSON");
  }
}

json ParseSiteFile(const std::filesystem::path& path) {
  std::string text;
  try {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) throw SiteError(path.string() + ": cannot be opened");
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  } catch (const std::ios_base::failure&) {  // a directory opens, and does not read
    throw SiteError(path.string() + ": cannot be read");
  }
  return ParseSite(text, path.string());
}

}  // namespace vq::sim
