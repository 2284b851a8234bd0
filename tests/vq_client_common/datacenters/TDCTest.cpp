#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>
#include <climits>

#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using Served = QCSCommAdminStruct;

// The server's record with values that all differ, in the order in which changes are logged.
const struct {
  const char* label;  // null: the parts of the version, which share a line
  decltype(&Served::m_Name) text;
  decltype(&Served::m_PortNumber) number;
  const char *before, *value;
} kFields[] = {{"Name", &Served::m_Name, nullptr, "", "BERLIN"},
               {"Enabled", &Served::m_Enabled, nullptr, "", "Y"},
               {nullptr, &Served::m_Platform, nullptr, "", "UNIX"},
               {nullptr, &Served::m_Version, nullptr, "", "700"},
               {"Code", &Served::m_Code, nullptr, "", "B01"},
               {"Protocol", &Served::m_Protocol, nullptr, "", "TCP"},
               {"Uppercase", &Served::m_UpperCase, nullptr, "0", "1"},
               {"VELTRA-R", &Served::m_VeltR, nullptr, "0", "1"},
               {"VELTRA-T", &Served::m_VeltT, nullptr, "0", "1"},
               {"VELTRA-B", &Served::m_VeltB, nullptr, "0", "1"},
               {"Time Zone", &Served::m_TimeZone, nullptr, "", "GMT+01:00"},
               {"Host Name", &Served::m_HostName, nullptr, "", "host"},
               {"Port", nullptr, &Served::m_PortNumber, "0", "7005"},
               {"Start Day", nullptr, &Served::m_StartDayOfTheWeek, "0", "6"},
               {"Gateway Host", &Served::m_GatewayHostName, nullptr, "", "gateway"},
               {"Gateway Port", nullptr, &Served::m_GatewayPortNumber, "0", "7006"},
               {"NewDay", &Served::m_NewDayTime, nullptr, "", "+0700"},
               {"Description", &Served::m_Description, nullptr, "", "description"},
               {"Contact", &Served::m_Contact, nullptr, "", "contact"},
               {"ST Start", &Served::m_StartSummerTime, nullptr, "", "start"},
               {"ST End", &Served::m_EndSummerTime, nullptr, "", "end"}};

Served Record() {
  Served record;
  for (const auto& field : kFields) {
    if (field.text != nullptr) record.*field.text = field.value;
    if (field.number != nullptr) record.*field.number = std::stoi(field.value);
  }
  record.m_FixPackLevel = " 20 ";
  ++record.m_StartDayOfTheWeek;  // the server counts from 1
  return record;
}

TDC Filled(const Served& record = Record()) {
  TDC dc;
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  return dc;
}

constexpr std::pair<std::string (TDC::*)() const, void (TDC::*)(const std::string&)> kTexts[] = {
    {&TDC::GetName, &TDC::SetName},
    {&TDC::GetNewDayTime, &TDC::SetNewDayTime},
    {&TDC::GetEnabled, &TDC::SetEnabled},
    {&TDC::GetCode, &TDC::SetCode},
    {&TDC::GetTimeZone, &TDC::SetTimeZone},
    {&TDC::GetStartSummerTime, &TDC::SetStartSummerTime},
    {&TDC::GetEndSummerTime, &TDC::SetEndSummerTime},
    {&TDC::GetProtocol, &TDC::SetProtocol},
    {&TDC::GetVLTHostName, &TDC::SetVLTHostName},
    {&TDC::GetGTWHostName, &TDC::SetGTWHostName},
    {&TDC::GetDescription, &TDC::SetDescription},
    {&TDC::GetContact, &TDC::SetContact}};

std::string Flags(const TDC& dc) {
  std::string text;
  for (const auto get : {&TDC::GetUC, &TDC::GetVeltR, &TDC::GetVeltT, &TDC::GetVeltB}) {
    text += (dc.*get)() ? '1' : '0';
  }
  return text;
}

std::string Dump(const TDC& dc) {
  std::string text = dc.GetVersion().TypeAsString() + "|" + dc.GetVersion().FullVer() + "|";
  for (const auto& [get, set] : kTexts) text += (dc.*get)() + "|";
  for (const int number :
       {dc.GetStartDayOfTheWeek(), dc.GetVLTPortNumber(), dc.GetGTWPortNumber()}) {
    text += std::to_string(number) + "|";
  }
  return text + Flags(dc) + (dc.IsOnlyInDraft() ? "|draft" : "");
}

TEST(TDCTest, FieldsAreServedSetAndCopied) {
  const std::string kFilled =
      "Distributed|700.20|BERLIN|+0700|Y|B01|GMT+01:00|start|end|TCP|host|gateway|description|"
      "contact|6|7005|7006|1111";
  TDC served = Filled();
  EXPECT_EQ(Dump(served), kFilled);
  EXPECT_EQ(TDC::ConvertVLTVersionFromQCSCommAdminStruct(Record()).FullVer(), "700.20");
  EXPECT_FALSE(served.IsMVS());
  TDC dc;
  EXPECT_EQ(Dump(dc), "Unknown||||||||||||||0|0|0|0000");
  for (const auto& [get, set] : kTexts) (dc.*set)((served.*get)());
  dc.SetType(served.GetVersion());
  for (const auto set : {&TDC::SetUC, &TDC::SetVeltR, &TDC::SetVeltT, &TDC::SetVeltB}) {
    (dc.*set)(true);
  }
  dc.SetStartDayOfTheWeek(6);
  dc.SetVLTPortNumber(7005);
  dc.SetGTWPortNumber(7006);
  EXPECT_EQ(Dump(dc), kFilled);
  dc.SetOnlyInDraft(true);
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  EXPECT_TRUE(dc.IsOnlyInDraft());
  dc.Set("PARIS", {VLT_TYPE_MAINFRAME, "640", "3"}, false, false, false, false, 9, "0600");
  EXPECT_EQ(Dump(TDC(dc)),  // These eight alone.
            "z/OS|640.3|PARIS|0600|Y|B01|GMT+01:00|start|end|TCP|host|gateway|description|"
            "contact|9|7005|7006|0000|draft");
  EXPECT_TRUE(dc.IsMVS());
}

TEST(TDCTest, EachFlagHasItsPlaceInEachOrder) {
  void (TDC::*const setters[])(bool) = {&TDC::SetUC, &TDC::SetVeltR, &TDC::SetVeltT,
                                        &TDC::SetVeltB};
  for (std::size_t i = 0; i < 4; ++i) {
    std::string expected = "0000";
    expected[i] = '1';
    TDC byOne;
    (byOne.*setters[i])(true);
    EXPECT_EQ(Flags(byOne), expected);
    TDC atOnce;
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

TEST(TDCTest, RecordsAreOrderedByName) {
  const std::string names[] = {"ABC", "ABCD", "B", "abc", "\xC4"};
  for (const std::string& left : names) {
    for (const std::string& right : names) {
      TDC first, second;
      first.SetName(left);
      second.SetName(right);
      EXPECT_EQ(first < second, &left < &right) << left << ' ' << right;
    }
  }
}

TEST(TDCTest, AStartDayOutOfTheWeekIsRepairedAndAChangeEachTime) {
  const std::pair<int, int> startDays[] = {{1, 0},  {7, 6},       {0, 1},      {8, 1},
                                           {-1, 1}, {INT_MIN, 1}, {INT_MAX, 1}};
  for (const auto& [served, stored] : startDays) {
    Served record = Record();
    record.m_StartDayOfTheWeek = served;
    TDC dc = Filled(record);
    vq::test::LogCapture log(5);
    EXPECT_EQ(TDC::ConvertQCSCommAdminStructToTDC(record, dc), served < 1 || served > 7) << served;
    EXPECT_EQ(dc.GetStartDayOfTheWeek(), stored) << served;
    EXPECT_EQ(log.TakeText(), "");
  }
}

TEST(TDCTest, EachChangeLeavesItsLineInOrderAndEachFieldAloneIsAChange) {
  std::string expected =
      "6 TDCList::ConvertQCSCommAdminStructToTDC: Enter\n6 TDC::UpdateFull: Enter\n";
  for (const auto& [label, text, number, before, value] : kFields) {
    if (label != nullptr) {
      expected += "6 TDC::UpdateFieldIfChanged: Enter\n5 TDC::UpdateFieldIfChanged: Value of " +
                  (label + (" was changed from " + std::string(before))) + " to " + value + "\n";
    } else if (text == &Served::m_Version) {
      expected +=
          "5 TDC::UpdateFull: Platform & Version was changed from Unknown: to UNIX:700.20\n";
    }
  }
  vq::test::LogCapture log(6);
  Filled();
  EXPECT_EQ(log.TakeText(), expected);
  TDiag::Instance()->SetMinimumDebugLevel(5);
  for (const auto& field : kFields) {
    TDC dc = Filled();
    log.Clear();
    Served record = Record();
    if (field.text != nullptr) record.*field.text = "new";
    if (field.number != nullptr) record.*field.number = 3;
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
    EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
  }
}

TEST(TDCTest, TheFixPackLevelCountsOnlyWithTheVersion) {
  Served record = Record();
  TDC dc = Filled();
  vq::test::LogCapture log(5);
  record.m_Platform = "Distributed";  // another text of the same type
  record.m_FixPackLevel = "30";
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  EXPECT_EQ(dc.GetVersion().FullVer(), "700.20");
  EXPECT_EQ(log.TakeText(), "");
  const char* const cases[][3] = {{" 00 ", "00", "640"}, {" ", "", "640"}, {"  ", "  ", "640.  "}};
  for (const auto& [level, logged, stored] : cases) {
    dc = Filled();
    log.Clear();
    record.m_Version = "640";
    record.m_FixPackLevel = level;
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
    EXPECT_EQ(log.TakeText(), std::string("5 TDC::UpdateFull: Platform & Version was changed from "
                                          "Distributed:700.20 to Distributed:640.") +
                                  logged + "\n");
    EXPECT_EQ(dc.GetVersion().FullVer(), stored);
  }
}

}  // namespace
