// A configuration domain: named variables with text values, in named scopes.
//
// The scope "default" holds what is common; another scope, such as that of one ORB, holds what
// differs there. The domain lies in one XML file, "<directory>/<name>.xml":
//
//   <domain>
//     <scope name="default">
//       <var name="-ORBListenEndpoints">iiop://</var>
//     </scope>
//   </domain>
//
// Example:
//
//   const auto domain = ConfigAPIFactoryXML::Create(GetConfigDomainsDir(), GetConfigDomainName());
//   if (!domain->Load()) return Complain(domain->Error());
//   domain->SetVar("default", "-BiDirPolicy", "1");
//   if (!domain->Save()) Complain(domain->Error());
#ifndef VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H
#define VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H

#include <list>
#include <map>
#include <optional>
#include <string>

// A copy of one domain in memory, empty until loaded, with the changes made to it. Names and values
// are UTF-8 and told apart by case. Thread contract: one thread an object; objects of the same
// domain may live on any threads and in any processes.
class ConfigAPI {
 public:
  virtual ~ConfigAPI() = default;
  ConfigAPI(const ConfigAPI&) = delete;
  ConfigAPI& operator=(const ConfigAPI&) = delete;

  // Replaces the copy by what the file holds and drops changes not saved. A missing file gives an
  // empty domain. Returns false, and leaves the copy as it is, when the file is malformed, too
  // large or can't be read.
  virtual bool Load() = 0;

  // Brings the changes made since the last Load or Save into the file as it is by then, so that
  // what another writer saved in between stays, and takes over the outcome. The file holds its old
  // or its new content at every moment, whatever happens to the process or the machine. Without a
  // change nothing is written. Returns false, and leaves file and changes as they are, when the
  // file is malformed, another writer holds it for long, or writing fails.
  virtual bool Save() = 0;

  // Why the last Load or Save returned false, for a person to read; empty after one that did not.
  virtual const std::string& Error() const = 0;

  // The variable's value in this very scope, which may be empty; nothing when it is not there.
  virtual std::optional<std::string> GetVar(const std::string& scope,
                                            const std::string& name) const = 0;

  // Sets the variable, making the scope where it is missing. Returns false and changes nothing when
  // scope or name is empty, or one of the three is no text that XML can hold.
  virtual bool SetVar(const std::string& scope, const std::string& name,
                      const std::string& value) = 0;

  // Each returns whether there was something to remove. A scope stays when its last variable goes.
  virtual bool RemoveVar(const std::string& scope, const std::string& name) = 0;
  virtual bool RemoveScope(const std::string& scope) = 0;

  // The names of the scopes: "default" first where there is one, then the others in byte order.
  virtual std::list<std::string> GetScopes() const = 0;

  // Puts every variable that is in force in `scope` into `table`, replacing entries of the same
  // name: the scope's own values, and those of "default" that it does not set itself. An unknown
  // scope has those of "default" alone.
  virtual void GetScopeAndDefaultVars(const std::string& scope,
                                      std::map<std::string, std::string>& table) const = 0;

 protected:
  ConfigAPI() = default;
};

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H
