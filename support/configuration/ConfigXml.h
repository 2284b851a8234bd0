// The configuration domain in an XML file; ConfigAPI.h tells what callers may rely on.
//
// How a save works. The object remembers its changes one by one. A save takes the domain's lock
// ("<name>.xml.lock"), reads the file again, makes the changes to what it found, and replaces the
// file (SafeFile.h). So two writers that loaded the same file do not undo one another's changes,
// and comments and unknown elements stay.
#ifndef VQ_SUPPORT_CONFIGURATION_CONFIGXML_H
#define VQ_SUPPORT_CONFIGURATION_CONFIGXML_H

#include <chrono>
#include <vector>

#include <support/configuration/ConfigAPI.h>
#include <support/configuration/ConfigDocument.h>

namespace vq {

// Thread contract: that of ConfigAPI.
class ConfigXml : public ConfigAPI {
 public:
  // A file with more bytes than this is taken for a fault.
  static constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

  // `wait` is how long a save waits for another writer. `below` is the directory of a weaker layer
  // of the domain, which is read only; empty for none.
  ConfigXml(const std::string& directory, const std::string& name, std::chrono::milliseconds wait,
            const std::string& below = {});

  bool Load() override;
  bool Save() override;
  const std::string& Error() const override { return m_error; }
  std::optional<std::string> GetVar(const std::string& scope,
                                    const std::string& name) const override;
  bool SetVar(const std::string& scope, const std::string& name, const std::string& value) override;
  bool RemoveVar(const std::string& scope, const std::string& name) override;
  bool RemoveScope(const std::string& scope) override;
  std::list<std::string> GetScopes() const override;
  void GetScopeAndDefaultVars(const std::string& scope,
                              std::map<std::string, std::string>& table) const override;

 private:
  bool ReadInto(const std::string& path, ConfigDocument& document);
  std::optional<ConfigScopes> ReadScopes(const std::string& path);  // none of a missing file
  bool Complain(const std::string& error);

  const std::string m_path;   // empty when the name is none
  const std::string m_below;  // the weaker layer's file; empty for none
  const std::chrono::milliseconds m_wait;
  ConfigScopes m_weaker;  // what the weaker layer has
  ConfigScopes m_scopes;
  std::vector<ConfigChange> m_changes;
  std::string m_error;
};

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGXML_H
