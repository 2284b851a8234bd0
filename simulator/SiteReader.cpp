// Makes a site of its JSON file. Every key of every object has a line here.

#include <limits>

#include <simulator/Raise.h>
#include <simulator/Site.h>
#include <simulator/SiteValue.h>

namespace vq::sim {
namespace {

using nlohmann::json;

// The operations of the interfaces that are served, as idl/ has them.
constexpr std::string_view kOperations[] = {
#include <simulator/OperationNames.inc>
};

bool IsOperation(std::string_view name) {
  return std::find(std::begin(kOperations), std::end(kOperations), name) != std::end(kOperations);
}

Grant ReadGrant(const Value& value, bool service) {
  Grant grant;
  Fields fields = {
      {"criteria", Into(grant.criteria)},
      {"level", [&](const Value& v) { grant.level = OneOf(v, Text(v), kLevelNames); }}};
  if (service) {
    fields["actions"] = [&](const Value& v) {
      ReadArray(v, [&](const Value& action) { grant.actions.push_back(Long(action)); });
    };
  }
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
      rights.privileges[OneOf(value, name, kPrivilegeNames)] =
          OneOf(level, Text(level), kLevelNames);
    });
  };
  fields["grants"] = [&rights](const Value& value) {
    ReadNamed(value, [&](const std::string& name, const Value& list) {
      const auto kind = static_cast<std::size_t>(OneOf(value, name, kGrantKindNames));
      const bool service = kind == static_cast<std::size_t>(GrantKind::Services);
      ReadArray(list,
                [&](const Value& v) { rights.grants[kind].push_back(ReadGrant(v, service)); });
    });
  };
}

User ReadUser(const Value& value) {
  User user;
  Fields fields = {
      {"password", Into(user.password)},
      {"fullName", Into(user.fullName)},
      {"description", Into(user.description)},
      {"dbUser", Into(user.dbUser)},
      {"locked", Into(user.locked)},
      {"message", Into(user.message)},
      {"replyUserId", Into(user.replyUserId)},
      {"jobLevelAuthorization", Into(user.jobLevelAuthorization)},
      {"result", [&](const Value& v) { user.result = Long(v); }},
      {"expiry",
       [&](const Value& v) {
         constexpr std::array<std::string_view, 3> kNames = {"never", "soon", "expired"};
         user.expiry = static_cast<Expiry>(OneOf(v, Text(v), kNames));
       }},
      {"groups", [&](const Value& v) {
         ReadArray(v, [&](const Value& name) { user.groups.push_back(Text(name)); });
       }}};
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
               {{"fail", [&](const Value& v) { parameter.fail = Long(v); }},
                {"userNotFound", [&](const Value& v) { parameter.userNotFound = Text(v); }}});
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

Fault ReadFault(const Value& value) {
  Fault fault;
  constexpr std::uint64_t kMost = 1'000'000'000;
  bool once = false;
  ReadObject(value,
             {{"operation",
               [&](const Value& v) {
                 fault.operation = Text(v);
                 if (fault.operation != "*" && !IsOperation(fault.operation)) {
                   v.Fail("'" + fault.operation + "' is no operation of the server's, and not *");
                 }
               }},
              {"kind", Into(fault.kind)},
              {"nth",
               [&](const Value& v) {
                 if (v.node == "always") return;
                 fault.nth = Whole<std::uint64_t>(v, 1, kMost);
                 once = true;
               }},
              {"times", [&](const Value& v) { fault.times = Whole<std::uint64_t>(v, 1, kMost); }},
              {"action",
               [&](const Value& v) {
                 constexpr std::array<std::string_view, 6> kNames = {"delay", "drop",   "die",
                                                                     "raise", "return", "refuse"};
                 fault.action = static_cast<Fault::Action>(OneOf(v, Text(v), kNames));
               }},
              {"when",
               [&](const Value& v) {
                 constexpr std::array<std::string_view, 2> kNames = {"before", "after"};
                 fault.after = OneOf(v, Text(v), kNames) == 1;
               }},
              {"ms", Into(fault.delay)},
              {"exception",
               [&](const Value& v) {
                 fault.exception = Text(v);
                 OneOf(v, fault.exception, ExceptionNames());
               }},
              {"minor",
               [&](const Value& v) {
                 fault.minor =
                     Whole<std::uint32_t>(v, 0, std::numeric_limits<std::uint32_t>::max());
               }},
              {"completed",
               [&](const Value& v) {
                 constexpr std::array<std::string_view, 3> kNames = {"YES", "NO", "MAYBE"};
                 OneOf(v, Text(v), kNames);
                 fault.completed = Text(v);
               }},
              {"result", Into(fault.result)},
              {"message", Into(fault.message)},
              {"reason", Into(fault.reason)}});
  if (once && fault.times == 0) fault.times = 1;
  if (fault.operation.empty()) value.Fail("needs an operation");
  if (!value.node.contains("action")) value.Fail("needs an action");
  if (fault.action == Fault::Action::Raise && fault.exception.empty()) {
    value.Fail("needs an exception to raise");
  }
  return fault;
}

template <typename Item>
Reader ListInto(std::vector<Item>& target, Item (*read)(const Value&)) {
  return [&target, read](const Value& value) {
    ReadArray(value, [&](const Value& item) { target.push_back(read(item)); });
  };
}

template <typename Item>
Reader MapInto(std::map<std::string, Item>& target, Item (*read)(const Value&)) {
  return [&target, read](const Value& value) {
    ReadNamed(value,
              [&](const std::string& name, const Value& item) { target[name] = read(item); });
  };
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
  const Value root{document, name, ""};
  ReadObject(
      root,
      {{"server",
        [&](const Value& v) {
          ReadObject(v, {{"version", Into(site.serverVersion)}, {"dbUser", Into(site.dbUser)}});
        }},
       {"userId",
        [&](const Value& v) {
          ReadObject(v, {{"length",
                          [&](const Value& length) {
                            site.userIdLength = Whole<std::size_t>(length, 1, 4096);
                          }},
                         {"text", Into(site.userIdText)}});
        }},
       {"challenge",
        [&](const Value& v) {
          ReadObject(v, {{"lifetimeSeconds",
                          [&](const Value& life) {
                            site.challengeLifetime = std::chrono::seconds(Whole(life, 1, 86'400));
                          }},
                         {"pending", [&](const Value& pending) {
                            site.challengesPending = Whole<std::size_t>(pending, 1, 1024);
                          }}});
        }},
       {"lockout",
        [&](const Value& v) {
          ReadObject(v, {{"tries", [&](const Value& tries) {
                            site.triesBeforeLock = Whole(tries, 0, 1000);
                          }}});
        }},
       {"messages",
        [&](const Value& v) {
          Messages& texts = site.messages;
          ReadObject(v, {{"registered", Into(texts.registered)},
                         {"refused", Into(texts.refused)},
                         {"expired", Into(texts.expired)},
                         {"locked", Into(texts.locked)},
                         {"aboutToExpire", Into(texts.aboutToExpire)}});
        }},
       {"parameters",
        [&](const Value& v) {
          ReadNamed(v, [&](const std::string& section, const Value& names) {
            MapInto(site.parameters[section], ReadParameter)(names);
          });
        }},
       {"versions", ListInto(site.versions, ReadVersionRule)},
       {"loginMessages", ListInto(site.loginMessages, ReadLoginMessage)},
       {"annotationRequired",
        [&](const Value& v) {
          ReadArray(v, [&](const Value& item) { site.annotationRequired.insert(Text(item)); });
        }},
       {"users", MapInto(site.users, ReadUser)},
       {"groups", MapInto(site.groups, ReadGroup)},
       {"callback",
        [&](const Value& v) {
          ReadObject(v, {{"refuse", Into(site.callbackRefused)},
                         {"message", Into(site.callbackMessage)},
                         {"delayMs", Into(site.callbackDelay)}});
        }},
       {"faults", ListInto(site.faults, ReadFault)}});
  CheckGroups(site, root);
  return site;
}

}  // namespace vq::sim
