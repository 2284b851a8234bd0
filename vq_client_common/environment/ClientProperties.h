// The settings of a client process: keys with text values, kept in one file between runs.
//
// The file is "CommonClientConf.xml" in the data location (VQ_DATA; see docs/configuration.md):
//
//   <Properties>
//   	<LocalHelpFile>1</LocalHelpFile>
//   </Properties>
//
// Any key is accepted; the library itself reads "LocalHelpFile" alone. Example:
//
//   ClientProperties* properties = ClientProperties::Get();
//   const int width = properties->GetIntValue("JobList.Width", 640);
//   properties->SetIntValue("JobList.Width", 800, true);   // true: and save
//
// What a client should know before it trusts the file with something:
//  - Saving opens the file, which empties it, and then writes it. There is no temporary file and no
//    copy. A crash, a full disk or a second client in between leaves a file that is cut short, and
//    such a file loads as empty. A client that must not lose its settings copies the file before it
//    saves, and copies it back when the next start finds it cut.
//  - Keys are written as they are. One that is no XML name makes a file that loads as empty.
//  - "%s" in a key or value is taken for a mark of the line's template (see SaveProperties), and
//    the file that comes of it loads as empty.
//  - Values are written byte by byte and read as UTF-8, which then comes in the encoding of the
//    process's locale. Only in a UTF-8 locale does every value come back as it was.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H

#include <map>
#include <string>

#include <support/Export.h>

// Frees the one instance among others; see session/GlobalFuncs.h.
VQ_CLIENT_COMMON_API void exit_vqclient_common();

// Thread safety: one thread at a time for the instance and for making and releasing it.
class VQ_CLIENT_COMMON_API ClientProperties {
 public:
  // The one instance, made and loaded on first use; owned by the class, never null. A file that is
  // missing or malformed gives an empty table, and so does one that may be meant to harm: of more
  // than 64 MiB, or with entities or other declarations of its own. Nothing that it names is
  // opened. Throws what LoadProperties lets through, and then there is no instance.
  static ClientProperties* Get();

  // A copy is a table of its own that saves to the same file.
  ClientProperties(const ClientProperties&) = default;
  ClientProperties& operator=(const ClientProperties&) = default;
  virtual ~ClientProperties() = default;

  // The value stored under `key`, which may be empty; `defaultValue` when there is none. The
  // default is not stored. Key, value and default go to the log at levels 4 and 5, so a secret must
  // not be one.
  std::string GetStringValue(const std::string& key, const std::string& defaultValue);

  // The number that the stored value starts with, 0 when it starts with none: "12abc" is 12, "abc"
  // is 0. `defaultValue` only when there is no value, or an empty one.
  int GetIntValue(const std::string& key, int defaultValue);

  // Inserts or replaces a value, and with `save` saves the table; whether that worked is not told.
  void SetStringValue(const std::string& key, const std::string& value, bool save);

  // The same with the number in decimal.
  void SetIntValue(const std::string& key, int value, bool save);

  // Writes the table over the file, keys in byte order. Each line comes of the template
  // "\t<%s>%s</%s>\n", in which the first "%s" is replaced by the key, the next first one by the
  // escaped value and the next by the key again. The text ends before its first zero byte. True
  // when the whole file was written and closed; on false, a level 1 line tells which step failed.
  // The data location is not made where it is missing.
  bool SaveProperties();

  // Empties the table and loads it from the file again. A failed load leaves it empty.
  void Reload();

  // The path of the page to show for help, under the root (GetVQRootLocation). With "LocalHelpFile"
  // other than 0 the page of the system's language is tried first; it is the same page today.
  std::string getHelpFile();

  // The path of the help page of a language, relative to the root. `language` is not changed.
  std::string HelpFileBuilder(std::string& language);

  // The one instance; null before the first Get and after the release.
  static ClientProperties* g_pClientProperties;

 protected:
  ClientProperties();

  // Deletes the instance and stops the XML library once. Nothing when there is no instance.
  static void ReleaseStaticObject();

 private:
  friend void ::exit_vqclient_common();

  bool LoadProperties();

  std::map<std::string, std::string> m_properties;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_CLIENTPROPERTIES_H
