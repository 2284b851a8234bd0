// The version of a data center's scheduler, and the features of that version.
//
// Terms. The *type* is the platform: mainframe, distributed, AS/400 or VAX/VMS. The *version* is a
// string of three characters such as "620" or "62A"; the *fix-pack level* is a string such as "20",
// empty for none. Versions are compared as texts, byte by byte: "50G" is below "600", "62A" is
// above "620", an empty version is below all others.
//
//   const TVltVersion version(TVltVersion::TypeFromString("UNIX"), "700", "20");
//   version.FullVer();            // "700.20"
//   version.Version700FP2Plus();  // true
//   std::cout << version;         // "[Distributed 700]"
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H
#define VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H

#include <iosfwd>
#include <string>
#include <string_view>

#include <support/Export.h>
#include <vq_client_common/datacenters/ArrayWrap.h>

// The platform of a scheduler. Any other number counts as VLT_TYPE_UNKNOWN.
enum TVltType : int {
  VLT_TYPE_UNKNOWN = 0,
  VLT_TYPE_MAINFRAME = 1,
  VLT_TYPE_DISTRIBUTED = 2,
  VLT_TYPE_AS400 = 3,
  VLT_TYPE_VAX_VMS = 4,
};

// The numbers of the same platforms in the server's data.
enum PLATFORM_TYPE : int {
  PLATFORM_MAINFRAME = 1,
  PLATFORM_VAX_VMS = 2,
  PLATFORM_AS400 = 3,
  PLATFORM_UNIX_WINDOWS_TANDEM = 4,
};

// Versions as numbers: 1 to 10 for the mainframe, 13 to 25 for distributed schedulers.
enum E_VLT_VER : int {
  VLT_VER_MAINFRAME_400 = 1,
  VLT_VER_MAINFRAME_500 = 2,
  VLT_VER_MAINFRAME_50G = 3,
  VLT_VER_MAINFRAME_600 = 4,
  VLT_VER_MAINFRAME_610 = 5,
  VLT_VER_MAINFRAME_620 = 6,
  VLT_VER_MAINFRAME_62A = 7,
  VLT_VER_MAINFRAME_630 = 8,
  VLT_VER_MAINFRAME_640 = 9,
  VLT_VER_MAINFRAME_700 = 10,
  VLT_VER_DISTRIBUTED_210 = 13,
  VLT_VER_DISTRIBUTED_211 = 14,
  VLT_VER_DISTRIBUTED_212 = 15,
  VLT_VER_DISTRIBUTED_221 = 16,
  VLT_VER_DISTRIBUTED_224 = 17,
  VLT_VER_DISTRIBUTED_225 = 18,
  VLT_VER_DISTRIBUTED_600 = 19,
  VLT_VER_DISTRIBUTED_610 = 20,
  VLT_VER_DISTRIBUTED_613 = 21,
  VLT_VER_DISTRIBUTED_620 = 22,
  VLT_VER_DISTRIBUTED_630 = 23,
  VLT_VER_DISTRIBUTED_640 = 24,
  VLT_VER_DISTRIBUTED_700 = 25,
};

// The version of one scheduler: type, version, fix-pack level, and the SMART-tables flag. The flag
// is not copied: it is false in a copy, and an assignment leaves it unchanged.
class VQ_CLIENT_COMMON_API TVltVersion {
 public:
  // Unknown type, empty version, empty level, flag false.
  TVltVersion() = default;
  // Sets the values as SetTypeVer does; the flag is false.
  TVltVersion(TVltType type, const std::string& version, const std::string& fixPack);
  TVltVersion(const TVltVersion& other);
  TVltVersion& operator=(const TVltVersion& other);
  ~TVltVersion() = default;

  // Sets the version, and the level without blanks at its ends; the level "00" becomes empty. The
  // SMART-tables flag is unchanged.
  void SetTypeVer(TVltType type, const std::string& version, const std::string& fixPack);

  // The stored values; the references are valid as long as the object.
  TVltType Type() const { return m_type; }
  const std::string& Ver() const { return m_version; }
  const std::string& FPLevel() const { return m_fixPack; }

  // Version and level: "700.20", or "700" without a level.
  std::string FullVer() const;
  // The type's name for users: "z/OS", "Distributed", "AS/400", "VAX/VMS" or "Unknown".
  std::string TypeAsString() const;
  // The type's name in the server's data: "MVS", "UNIX", "AS/400", "VAX/VMS" or "Unknown".
  std::string TypeAsPLATFORMString() const;

  // The type of a name of either kind, case sensitive; VLT_TYPE_UNKNOWN for any other string.
  static TVltType TypeFromString(const std::string& text);
  // Type and name of a platform number; VLT_TYPE_UNKNOWN and "MVS" for an unknown number.
  static TVltType PLATFORMtoType(PLATFORM_TYPE platform);
  static std::string PLATFORMtoString(PLATFORM_TYPE platform);
  // The version of a number; "700" for an unknown number. The second argument is not used.
  static std::string VLTVERtoString(E_VLT_VER version, unsigned int unused);

  // Sets `out` to `version`, "." and `fixPack`, or to `version` alone when `fixPack` is empty.
  // Returns true.
  static bool ComposeFullVersionStr(const std::string& version, const std::string& fixPack,
                                    std::string& out);
  // Splits `full` at its first point. Without one, both outputs become the whole text. Returns
  // true.
  static bool SplitFullVersionStr(const std::string& full, std::string& version,
                                  std::string& fixPack);

  // Sets `text` to "UNIX", whatever it was.
  static void UNIXLong2Short(std::string& text);
  // Sets any string but "UNIX" to "UNIX/Windows/TANDEM". (So "UNIX" itself is unchanged.)
  static void UNIXShort2Long(std::string& text);

  // Append the platforms that a new data center may have, or the versions of a type, newest first.
  // VAX/VMS is not among the platforms and has no versions.
  static void GetSupportedVLTTypes(ArrayWrap<std::string>& list);
  static void GetSupportedVersions4Type(TVltType type, ArrayWrap<std::string>& list);

  // Whether the version is at least "610", or "700", for every type.
  bool Version610Plus() const;
  bool Version700Plus() const;
  // Whether the version is at least "700" and the level at least "20". The level is compared as a
  // text, too: "3" is above "20".
  bool Version700FP2Plus() const;
  // Whether the type is known and the version at least "600".
  bool SupportsActiveTables() const;
  // Whether the type is distributed and the version at least "700".
  bool SupportsActiveSubTables() const;
  // Whether the version is at least "620" (mainframe) or "610" (other types); false when unknown.
  bool SupportsApplications() const;
  // Whether the type is known and the version at least "700".
  bool SupportsDifferentGroupFieldInActiveTable() const;
  // True for the mainframe, false for an unknown type; else whether the version is at least "700".
  bool SupportAllInTagsSelection() const;

  // The SMART-tables flag: whether operator== compares the fix-pack level of distributed versions.
  bool ControlResourceForSMARTTablesOf700FP2MPMEnabled() const { return m_smartTables; }
  void SetControlResourceForSMARTTablesOf700FP2MPM(bool enabled) { m_smartTables = enabled; }

  // Whether type and version are equal. When this object's flag is set and the type is distributed,
  // Version700FP2Plus must be equal, too. The flag of `other` is not used, so a == b may differ
  // from b == a.
  bool operator==(const TVltVersion& other) const;
  bool operator!=(const TVltVersion& other) const { return !(*this == other); }

  // Not implemented: writes one line to stderr and returns false.
  bool operator<(const TVltVersion& other) const;

 private:
  TVltType m_type = VLT_TYPE_UNKNOWN;
  std::string m_version;
  std::string m_fixPack;
  bool m_smartTables = false;
};

// Writes "[" + TypeAsString() + " " + Ver() + "]".
VQ_CLIENT_COMMON_API std::ostream& operator<<(std::ostream& stream, const TVltVersion& version);

namespace vq {
// The level without blanks (0x20) at its ends. For use in the library; not exported.
std::string TrimFixPackLevel(std::string_view level);
}  // namespace vq

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H
