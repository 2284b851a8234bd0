#include <vq_client_common/datacenters/TVltVersion.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <span>
#include <utility>

namespace {

constexpr const char* kUnixShort = "UNIX";
constexpr const char* kUnixLong = "UNIX/Windows/TANDEM";

constexpr const char* kMainframeVersions[] = {"700", "640", "630", "62A",
                                              "620", "610", "600", "500"};
constexpr const char* kDistributedVersions[] = {"700", "640", "630", "620", "613",
                                                "610", "600", "225", "224"};
constexpr const char* kAs400Versions[] = {"610", "600", "225", "224"};

struct TypeRow {
  TVltType type;
  const char* shown;
  const char* platform;
  std::span<const char* const> versions;  // that a new data center may have
};
constexpr TypeRow kUnknownType = {VLT_TYPE_UNKNOWN, "Unknown", "Unknown", {}};
constexpr TypeRow kTypes[] = {
    {VLT_TYPE_MAINFRAME, "z/OS", "MVS", kMainframeVersions},
    {VLT_TYPE_DISTRIBUTED, "Distributed", kUnixShort, kDistributedVersions},
    {VLT_TYPE_AS400, "AS/400", "AS/400", kAs400Versions},
    {VLT_TYPE_VAX_VMS, "VAX/VMS", "VAX/VMS", {}},
};

struct Platform {
  PLATFORM_TYPE platform;
  TVltType type;
  const char* text;
};
// Intentional: an unknown platform has the unknown type, and yet the mainframe's text; screens show
// it.
constexpr Platform kUnknownPlatform = {PLATFORM_TYPE{0}, VLT_TYPE_UNKNOWN, "MVS"};
constexpr Platform kPlatforms[] = {
    {PLATFORM_MAINFRAME, VLT_TYPE_MAINFRAME, "MVS"},
    {PLATFORM_VAX_VMS, VLT_TYPE_VAX_VMS, "VAX/VMS"},
    {PLATFORM_AS400, VLT_TYPE_AS400, "AS/400"},
    {PLATFORM_UNIX_WINDOWS_TANDEM, VLT_TYPE_DISTRIBUTED, kUnixLong},
};

struct VersionCode {
  E_VLT_VER code;
  const char* text;
};
constexpr VersionCode kUnknownVersion = {E_VLT_VER{0}, "700"};
constexpr VersionCode kVersionCodes[] = {
    {VLT_VER_MAINFRAME_400, "400"},   {VLT_VER_MAINFRAME_500, "500"},
    {VLT_VER_MAINFRAME_50G, "50G"},   {VLT_VER_MAINFRAME_600, "600"},
    {VLT_VER_MAINFRAME_610, "610"},   {VLT_VER_MAINFRAME_620, "620"},
    {VLT_VER_MAINFRAME_62A, "62A"},   {VLT_VER_MAINFRAME_630, "630"},
    {VLT_VER_MAINFRAME_640, "640"},   {VLT_VER_MAINFRAME_700, "700"},
    {VLT_VER_DISTRIBUTED_210, "210"}, {VLT_VER_DISTRIBUTED_211, "211"},
    {VLT_VER_DISTRIBUTED_212, "212"}, {VLT_VER_DISTRIBUTED_221, "221"},
    {VLT_VER_DISTRIBUTED_224, "224"}, {VLT_VER_DISTRIBUTED_225, "225"},
    {VLT_VER_DISTRIBUTED_600, "600"}, {VLT_VER_DISTRIBUTED_610, "610"},
    {VLT_VER_DISTRIBUTED_613, "613"}, {VLT_VER_DISTRIBUTED_620, "620"},
    {VLT_VER_DISTRIBUTED_630, "630"}, {VLT_VER_DISTRIBUTED_640, "640"},
    {VLT_VER_DISTRIBUTED_700, "700"},
};

constexpr const char* kSupportedTypes[] = {"MVS", kUnixLong, "AS/400"};

// The row of `table` whose `field` is `key`, or `otherwise`.
template <typename Row, std::size_t Size, typename Key>
const Row& FindRow(const Row (&table)[Size], Key Row::*field, const Key& key,
                   const Row& otherwise) {
  const auto found = std::ranges::find(table, key, field);
  return found != std::end(table) ? *found : otherwise;
}

std::string StoredFixPackLevel(const std::string& fixPack) {
  std::string level = vq::TrimFixPackLevel(fixPack);
  if (level == "00") level.clear();
  return level;
}

}  // namespace

std::string vq::TrimFixPackLevel(std::string_view level) {
  const std::size_t first = level.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    // Intentional: one blank is an empty level; two or more stay as a level, which screens show.
    return std::string(level.size() == 1 ? std::string_view() : level);
  }
  return std::string(level.substr(first, level.find_last_not_of(' ') + 1 - first));
}

TVltVersion::TVltVersion(TVltType type, const std::string& version, const std::string& fixPack)
    : m_type(type), m_version(version), m_fixPack(StoredFixPackLevel(fixPack)) {}

// Intentional: the SMART-tables flag is not copied; TDC::UpdateFull depends on that.
TVltVersion::TVltVersion(const TVltVersion& other)
    : m_type(other.m_type), m_version(other.m_version), m_fixPack(other.m_fixPack) {}

TVltVersion& TVltVersion::operator=(const TVltVersion& other) {
  m_type = other.m_type;
  m_version = other.m_version;
  m_fixPack = other.m_fixPack;
  return *this;
}

void TVltVersion::SetTypeVer(TVltType type, const std::string& version,
                             const std::string& fixPack) {
  std::string level = StoredFixPackLevel(fixPack);  // first: both strings may belong to this object
  m_type = type;
  m_version = version;
  m_fixPack = std::move(level);
}

std::string TVltVersion::FullVer() const {
  std::string full;
  ComposeFullVersionStr(m_version, m_fixPack, full);
  return full;
}

std::string TVltVersion::TypeAsString() const {
  return FindRow(kTypes, &TypeRow::type, m_type, kUnknownType).shown;
}

std::string TVltVersion::TypeAsPLATFORMString() const {
  return FindRow(kTypes, &TypeRow::type, m_type, kUnknownType).platform;
}

TVltType TVltVersion::TypeFromString(const std::string& text) {
  if (text == kUnixLong || text == "UNIX/NT/TANDEM") return VLT_TYPE_DISTRIBUTED;
  const auto found = std::ranges::find_if(
      kTypes, [&text](const TypeRow& row) { return text == row.shown || text == row.platform; });
  return found != std::end(kTypes) ? found->type : VLT_TYPE_UNKNOWN;
}

TVltType TVltVersion::PLATFORMtoType(PLATFORM_TYPE platform) {
  return FindRow(kPlatforms, &Platform::platform, platform, kUnknownPlatform).type;
}

std::string TVltVersion::PLATFORMtoString(PLATFORM_TYPE platform) {
  return FindRow(kPlatforms, &Platform::platform, platform, kUnknownPlatform).text;
}

std::string TVltVersion::VLTVERtoString(E_VLT_VER version, unsigned int /*unused*/) {
  return FindRow(kVersionCodes, &VersionCode::code, version, kUnknownVersion).text;
}

bool TVltVersion::ComposeFullVersionStr(const std::string& version, const std::string& fixPack,
                                        std::string& out) {
  out = fixPack.empty() ? version : version + "." + fixPack;
  return true;
}

bool TVltVersion::SplitFullVersionStr(const std::string& full, std::string& version,
                                      std::string& fixPack) {
  const std::string whole = full;  // the outputs may be the same object as the input
  const std::size_t point = whole.find('.');
  version = whole.substr(0, point);
  // Intentional: without a point the level is the whole text, too, not empty; clients display it.
  fixPack = point != std::string::npos ? whole.substr(point + 1) : whole;
  return true;
}

// Intentional: every text is replaced, "MVS" too; clients depend on the short form.
void TVltVersion::UNIXLong2Short(std::string& text) {
  text = kUnixShort;
}

// Intentional: any string but the short form becomes the long one; clients offer it as the default.
void TVltVersion::UNIXShort2Long(std::string& text) {
  if (text != kUnixShort) text = kUnixLong;
}

void TVltVersion::GetSupportedVLTTypes(ArrayWrap<std::string>& list) {
  for (const char* const type : kSupportedTypes) list.Append(type);
}

void TVltVersion::GetSupportedVersions4Type(TVltType type, ArrayWrap<std::string>& list) {
  const TypeRow& row = FindRow(kTypes, &TypeRow::type, type, kUnknownType);
  for (const char* const version : row.versions) list.Append(version);
}

// Intentional, here and in Version700Plus: the type is not tested, so an unknown platform may pass.
bool TVltVersion::Version610Plus() const {
  return m_version >= "610";
}

bool TVltVersion::Version700Plus() const {
  return m_version >= "700";
}

// Intentional: levels are compared as texts, so "3" is above "20"; levels have two digits.
bool TVltVersion::Version700FP2Plus() const {
  return Version700Plus() && m_fixPack >= "20";
}

bool TVltVersion::SupportsActiveTables() const {
  return m_type != VLT_TYPE_UNKNOWN && m_version >= "600";
}

bool TVltVersion::SupportsActiveSubTables() const {
  return m_type == VLT_TYPE_DISTRIBUTED && Version700Plus();
}

bool TVltVersion::SupportsApplications() const {
  if (m_type == VLT_TYPE_UNKNOWN) return false;
  return m_type == VLT_TYPE_MAINFRAME ? m_version >= "620" : Version610Plus();
}

bool TVltVersion::SupportsDifferentGroupFieldInActiveTable() const {
  return m_type != VLT_TYPE_UNKNOWN && Version700Plus();
}

bool TVltVersion::SupportAllInTagsSelection() const {
  if (m_type == VLT_TYPE_MAINFRAME) return true;
  return m_type != VLT_TYPE_UNKNOWN && Version700Plus();
}

bool TVltVersion::operator==(const TVltVersion& other) const {
  if (m_type != other.m_type || m_version != other.m_version) return false;
  // Intentional: only the left operand's flag counts, and only it makes the level count.
  if (m_smartTables && m_type == VLT_TYPE_DISTRIBUTED) {
    return Version700FP2Plus() == other.Version700FP2Plus();
  }
  return true;
}

// Intentional: versions have no order, and the line shows a caller that sorts them by mistake.
bool TVltVersion::operator<(const TVltVersion& /*other*/) const {
  std::cerr << "TVltVersion::operator< NOT IMPLEMENTED YET!" << std::endl;
  return false;
}

std::ostream& operator<<(std::ostream& stream, const TVltVersion& version) {
  return stream << '[' << version.TypeAsString() << ' ' << version.Ver() << ']';
}
