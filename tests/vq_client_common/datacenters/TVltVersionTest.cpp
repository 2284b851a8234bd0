#include <vq_client_common/datacenters/TVltVersion.h>

#include <sstream>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string;
using std::string_literals::operator""s;
using vq::test::ExpectRows;

TVltVersion Make(int type, const string& version, const string& level = "") {
  return {static_cast<TVltType>(type), version, level};
}

// The items in order, each with a blank after it.
string Joined(const ArrayWrap<string>& list) {
  string text;
  for (const string& item : list) text += item + " ";
  return text;
}

TEST(TVltVersionTest, Types) {
  // What is shown, the platform and the supported versions.
  const auto texts = [](const string& number) {
    const TVltVersion version = Make(std::stoi(number), "");
    ArrayWrap<string> list;
    list.Append("-");
    TVltVersion::GetSupportedVersions4Type(version.Type(), list);
    return version.TypeAsString() + " " + version.TypeAsPLATFORMString() + " " + Joined(list);
  };
  ExpectRows(texts, {"0 -> Unknown Unknown - ", "1 -> z/OS MVS - 700 640 630 62A 620 610 600 500 ",
                     "2 -> Distributed UNIX - 700 640 630 620 613 610 600 225 224 ",
                     "3 -> AS/400 AS/400 - 610 600 225 224 ", "4 -> VAX/VMS VAX/VMS - ",
                     "5 -> Unknown Unknown - ", "-1 -> Unknown Unknown - "});
  ArrayWrap<string> list;
  list.Append("kept");
  TVltVersion::GetSupportedVLTTypes(list);
  EXPECT_EQ(Joined(list), "kept MVS UNIX/Windows/TANDEM AS/400 ");
  ExpectRows([](const string& text) { return std::to_string(TVltVersion::TypeFromString(text)); },
             {" -> 0", "unix -> 0", "MVS  -> 0", "Unknown -> 0", "MVS -> 1", "z/OS -> 1",
              "Distributed -> 2", "UNIX/Windows/TANDEM -> 2", "UNIX -> 2", "UNIX/NT/TANDEM -> 2",
              "AS/400 -> 3", "VAX/VMS -> 4"});
}

TEST(TVltVersionTest, PlatformsAndCodes) {
  string platforms, codes;
  for (int platform = 0; platform < 6; ++platform) {
    const auto type = static_cast<PLATFORM_TYPE>(platform);
    platforms += TVltVersion::PLATFORMtoString(type) + " " +
                 std::to_string(TVltVersion::PLATFORMtoType(type)) + " ";
  }
  EXPECT_EQ(platforms, "MVS 0 MVS 1 VAX/VMS 4 AS/400 3 UNIX/Windows/TANDEM 2 MVS 0 ");
  for (int code = 0; code <= 26; ++code) {
    codes += TVltVersion::VLTVERtoString(static_cast<E_VLT_VER>(code), 7) + " ";
  }
  EXPECT_EQ(codes,
            "700 400 500 50G 600 610 620 62A 630 640 700 700 700 "
            "210 211 212 221 224 225 600 610 613 620 630 640 700 700 ");
}

TEST(TVltVersionTest, TrimsFixPackLevel) {
  const auto stored = [](const string& given) {
    TVltVersion set;
    set.SetTypeVer(VLT_TYPE_DISTRIBUTED, " 7 ", given);
    EXPECT_EQ(set.FPLevel(), Make(2, "", given).FPLevel());
    return set.FullVer();
  };
  ExpectRows(stored, {"  ->  7 ", "   ->  7 .  ", " 20   ->  7 .20", "00 ->  7 ", " 00  ->  7 ",
                      "000 ->  7 .000", " \t20 ->  7 .\t20"});
  TVltVersion own = Make(2, "700", "20");
  own.SetTypeVer(VLT_TYPE_AS400, own.FPLevel(), own.Ver());
  EXPECT_EQ(own.FullVer(), "20.700");
}

TEST(TVltVersionTest, SplitsAndComposesFullVersion) {
  const auto parts = [](string version) {
    string level;
    EXPECT_TRUE(TVltVersion::SplitFullVersionStr(version, version, level));  // In place, too.
    return version + " " + level;
  };
  ExpectRows(parts, {"700.20 -> 700 20", "640 -> 640 640", ". ->  ", "700.20.1 -> 700 20.1"});
  for (const string level : {"20", ""}) {
    string full;
    EXPECT_TRUE(TVltVersion::ComposeFullVersionStr("700", level, full));
    EXPECT_EQ(full, level.empty() ? "700" : "700.20");
  }
}

TEST(TVltVersionTest, UnixForms) {
  for (const char* given : {"UNIX", "UNIX/Windows/TANDEM", "MVS", ""}) {
    string longer = given, shorter = given;
    TVltVersion::UNIXShort2Long(longer);
    TVltVersion::UNIXLong2Short(shorter);
    EXPECT_EQ(longer + shorter, given == "UNIX"s ? "UNIXUNIX" : "UNIX/Windows/TANDEMUNIX");
  }
}

TEST(TVltVersionTest, Predicates) {
  using V = TVltVersion;
  const struct {
    bool (V::*predicate)() const;
    const char* lowest[6];  // the lowest version of each type that passes; "~" for none
  } cases[] = {
      {&V::Version610Plus, {"610", "610", "610", "610", "610", "610"}},
      {&V::Version700Plus, {"700", "700", "700", "700", "700", "700"}},
      {&V::SupportsActiveTables, {"~", "600", "600", "600", "600", "600"}},
      {&V::SupportsActiveSubTables, {"~", "~", "700", "~", "~", "~"}},
      {&V::SupportsApplications, {"~", "620", "610", "610", "610", "610"}},
      {&V::SupportsDifferentGroupFieldInActiveTable, {"~", "700", "700", "700", "700", "700"}},
      {&V::SupportAllInTagsSelection, {"~", "", "700", "700", "700", "700"}}};
  for (const string version :
       {"", "50G", "60", "600", "609", "610", "61A", "619", "620", "62A", "70", "700", "7000"}) {
    for (const auto& [predicate, lowest] : cases) {
      for (int type = 0; type < 6; ++type) {
        EXPECT_EQ((Make(type, version).*predicate)(), version >= lowest[type])
            << "type " << type << ", version " << version << ", lowest " << lowest[type];
      }
    }
  }
  for (const string level : {"20", "21", "3", "A", "", "10", "2", "19"}) {
    EXPECT_EQ(Make(0, "700", level).Version700FP2Plus(), level >= "20") << level;
  }
  EXPECT_FALSE(Make(2, "640", "30").Version700FP2Plus());
}

TEST(TVltVersionTest, EqualityAndTheFlag) {
  TVltVersion ten = Make(2, "700", "10");
  const TVltVersion twenty = Make(2, "700", "20");
  EXPECT_TRUE(ten == twenty);
  ten.SetControlResourceForSMARTTablesOf700FP2MPM(true);
  EXPECT_TRUE(ten != twenty && twenty == ten && ten == Make(2, "700", "19"));
  // The flag is not copied; an assignment keeps the target's.
  EXPECT_FALSE(TVltVersion(ten).ControlResourceForSMARTTablesOf700FP2MPMEnabled());
  ten = twenty;
  EXPECT_EQ(ten.FullVer(), "700.20");
  ten.SetTypeVer(VLT_TYPE_MAINFRAME, "700", "10");
  EXPECT_TRUE(ten.ControlResourceForSMARTTablesOf700FP2MPMEnabled());
  EXPECT_TRUE(ten == Make(1, "700", "20"));
  EXPECT_FALSE(Make(1, "700") == Make(2, "700") || Make(2, "630") == Make(2, "700"));
}

TEST(TVltVersionTest, HasNoOrder) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(Make(1, "500") < Make(1, "700"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "TVltVersion::operator< NOT IMPLEMENTED YET!\n");
  EXPECT_EQ((std::ostringstream() << Make(2, "700", "20") << Make(0, "")).str(),
            "[Distributed 700][Unknown ]");
}

}  // namespace
