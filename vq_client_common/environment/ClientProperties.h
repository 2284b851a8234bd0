// The settings of a client program: keys with text values, stored in one file.
//
// The file is "CommonClientConf.xml" in the data location (docs/configuration.md). The library
// reads only the key "LocalHelpFile"; client programs may use any others.
//
//   <Properties>
//   	<LocalHelpFile>1</LocalHelpFile>
//   </Properties>
//
//   ClientProperties* properties = ClientProperties::Get();
//   const int width = properties->GetIntValue("JobList.Width", 640);
//   properties->SetIntValue("JobList.Width", width + 160, false);
//   if (!properties->SaveProperties()) Show("The settings are not saved.");
//
// Limits of the file:
//  - A save overwrites the file. A crash, a full disk or a second client during the save can leave
//    an incomplete file, which loads as empty. A client that must not lose settings makes a copy of
//    the file before it saves, and restores it when the file is incomplete at the next start.
//  - Keys are written as they are. A key that is no XML name makes a file that loads as empty.
//  - "%s" in a key or a value makes a file that loads as empty (see SaveProperties).
//  - Values are written as bytes, and read as UTF-8 and converted to the encoding of the process's
//    locale. So only in a UTF-8 locale does every value come back unchanged.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H

#include <map>
#include <string>

#include <support/Export.h>

// Frees the one instance, among others; see session/GlobalFuncs.h.
VQ_CLIENT_COMMON_API void exit_vqclient_common();

// The table of settings, and its file.
//
// Thread safety: no lock. Only one thread at a time may use the instance, create it with Get, or
// release it.
class VQ_CLIENT_COMMON_API ClientProperties {
 public:
  // The one instance, owned by the class; never null. The first call creates it and loads the file.
  // The table is empty for a file that is missing, malformed, larger than 64 MiB, or that contains
  // declarations such as entities; nothing that the file refers to is opened. When memory runs out
  // it throws, and there is no instance.
  static ClientProperties* Get();

  // A copy has its own table and the same file.
  ClientProperties(const ClientProperties&) = default;
  ClientProperties& operator=(const ClientProperties&) = default;
  virtual ~ClientProperties() = default;

  // The value of `key`, which may be empty; `defaultValue` when there is none. Key, value and
  // default are logged at levels 4 and 5, so they must not be secret.
  std::string GetStringValue(const std::string& key, const std::string& defaultValue);

  // The number at the start of the value: 12 for "12abc", 0 for "abc". `defaultValue` when there is
  // no value or an empty one.
  int GetIntValue(const std::string& key, int defaultValue);

  // Sets a value, and saves the table if `save` is true. A failure to save is only logged: call
  // SaveProperties to get its result.
  void SetStringValue(const std::string& key, const std::string& value, bool save);

  // The same with a number in decimal.
  void SetIntValue(const std::string& key, int value, bool save);

  // Overwrites the file with the table, in the order of the keys. Each line results from the text
  // "\t<%s>%s</%s>\n": its first "%s" is replaced by the key, then the first "%s" of the result by
  // the escaped value, then the first "%s" of that by the key. The text ends at its first zero
  // byte. True when the whole file was written and closed; on false, a line at level 1 has the
  // reason. A missing data location is not created.
  bool SaveProperties();

  // Loads the table from the file again; the table is empty after a failure.
  void Reload();

  // The path of the help page. All languages have the same page, so neither "LocalHelpFile", which
  // is read and logged, nor the system's language changes it.
  std::string getHelpFile();

  // The path of a language's help page below the root (GetVQRootLocation). `language` is unchanged.
  std::string HelpFileBuilder(std::string& language);

  // The one instance; null before the first Get and after its release.
  static ClientProperties* g_pClientProperties;

 protected:
  ClientProperties();

  // Deletes the instance and ends its use of the XML library; does nothing without an instance.
  static void ReleaseStaticObject();

 private:
  friend void ::exit_vqclient_common();

  bool LoadProperties();

  std::map<std::string, std::string> m_properties;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H
