#include <vq_client_common/datacenters/TDC.h>

#include <climits>

#include <tests/fixture/UnitTest.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using std::string;
using vq::test::ExpectRows;
using vq::test::Take;
using Served = QCSCommAdminStruct;

constexpr int kServedValues = 21;

// The server's record with values that all differ, and another one at the place `changed`.
Served Record(int changed = -1) {
  Served record;
  string texts =
      "BERLIN Y UNIX 700 B01 TCP 1 1 1 1 GMT+01:00 host +0700 gateway description contact start "
      "end";
  int place = 0;
  for (auto member : {&Served::m_Name, &Served::m_Enabled, &Served::m_Platform, &Served::m_Version,
                      &Served::m_Code, &Served::m_Protocol, &Served::m_UpperCase, &Served::m_VeltR,
                      &Served::m_VeltT, &Served::m_VeltB, &Served::m_TimeZone, &Served::m_HostName,
                      &Served::m_NewDayTime, &Served::m_GatewayHostName, &Served::m_Description,
                      &Served::m_Contact, &Served::m_StartSummerTime, &Served::m_EndSummerTime}) {
    const string text = Take(texts);
    record.*member = place++ == changed ? "new" : text.c_str();
  }
  const auto number = [&](int value) { return place++ == changed ? 3 : value; };
  record.m_PortNumber = number(7005);
  record.m_GatewayPortNumber = number(7006);
  record.m_StartDayOfTheWeek = number(7);  // the server counts from 1
  EXPECT_EQ(place, kServedValues);
  record.m_FixPackLevel = " 20 ";
  return record;
}

TDC Filled(const Served& record = Record()) {
  TDC dc;
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  return dc;
}

constexpr string (TDC::*kTexts[])() const = {
    &TDC::GetName,        &TDC::GetNewDayTime,      &TDC::GetEnabled,       &TDC::GetCode,
    &TDC::GetTimeZone,    &TDC::GetStartSummerTime, &TDC::GetEndSummerTime, &TDC::GetProtocol,
    &TDC::GetVLTHostName, &TDC::GetGTWHostName,     &TDC::GetDescription,   &TDC::GetContact};
constexpr std::pair<bool (TDC::*)() const, void (TDC::*)(bool)> kFlags[] = {
    {&TDC::GetUC, &TDC::SetUC},
    {&TDC::GetVeltR, &TDC::SetVeltR},
    {&TDC::GetVeltT, &TDC::SetVeltT},
    {&TDC::GetVeltB, &TDC::SetVeltB}};

string Flags(const TDC& dc) {
  string text;
  for (const auto& [get, set] : kFlags) text += (dc.*get)() ? '1' : '0';
  return text;
}

string Dump(const TDC& dc) {
  string text = dc.GetVersion().TypeAsString() + "|" + dc.GetVersion().FullVer() + "|";
  for (const auto get : kTexts) text += (dc.*get)() + "|";
  for (const int number :
       {dc.GetStartDayOfTheWeek(), dc.GetVLTPortNumber(), dc.GetGTWPortNumber()}) {
    text += std::to_string(number) + "|";
  }
  return text + Flags(dc) + (dc.IsOnlyInDraft() ? "|draft" : "");
}

TEST(TDCTest, FieldsAreServedAndSet) {
  const string kFilled =
      "Distributed|700.20|BERLIN|+0700|Y|B01|GMT+01:00|start|end|TCP|host|gateway|description|"
      "contact|6|7005|7006|1111";
  TDC served = Filled();
  EXPECT_EQ(Dump(served), kFilled);
  EXPECT_EQ(TDC::ConvertVLTVersionFromQCSCommAdminStruct(Record()).FullVer(), "700.20");
  TDC dc;
  EXPECT_EQ(Dump(dc), "Unknown||||||||||||||0|0|0|0000");
  dc = served;
  dc.SetOnlyInDraft(true);
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  dc.Set("PARIS", {VLT_TYPE_MAINFRAME, "640", "3"}, false, false, false, false, 9, "0600");
  EXPECT_EQ(Dump(TDC(dc)),  // These eight alone.
            "z/OS|640.3|PARIS|0600|Y|B01|GMT+01:00|start|end|TCP|host|gateway|description|"
            "contact|9|7005|7006|0000|draft");
  EXPECT_TRUE(dc.IsMVS() && !served.IsMVS());
  TDC longer;
  longer.SetName("PARIS-2");
  EXPECT_TRUE(dc < longer && !(longer < dc) && served < dc);
}

TEST(TDCTest, FlagsKeepTheirPlaces) {
  for (std::size_t i = 0; i < 4; ++i) {
    string expected = "0000";
    expected[i] = '1';
    TDC byOne, atOnce;
    (byOne.*kFlags[i].second)(true);
    EXPECT_EQ(Flags(byOne), expected);
    atOnce.Set("", {}, i == 0, i == 1, i == 2, i == 3, 0, "");
    EXPECT_EQ(Flags(atOnce), expected);
    Served record;  // Anything but "1" is no.
    record.m_UpperCase = i == 0 ? "1" : "01";
    record.m_VeltR = i == 1 ? "1" : "true";
    record.m_VeltT = i == 2 ? "1" : "";
    record.m_VeltB = i == 3 ? "1" : "1 ";
    EXPECT_EQ(Flags(Filled(record)), expected);
  }
}

TEST(TDCTest, RepairsStartDay) {
  for (const int served : {1, 7, 0, 8, -1, INT_MIN, INT_MAX}) {
    const bool isDay = served >= 1 && served <= 7;
    Served record = Record();
    record.m_StartDayOfTheWeek = served;
    TDC dc = Filled(record);
    EXPECT_EQ(TDC::ConvertQCSCommAdminStructToTDC(record, dc), !isDay) << served;
    EXPECT_EQ(dc.GetStartDayOfTheWeek(), isDay ? served - 1 : 1) << served;
  }
}

TEST(TDCTest, NoticesEachChange) {
  string lines;
  for (int place = 0; place < kServedValues; ++place) {
    TDC dc = Filled();
    vq::test::LogCapture log(5);
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(Record(place), dc));
    EXPECT_EQ(log.Count(5, ""), 1) << log.Text();
    lines += log.Text();
  }
  EXPECT_NE(lines.find(": Value of Port was changed from 7005 to 3\n"), string::npos);
}

TEST(TDCTest, IgnoresLoneFixPackChange) {
  Served record = Record();
  TDC dc = Filled();
  record.m_Platform = "Distributed";  // another text of the same type
  record.m_FixPackLevel = "30";
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  EXPECT_EQ(dc.GetVersion().FullVer(), "700.20");
  record.m_Version = "640";
  record.m_FixPackLevel = " 00 ";
  vq::test::LogCapture log(5);
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  EXPECT_TRUE(log.Has(5,
                      "Platform & Version was changed from Distributed:700.20 to "
                      "Distributed:640.00"));
  EXPECT_EQ(dc.GetVersion().FullVer(), "640");
}

TEST(TimeSynonymsTest, ConvertsClockTimes) {
  const auto there = [](string source) {
    TDC dc;
    dc.SetNewDayTime(Take(source));
    string dest = "refused";
    const bool converted = dc.ConvertToTimeSynonym(source, dest);
    EXPECT_EQ(converted, dest != source && dest != "refused");
    return dest;
  };
  ExpectRows(there, {"0700 0659 -> 3059", "0700 0700 -> 0700", "0700 2400 -> 2400",
                     "0000 0000 -> 0000", "x1200 0800 -> 3200", "0700 abcd -> 2400",
                     "0700 -001 -> -001",  // a huge number
                     "-700 -900 -> 1500", "9999 9998 -> 12398", "700 0200 -> refused",
                     "070000 0200 -> refused", "0700 200 -> refused", "0700 02000 -> refused"});
  const auto back = [](const string& source) {
    string dest = "before";
    const bool converted = TDC::ConvertFromTimeSynonym(source, dest);
    EXPECT_EQ(converted, source != dest);
    return dest;
  };
  ExpectRows(back, {"2400 -> 0000", "3059 -> 0659", "2359 -> 2359", "9999 -> 0399", " -> ",
                    "240 -> 240", "24000 -> 24000", "-001 -> 1695"});  // 4294967295 modulo 2400
}

TEST(TimeSynonymsTest, ConvertsNextTimes) {
  const auto there = [](string nextTime) {
    const string newDay = Take(nextTime);
    string dest = nextTime;  // `dest` may be the source itself.
    const bool converted = TDC::ConvertNextTimeToTimeSynonym(newDay, dest, dest);
    EXPECT_EQ(converted, dest != nextTime) << nextTime;
    return dest;
  };
  ExpectRows(
      there,
      {"0700 20240301023015 -> 2024022926301", "0200 20240301023015 -> 20240301023015",
       "+0700 20240101023015 -> 2023123126301", "0700 20241301023015 -> 2024130126301",
       "0700 20230229023015 -> 2023022926301", "0700 00010101023015 -> 0000123126301",
       "0700         0230   ->         2630 ", "0700 0230 -> 2630", "0700 0800 -> 0800",
       "0700  -> ", "070 20240301023015 -> 20240301023015", "070 0230 -> 0230", " 02301 -> 02301"});
  const auto back = [](const string& nextTime) {
    const vq::test::LogCapture log(1);
    string dest = nextTime;
    const bool converted = TDC::ConvertNextTimeFromTimeSynonym(dest, dest);
    EXPECT_EQ(converted, dest != nextTime) << nextTime;
    const bool isWrong = nextTime.size() == 13 || nextTime.size() == 5;
    EXPECT_EQ(log.Count(1, "NextTime has illegal field length"), isWrong ? 1 : 0);
    return dest;
  };
  ExpectRows(back, {"20240229263015 -> 2024030102301", "20231231240000 -> 2024010100000",
                    "99991231240000 -> 10000010100000", "20240231263015 -> 2024023102301",
                    "20240229233015 -> 20240229233015", "2630 -> 0230",
                    "2024022926301 -> 2024022926301", "02301 -> 02301", " -> "});
}

TEST(TimeSynonymsTest, RefusesBadTimes) {
  // "in", "?" for no time at all, or the range that it is not in.
  const auto judged = [](const string& time, int result, const string& err) -> string {
    EXPECT_EQ(result, err.empty() ? 1 : 0);
    if (err.empty()) return "in";
    if (err == "'" + time + "' is not a valid time value\t") return "?";
    const string start = "Value '" + time + "' is not in time range (";
    EXPECT_TRUE(err.starts_with(start) && err.ends_with(")\t")) << err;
    return err.substr(start.size(), 11);
  };
  const auto clock = [&](const string& time) {
    string err = "before";
    const int result = TDC::CheckTimeHHMMNoTimeSynonym(time, err);
    return judged(time, result, err);
  };
  ExpectRows(clock, {"2359 -> in", "2400 -> in", " -> in", "abc -> in", " 730 -> in", "2401 -> ?",
                     "0060 -> ?", "-1 -> ?", "9999 -> ?"});
  // With "!" where the new-day time itself is no time.
  const auto synonym = [&](string newDay) {
    const string time = Take(newDay);
    bool newDayValid = false;
    string err = "before";
    const int result = TDC::CheckTimeHHMMTimeSynonym(time, newDay, newDayValid, err);
    return judged(time, result, err) + (newDayValid ? "" : "!");
  };
  ExpectRows(synonym,
             {"0700 0700 -> in", "3059 +0700 -> in", "3060 0700 -> ?", "3099 0700 -> ?",
              "3100 0700 -> 0700 - 3059", "0660 0700 -> 0700 - 3059", "-1 0700 -> 0700 - 3059",
              "2400 0000 -> 0000 - 2359", "2359  -> in", "0100 0130 -> 0130 - 2529",
              "4800 2400 -> 2400 - 4759", "9900 2401 -> in!", "0060 0060 -> ?!", "0000 -1 -> in!"});
}

TEST(TimeSynonymsTest, ConvertsNoRecords) {
  EXPECT_EQ(Convert_DBjobToTimeSynonym(nullptr, "0700") + Convert_DBjobFromTimeSynonym(nullptr), 0);
}

}  // namespace
