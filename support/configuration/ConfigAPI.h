// A configuration domain: named variables with text values, in named scopes.
//
// The scope "default" holds what is common; another scope, such as that of one ORB, holds what
// differs there. The domain is one XML file, "<directory>/<name>.xml":
//
//   <domain>
//     <scope name="default">
//       <var name="-ORBListenEndpoints">iiop://</var>
//     </scope>
//   </domain>
//
// Example:
//
//   const auto domain = ConfigAPIFactoryXML::Create("/opt/vq/config/", "vq");
//   if (!domain->Load()) return Complain(domain->Error());
//   domain->SetVar("default", "-BiDirPolicy", "1");
//   if (!domain->Save()) Complain(domain->Error());
//
// How a save works. The object remembers its changes one by one. A save takes the domain's lock
// ("<name>.xml.lock"), reads the file again, applies the changes to what it found, and replaces the
// file (SafeFile.h). So two writers that loaded the same file keep each other's changes, and
// comments and unknown elements stay.
#ifndef VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H
#define VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H

#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vq {

class ConfigDocument;

using ConfigVariables = std::map<std::string, std::string>;
using ConfigScopes = std::map<std::string, ConfigVariables>;

// The scope whose variables apply in every scope that does not set them itself.
inline constexpr const char* kDefaultScope = "default";

struct ConfigChange {
  enum class Kind { kSetVar, kRemoveVar, kRemoveScope };
  Kind kind;
  std::string scope;
  std::string name;   // ignored by kRemoveScope
  std::string value;  // kSetVar only
};

}  // namespace vq

// A copy of one domain in memory, empty until loaded, with the changes made to it. Names and values
// are UTF-8 and case sensitive. Several objects may share a domain, in any threads and processes.
class ConfigAPI {
 public:
  // A larger file is an error.
  static constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

  // `wait` is how long a save waits for another writer. `below` is the directory of a weaker layer
  // of the domain, which is only read; empty for none.
  ConfigAPI(const std::string& directory, const std::string& name,
            std::chrono::milliseconds wait = std::chrono::seconds(10),
            const std::string& below = {});
  ConfigAPI(const ConfigAPI&) = delete;
  ConfigAPI& operator=(const ConfigAPI&) = delete;

  // Replaces the copy by the file's content and drops unsaved changes. A missing file gives an
  // empty domain. Returns false, and leaves the copy as it is, when the file is malformed, too
  // large or can't be read.
  bool Load();

  // Applies the changes made since the last Load or Save to the file as it is by then, so that what
  // another writer saved in between stays, and reads the result back. The file holds its old or its
  // new content at every moment, whatever happens to the process or the host. Without a change
  // nothing is written. Returns false, and leaves file and changes as they are, when the file is
  // malformed, another writer holds it for too long, or writing fails.
  bool Save();

  // Why the last Load or Save returned false, for a person to read; empty after a success.
  const std::string& Error() const { return m_error; }

  // The variable's value in exactly this scope, which may be empty; nothing when it is not there.
  std::optional<std::string> GetVar(const std::string& scope, const std::string& name) const;

  // Sets the variable, and adds the scope where it is missing. Returns false and changes nothing
  // when scope or name is empty, or one of the three is a string that XML cannot hold.
  bool SetVar(const std::string& scope, const std::string& name, const std::string& value);

  // Each returns whether there was something to remove. A scope stays when its last variable goes.
  bool RemoveVar(const std::string& scope, const std::string& name);
  bool RemoveScope(const std::string& scope);

  // The names of the scopes: "default" first where there is one, then the others in byte order.
  std::list<std::string> GetScopes() const;

  // Every scope with its own variables.
  const vq::ConfigScopes& Scopes() const { return m_scopes; }

  // Puts every variable that applies in `scope` into `table`, replacing entries of the same name:
  // the scope's own values, and those of "default" that it does not set itself. An unknown scope
  // has those of "default" alone.
  void GetScopeAndDefaultVars(const std::string& scope,
                              std::map<std::string, std::string>& table) const;

 private:
  bool ReadInto(const std::string& path, vq::ConfigDocument& document);
  std::optional<vq::ConfigScopes> ReadScopes(const std::string& path);  // no scopes without a file
  bool Complain(const std::string& error);

  const std::string m_path;   // empty when the name cannot be a file's
  const std::string m_below;  // the weaker layer's file; empty for none
  const std::chrono::milliseconds m_wait;
  vq::ConfigScopes m_weaker;  // the weaker layer's content
  vq::ConfigScopes m_scopes;
  std::vector<vq::ConfigChange> m_changes;
  std::string m_error;
};

// Makes configuration domains in XML files.
class ConfigAPIFactoryXML {
 public:
  // A domain in the file `directory`/`name`.xml; never null. Nothing is read yet. A name that is
  // empty or contains a "/", and a zero byte in either, make Load and Save fail.
  static std::unique_ptr<ConfigAPI> Create(const std::string& directory, const std::string& name);

  // The domain that the environment names (GetConfigDomainsDir, GetConfigDomainName). Reads show
  // the file there over those of the weaker layers: a value in any scope of a stronger layer that
  // applies hides those of the weaker ones, so that its "default" comes before their other scopes.
  // A save writes the one file. A variable of a weaker layer cannot be removed, only overridden.
  static std::unique_ptr<ConfigAPI> CreateInForce();
};

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGAPI_H
