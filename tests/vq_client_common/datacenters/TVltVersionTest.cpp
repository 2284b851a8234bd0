#include <vq_client_common/datacenters/TVltVersion.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

TVltVersion Make(int type, const std::string& version, const std::string& level = "") {
  return {static_cast<TVltType>(type), version, level};
}

// The index of a row is the number of the type, the platform or the code.
using Texts = std::vector<const char*>;

TEST(TVltVersionTest, TypesAndTheirTexts) {
  const Texts shown = {"Unknown", "z/OS", "Distributed", "AS/400", "VAX/VMS", "Unknown"};
  const Texts platform = {"Unknown", "MVS", "UNIX", "AS/400", "VAX/VMS", "Unknown"};
  const Texts read[] = {{"", "unix", "MVS ", "Unknown"},
                        {"MVS", "z/OS"},
                        {"Distributed", "UNIX/Windows/TANDEM", "UNIX", "UNIX/NT/TANDEM"},
                        {"AS/400"},
                        {"VAX/VMS"}};
  for (int type = 0; const char* const text : shown) {
    EXPECT_EQ(Make(type, "").TypeAsString(), text);
    EXPECT_EQ(Make(type, "").TypeAsPLATFORMString(), platform[static_cast<std::size_t>(type)]);
    ++type;
  }
  EXPECT_EQ(Make(-1, "").TypeAsString(), "Unknown");
  for (int type = 0; const Texts& texts : read) {
    for (const char* const text : texts) EXPECT_EQ(TVltVersion::TypeFromString(text), type) << text;
    ++type;
  }
}

TEST(TVltVersionTest, PlatformsAndCodesOfTheServer) {
  const int types[] = {0, 1, 4, 3, 2, 0};
  for (int platform = 0;
       const char* const text : {"MVS", "MVS", "VAX/VMS", "AS/400", "UNIX/Windows/TANDEM", "MVS"}) {
    EXPECT_EQ(TVltVersion::PLATFORMtoString(static_cast<PLATFORM_TYPE>(platform)), text);
    EXPECT_EQ(TVltVersion::PLATFORMtoType(static_cast<PLATFORM_TYPE>(platform)), types[platform]);
    ++platform;
  }
  for (int code = 0;
       const char* const text : {"700", "400", "500", "50G", "600", "610", "620", "62A", "630",
                                 "640", "700", "700", "700", "210", "211", "212", "221", "224",
                                 "225", "600", "610", "613", "620", "630", "640", "700", "700"}) {
    EXPECT_EQ(TVltVersion::VLTVERtoString(static_cast<E_VLT_VER>(code), 7), text) << code;
    ++code;
  }
}

TEST(TVltVersionTest, FixPackLevelsAreTrimmed) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},         {" ", ""},         {"  ", "  "},      {"20 ", "20"},  {"  20", "20"},
      {" 20  ", "20"},  {"00", ""},        {" 00 ", ""},      {"000", "000"}, {"0", "0"},
      {"\t20", "\t20"}, {" \t20", "\t20"}, {"20\t ", "20\t"}, {"2 0", "2 0"}};
  for (const auto& [given, stored] : cases) {
    TVltVersion set;
    set.SetTypeVer(VLT_TYPE_DISTRIBUTED, " 7 ", given);
    EXPECT_EQ(set.FPLevel(), stored) << '"' << given << '"';
    EXPECT_EQ(Make(2, "", given).FPLevel(), stored) << '"' << given << '"';
    EXPECT_EQ(set.Ver(), " 7 ");
  }
  TVltVersion own = Make(2, "700", "20");
  own.SetTypeVer(VLT_TYPE_AS400, own.FPLevel(), own.Ver());
  EXPECT_EQ(own.FullVer(), "20.700");
  EXPECT_EQ(Make(2, "700", "00").FullVer(), "700");
}

TEST(TVltVersionTest, FullVersionsSplitAtTheFirstPoint) {
  const char* const cases[][3] = {
      {"700.20", "700", "20"},     {"640", "640", "640"}, {"", "", ""},
      {"700.20.1", "700", "20.1"}, {".", "", ""},         {"700.", "700", ""}};
  for (const auto& [full, expectedVersion, expectedLevel] : cases) {
    std::string version = full;
    std::string level;
    EXPECT_TRUE(TVltVersion::SplitFullVersionStr(version, version, level));  // In place, too.
    EXPECT_EQ(version, expectedVersion) << full;
    EXPECT_EQ(level, expectedLevel) << full;
  }
}

TEST(TVltVersionTest, TheUnixFormsAreOneSided) {
  for (const std::string given : {"UNIX", "UNIX/Windows/TANDEM", "UNIX/NT/TANDEM", "MVS", ""}) {
    std::string text = given;
    TVltVersion::UNIXShort2Long(text);
    EXPECT_EQ(text, given == "UNIX" ? "UNIX" : "UNIX/Windows/TANDEM") << given;
    text = given;
    TVltVersion::UNIXLong2Short(text);
    EXPECT_EQ(text, "UNIX") << given;
  }
}

TEST(TVltVersionTest, Predicates) {
  const int types[] = {0, 1, 2, 3, 4, 9};
  const struct {
    bool (TVltVersion::*predicate)() const;
    const char* lowest[6];  // the lowest version of each type that passes; "~" for none
  } cases[] = {
      {&TVltVersion::Version610Plus, {"610", "610", "610", "610", "610", "610"}},
      {&TVltVersion::Version700Plus, {"700", "700", "700", "700", "700", "700"}},
      {&TVltVersion::SupportsActiveTables, {"~", "600", "600", "600", "600", "600"}},
      {&TVltVersion::SupportsActiveSubTables, {"~", "~", "700", "~", "~", "~"}},
      {&TVltVersion::SupportsApplications, {"~", "620", "610", "610", "610", "610"}},
      {&TVltVersion::SupportsDifferentGroupFieldInActiveTable,
       {"~", "700", "700", "700", "700", "700"}},
      {&TVltVersion::SupportAllInTagsSelection, {"~", "", "700", "700", "700", "700"}},
  };
  for (const std::string version : {"", "50G", "6", "60", "600", "6000", "609", "61", "610", "61A",
                                    "619", "620", "62A", "69Z", "70", "700", "7000", "A00"}) {
    for (int row = 0; const auto& [predicate, lowest] : cases) {
      for (int i = 0; i < 6; ++i) {
        EXPECT_EQ((Make(types[i], version).*predicate)(), version >= lowest[i])
            << "row " << row << ", type " << types[i] << ", version " << version;
      }
      ++row;
    }
  }
}

TEST(TVltVersionTest, FixPackTwoIsJudgedByTheText) {
  for (const char* const level : {"20", "21", "3", "9", "A"})
    EXPECT_TRUE(Make(0, "700", level).Version700FP2Plus()) << level;
  for (const char* const level : {"", "00", "10", "1", "2", "19"})
    EXPECT_FALSE(Make(2, "700", level).Version700FP2Plus()) << level;
  EXPECT_FALSE(Make(2, "640", "30").Version700FP2Plus());
}

TEST(TVltVersionTest, EqualityLooksAtTheLevelOnlyUnderTheLeftFlag) {
  TVltVersion ten = Make(2, "700", "10");
  TVltVersion twenty = Make(2, "700", "20");
  EXPECT_TRUE(ten == twenty);
  ten.SetControlResourceForSMARTTablesOf700FP2MPM(true);
  EXPECT_FALSE(ten == twenty);
  EXPECT_TRUE(ten != twenty);
  EXPECT_TRUE(twenty == ten);
  EXPECT_TRUE(ten == Make(2, "700", "19"));
  // A copy leaves the flag behind, an assignment keeps the target's.
  EXPECT_FALSE(TVltVersion(ten).ControlResourceForSMARTTablesOf700FP2MPMEnabled());
  ten = twenty;
  ten.SetTypeVer(VLT_TYPE_DISTRIBUTED, "700", "30");
  EXPECT_TRUE(ten.ControlResourceForSMARTTablesOf700FP2MPMEnabled());
  EXPECT_EQ(ten.FullVer(), "700.30");
  TVltVersion mainframe = Make(1, "700", "10");
  mainframe.SetControlResourceForSMARTTablesOf700FP2MPM(true);
  EXPECT_TRUE(mainframe == Make(1, "700", "20"));
  EXPECT_FALSE(Make(1, "700") == Make(2, "700"));
  EXPECT_FALSE(Make(2, "630") == Make(2, "700"));
}

TEST(TVltVersionTest, VersionsHaveNoOrderAndSaySo) {
  testing::internal::CaptureStderr();
  const bool less = Make(1, "500") < Make(1, "700");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "TVltVersion::operator< NOT IMPLEMENTED YET!\n");
  EXPECT_FALSE(less);
  std::ostringstream stream;
  stream << Make(2, "700", "20") << Make(0, "");
  EXPECT_EQ(stream.str(), "[Distributed 700][Unknown ]");
}

TEST(TVltVersionTest, SupportedTypesAndVersionsAreAppended) {
  ArrayWrap<std::string> list;
  list.Append("kept");
  TVltVersion::GetSupportedVLTTypes(list);
  EXPECT_THAT(list, ElementsAre("kept", "MVS", "UNIX/Windows/TANDEM", "AS/400"));
  const std::vector<std::string> supported[] = {
      {},
      {"700", "640", "630", "62A", "620", "610", "600", "500"},
      {"700", "640", "630", "620", "613", "610", "600", "225", "224"},
      {"610", "600", "225", "224"},
      {},
      {}};
  for (int type = 0; std::vector<std::string> expected : supported) {
    expected.insert(expected.begin(), "kept");
    ArrayWrap<std::string> versions;
    versions.Append("kept");
    TVltVersion::GetSupportedVersions4Type(static_cast<TVltType>(type), versions);
    EXPECT_THAT(versions, testing::ElementsAreArray(expected)) << type;
    ++type;
  }
}

}  // namespace
