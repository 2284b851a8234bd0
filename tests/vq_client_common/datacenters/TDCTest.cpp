#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>
#include <climits>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

// A record of the server whose texts and numbers all differ.
QCSCommAdminStruct Record() {
  QCSCommAdminStruct record;
  record.m_Name = "BERLIN";
  record.m_Enabled = "Y";
  record.m_Platform = "UNIX";
  record.m_Version = "700";
  record.m_FixPackLevel = " 20 ";
  record.m_Code = "B01";
  record.m_Protocol = "TCP";
  record.m_VeltR = record.m_VeltT = "1";
  record.m_TimeZone = "GMT+01:00";
  record.m_HostName = "host";
  record.m_PortNumber = 7005;
  record.m_StartDayOfTheWeek = 7;
  record.m_GatewayHostName = "gateway";
  record.m_GatewayPortNumber = 7006;
  record.m_NewDayTime = "+0700";
  record.m_Description = "description";
  record.m_Contact = "contact";
  record.m_StartSummerTime = "start";
  record.m_EndSummerTime = "end";
  return record;
}

TDC Filled() {
  TDC dc;
  TDC::ConvertQCSCommAdminStructToTDC(Record(), dc);
  return dc;
}

// Every field of a record, in declared order.
std::string Dump(const TDC& dc) {
  std::string text;
  const auto add = [&text](const std::string& field) { text += field + "|"; };
  add(dc.GetName() + "|" + dc.GetVersion().TypeAsString() + "|" + dc.GetVersion().FullVer());
  for (const bool flag : {dc.GetUC(), dc.GetVeltR(), dc.GetVeltT(), dc.GetVeltB()}) {
    text += flag ? '1' : '0';
  }
  add(std::to_string(dc.GetStartDayOfTheWeek()) + "|" + dc.GetNewDayTime());
  for (const auto get : {&TDC::GetEnabled, &TDC::GetCode, &TDC::GetTimeZone,
                         &TDC::GetStartSummerTime, &TDC::GetEndSummerTime, &TDC::GetProtocol}) {
    add((dc.*get)());
  }
  add(dc.GetVLTHostName() + "|" + std::to_string(dc.GetVLTPortNumber()));
  add(dc.GetGTWHostName() + "|" + std::to_string(dc.GetGTWPortNumber()));
  add(dc.GetDescription() + "|" + dc.GetContact() + (dc.IsOnlyInDraft() ? "|draft" : ""));
  return text;
}

constexpr const char* kFilled =
    "BERLIN|Distributed|700.20|01106|+0700|Y|B01|GMT+01:00|start|end|TCP|host|7005|gateway|7006|"
    "description|contact|";

TEST(TDCTest, FieldsAreSetAndCopied) {
  const TDC filled = Filled();
  TDC dc;
  EXPECT_EQ(Dump(dc), "|Unknown||00000|||||||||0||0|||");
  dc.SetName(filled.GetName());
  dc.SetType(filled.GetVersion());
  dc.SetVeltR(true);
  dc.SetVeltT(true);
  dc.SetStartDayOfTheWeek(6);
  dc.SetNewDayTime(filled.GetNewDayTime());
  dc.SetEnabled(filled.GetEnabled());
  dc.SetCode(filled.GetCode());
  dc.SetTimeZone(filled.GetTimeZone());
  dc.SetStartSummerTime(filled.GetStartSummerTime());
  dc.SetEndSummerTime(filled.GetEndSummerTime());
  dc.SetProtocol(filled.GetProtocol());
  dc.SetVLTHostName(filled.GetVLTHostName());
  dc.SetVLTPortNumber(filled.GetVLTPortNumber());
  dc.SetGTWHostName(filled.GetGTWHostName());
  dc.SetGTWPortNumber(filled.GetGTWPortNumber());
  dc.SetDescription(filled.GetDescription());
  dc.SetContact(filled.GetContact());
  EXPECT_EQ(Dump(dc), kFilled);
  dc.SetOnlyInDraft(true);
  dc.Set("PARIS", {VLT_TYPE_MAINFRAME, "640", "3"}, false, false, false, false, 9, "0600");
  EXPECT_EQ(Dump(TDC(dc)),  // These eight alone.
            "PARIS|z/OS|640.3|00009|0600|Y|B01|GMT+01:00|start|end|TCP|host|7005|gateway|7006|"
            "description|contact|draft|");
  EXPECT_TRUE(dc.IsMVS());
  EXPECT_FALSE(filled.IsMVS());
}

TEST(TDCTest, EachFlagHasItsPlaceInEachOrder) {
  void (TDC::*const setters[])(bool) = {&TDC::SetUC, &TDC::SetVeltR, &TDC::SetVeltT,
                                        &TDC::SetVeltB};
  const auto flags = [](const TDC& dc) { return Dump(dc).substr(Dump(TDC()).find('0'), 4); };
  for (std::size_t i = 0; i < 4; ++i) {
    std::string expected = "0000";
    expected[i] = '1';
    TDC byOne;
    (byOne.*setters[i])(true);
    EXPECT_EQ(flags(byOne), expected);
    TDC atOnce;
    atOnce.Set("", {}, i == 0, i == 1, i == 2, i == 3, 0, "");
    EXPECT_EQ(flags(atOnce), expected);
    QCSCommAdminStruct record;  // Anything but "1" is no.
    record.m_UpperCase = i == 0 ? "1" : "01";
    record.m_VeltR = i == 1 ? "1" : "true";
    record.m_VeltT = i == 2 ? "1" : "";
    record.m_VeltB = i == 3 ? "1" : "1 ";
    TDC served;
    TDC::ConvertQCSCommAdminStructToTDC(record, served);
    EXPECT_EQ(flags(served), expected);
  }
}

TEST(TDCTest, RecordsAreOrderedByName) {
  const std::string names[] = {"ABC", "ABCD", "B", "abc", "\xC4"};
  for (const std::string& left : names) {
    for (const std::string& right : names) {
      TDC first;
      TDC second;
      first.SetName(left);
      second.SetName(right);
      EXPECT_EQ(first < second, &left < &right) << left << ' ' << right;
    }
  }
}

TEST(TDCTest, ARecordOfTheServerFillsEveryField) {
  TDC dc;
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  EXPECT_EQ(Dump(dc), kFilled);
  dc.SetOnlyInDraft(true);
  EXPECT_EQ(TDC::ConvertVLTVersionFromQCSCommAdminStruct(Record()).FullVer(), "700.20");

  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  EXPECT_TRUE(dc.IsOnlyInDraft());

  QCSCommAdminStruct record = Record();
  const std::pair<int, int> startDays[] = {{1, 0},  {7, 6},       {0, 1},      {8, 1},
                                           {-1, 1}, {INT_MIN, 1}, {INT_MAX, 1}};
  for (const auto& [served, stored] : startDays) {
    record.m_StartDayOfTheWeek = served;
    TDC::ConvertQCSCommAdminStructToTDC(record, dc);
    vq::test::LogCapture log(5);
    const bool repaired = served < 1 || served > 7;  // A repair counts as a change each time.
    EXPECT_EQ(TDC::ConvertQCSCommAdminStructToTDC(record, dc), repaired) << served;
    EXPECT_EQ(dc.GetStartDayOfTheWeek(), stored) << served;
    EXPECT_EQ(log.TakeText(), "");
  }
}

TEST(TDCTest, EachChangeLeavesItsLineInOrder) {
  std::string expected =
      "6 TDCList::ConvertQCSCommAdminStructToTDC: Enter\n6 TDC::UpdateFull: Enter\n";
  for (const std::string change :
       {"Name was changed from  to BERLIN", "Enabled was changed from  to Y",
        "Code was changed from  to B01", "Protocol was changed from  to TCP",
        "Uppercase was changed from 0 to 1", "VELTRA-R was changed from 0 to 1",
        "VELTRA-T was changed from 0 to 1", "VELTRA-B was changed from 0 to 1",
        "Time Zone was changed from  to GMT+01:00", "Host Name was changed from  to host",
        "Port was changed from 0 to 7005", "Start Day was changed from 0 to 6",
        "Gateway Host was changed from  to gateway", "Gateway Port was changed from 0 to 7006",
        "NewDay was changed from  to +0700", "Description was changed from  to description",
        "Contact was changed from  to contact", "ST Start was changed from  to start",
        "ST End was changed from  to end"}) {
    if (change.starts_with("Code")) {
      expected +=
          "5 TDC::UpdateFull: Platform & Version was changed from Unknown: to UNIX:700.20\n";
    }
    expected += "6 TDC::UpdateFieldIfChanged: Enter\n5 TDC::UpdateFieldIfChanged: Value of " +
                change + "\n";
  }
  QCSCommAdminStruct record = Record();
  record.m_UpperCase = record.m_VeltB = "1";
  TDC dc;
  vq::test::LogCapture log(6);
  TDC::ConvertQCSCommAdminStructToTDC(record, dc);
  EXPECT_EQ(log.TakeText(), expected);
}

TEST(TDCTest, EachFieldAloneIsAChange) {
  using Served = QCSCommAdminStruct;
  Served before = Record();
  before.m_UpperCase = before.m_VeltB = "1";
  const auto check = [&before](const Served& after) {
    TDC dc;
    TDC::ConvertQCSCommAdminStructToTDC(before, dc);
    vq::test::LogCapture log(5);
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(after, dc));
    EXPECT_EQ(std::ranges::count(log.TakeText(), '\n'), 1);
  };
  for (const auto member :
       {&Served::m_Name, &Served::m_Enabled, &Served::m_Platform, &Served::m_Version,
        &Served::m_Code, &Served::m_Protocol, &Served::m_VeltR, &Served::m_UpperCase,
        &Served::m_VeltT, &Served::m_VeltB, &Served::m_TimeZone, &Served::m_HostName,
        &Served::m_GatewayHostName, &Served::m_NewDayTime, &Served::m_Description,
        &Served::m_Contact, &Served::m_StartSummerTime, &Served::m_EndSummerTime}) {
    Served after = before;
    after.*member = "new";
    check(after);
  }
  for (const auto member :
       {&Served::m_PortNumber, &Served::m_GatewayPortNumber, &Served::m_StartDayOfTheWeek}) {
    Served after = before;
    after.*member = 3;
    check(after);
  }
}

TEST(TDCTest, TheFixPackLevelCountsOnlyWithTheVersion) {
  QCSCommAdminStruct record = Record();
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
    log.TakeText();
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
