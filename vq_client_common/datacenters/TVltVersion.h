// What kind of scheduler a data center runs, and what that scheduler can do.
//
// Terms. The *type* is the platform: mainframe, distributed, AS/400 or VAX/VMS. The *version* is a
// text of three characters such as "620" or "62A"; the *fix-pack level* a text such as "20", empty
// for none. Versions compare as texts, byte by byte: "50G" is below "600", "62A" at least "620", an
// empty version below everything.
//
//   const TVltVersion version(TVltVersion::TypeFromString("UNIX"), "700", "20");
//   version.FullVer();            // "700.20"
//   version.Version700FP2Plus();  // true
//   std::cout << version;         // [Distributed 700]
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H
#define VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H

#include <iosfwd>
#include <string>
#include <string_view>

#include <support/Export.h>
#include <vq_client_common/datacenters/ArrayWrap.h>

// The platform of a scheduler. Any other number counts as an unknown platform.
enum TVltType : int {
  VLT_TYPE_UNKNOWN = 0,
  VLT_TYPE_MAINFRAME = 1,
  VLT_TYPE_DISTRIBUTED = 2,
  VLT_TYPE_AS400 = 3,
  VLT_TYPE_VAX_VMS = 4,
};

// The same platforms as the server's data number them.
enum PLATFORM_TYPE : int {
  PLATFORM_MAINFRAME = 1,
  PLATFORM_VAX_VMS = 2,
  PLATFORM_AS400 = 3,
  PLATFORM_UNIX_WINDOWS_TANDEM = 4,
};

// A version as a number: 1 to 10 are the versions of the mainframe, 13 to 25 the distributed ones.
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

// Type, version, fix-pack level and the SMART-tables flag, which a copy does not take over: a
// copy-constructed object has it false, and an assignment leaves the target's as it was.
//
// Thread contract: readers side by side, or one writer alone. The static functions keep no state.
class VQ_CLIENT_COMMON_API TVltVersion {
 public:
  // Unknown type, empty version, empty level, flag false.
  TVltVersion() = default;
  // As SetTypeVer; the flag is false.
  TVltVersion(TVltType type, const std::string& version, const std::string& fixPack);
  TVltVersion(const TVltVersion& other);
  TVltVersion& operator=(const TVltVersion& other);
  ~TVltVersion() = default;

  // Stores the version as it is and the level without the blanks around it; "00" becomes empty. The
  // constructor does the same. The SMART-tables flag stays.
  void SetTypeVer(TVltType type, const std::string& version, const std::string& fixPack);

  // The references last as long as the object and change with it.
  TVltType Type() const { return m_type; }
  const std::string& Ver() const { return m_version; }
  const std::string& FPLevel() const { return m_fixPack; }

  // As ComposeFullVersionStr: "700.20", or "700" without a level.
  std::string FullVer() const;
  // As screens show it: "z/OS", "Distributed", "AS/400", "VAX/VMS" or "Unknown".
  std::string TypeAsString() const;
  // As the server writes it: "MVS", "UNIX", "AS/400", "VAX/VMS" or "Unknown".
  std::string TypeAsPLATFORMString() const;

  // The type that a platform text stands for, case-sensitive; VLT_TYPE_UNKNOWN for any other text.
  static TVltType TypeFromString(const std::string& text);
  // An unknown platform gives VLT_TYPE_UNKNOWN, and yet the text "MVS".
  static TVltType PLATFORMtoType(PLATFORM_TYPE platform);
  static std::string PLATFORMtoString(PLATFORM_TYPE platform);
  // The version text of a code; "700" for an unknown one. The second argument is not read.
  static std::string VLTVERtoString(E_VLT_VER version, unsigned int unused);

  // `out` becomes `version`, with a point and `fixPack` behind it unless that is empty. True
  // always.
  static bool ComposeFullVersionStr(const std::string& version, const std::string& fixPack,
                                    std::string& out);
  // Splits at the first point. Without a point both outputs become the whole text. True always.
  static bool SplitFullVersionStr(const std::string& full, std::string& version,
                                  std::string& fixPack);

  // Sets `text` to "UNIX", whatever it held.
  static void UNIXLong2Short(std::string& text);
  // Leaves "UNIX" as it is and sets any other text to "UNIX/Windows/TANDEM".
  static void UNIXShort2Long(std::string& text);

  // Append the platforms that a new data center may have, and the versions of a type, newest first;
  // neither clears the list. VAX/VMS is not offered and has no versions.
  static void GetSupportedVLTTypes(ArrayWrap<std::string>& list);
  static void GetSupportedVersions4Type(TVltType type, ArrayWrap<std::string>& list);

  // Version at least "610", or "700"; whatever the type.
  bool Version610Plus() const;
  bool Version700Plus() const;
  // Version at least "700" and level at least "20", both as texts: the level "3" is enough.
  bool Version700FP2Plus() const;
  // A known type and version at least "600".
  bool SupportsActiveTables() const;
  // Distributed and version at least "700".
  bool SupportsActiveSubTables() const;
  // Mainframe: version at least "620"; unknown: never; all others: version at least "610".
  bool SupportsApplications() const;
  // A known type and version at least "700".
  bool SupportsDifferentGroupFieldInActiveTable() const;
  // Mainframe: always; unknown: never; all others: version at least "700".
  bool SupportAllInTagsSelection() const;

  // The SMART-tables flag: makes operator== look at the fix-pack level of distributed versions.
  bool ControlResourceForSMARTTablesOf700FP2MPMEnabled() const { return m_smartTables; }
  void SetControlResourceForSMARTTablesOf700FP2MPM(bool enabled) { m_smartTables = enabled; }

  // Same type and same version. The level does not count, unless this object's flag is set and the
  // type is distributed: then Version700FP2Plus must be the same of both. The flag of `other` is
  // not looked at, so a == b may differ from b == a.
  bool operator==(const TVltVersion& other) const;
  bool operator!=(const TVltVersion& other) const { return !(*this == other); }

  // Versions have no order: writes one line to the standard error stream and returns false.
  bool operator<(const TVltVersion& other) const;

 private:
  TVltType m_type = VLT_TYPE_UNKNOWN;
  std::string m_version;
  std::string m_fixPack;
  bool m_smartTables = false;
};

// Writes "[" + type as screens show it + " " + version + "]"; the level is not shown.
VQ_CLIENT_COMMON_API std::ostream& operator<<(std::ostream& stream, const TVltVersion& version);

namespace vq {
// The level without the blanks (0x20 alone) around it. For the library itself: not exported.
std::string TrimFixPackLevel(std::string_view level);
}  // namespace vq

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TVLTVERSION_H
