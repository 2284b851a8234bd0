#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vq_idl/AdministrationRecordsC.h>

#include "LogLines.h"

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
  dc.SetVeltR(false);
  dc.SetVeltT(false);
  dc.SetUC(true);
  dc.SetVeltB(true);
  dc.SetOnlyInDraft(true);
  dc.Set("PARIS", {VLT_TYPE_MAINFRAME, "640", "3"}, dc.GetUC(), dc.GetVeltR(), dc.GetVeltT(),
         dc.GetVeltB(), 9, "0600");  // These eight alone.
  EXPECT_EQ(Dump(TDC(dc)),
            "PARIS|z/OS|640.3|10019|0600|Y|B01|GMT+01:00|start|end|TCP|host|7005|gateway|7006|"
            "description|contact|draft|");
  EXPECT_TRUE(dc.IsMVS());
  EXPECT_FALSE(filled.IsMVS());
}

TEST(TDCTest, RecordsAreOrderedByName) {
  std::vector<TDC> records;
  for (const char* const name : {"\xC4", "abc", "ABCD", "ABC", "B"}) {
    records.emplace_back().SetName(name);
  }
  std::ranges::sort(records, [](const TDC& left, const TDC& right) { return left < right; });
  std::string names;
  for (const TDC& dc : records) names += dc.GetName() + " ";
  EXPECT_EQ(names, "ABC ABCD B abc \xC4 ");
  EXPECT_FALSE(records[0] < records[0]);
}

TEST(TDCTest, ARecordOfTheServerFillsEveryField) {
  TDC dc;
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  EXPECT_EQ(Dump(dc), kFilled);
  dc.SetOnlyInDraft(true);
  LogLines log(5);
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(Record(), dc));
  EXPECT_EQ(log.Take(), "");
  EXPECT_TRUE(dc.IsOnlyInDraft());
  EXPECT_EQ(TDC::ConvertVLTVersionFromQCSCommAdminStruct(Record()).FullVer(), "700.20");

  QCSCommAdminStruct record = Record();
  for (const char* const flag : {"01", "true", "", "1 "}) {
    record.m_VeltR = record.m_UpperCase = record.m_VeltT = record.m_VeltB = flag;
    TDC::ConvertQCSCommAdminStructToTDC(record, dc);
    EXPECT_FALSE(dc.GetVeltR() || dc.GetUC() || dc.GetVeltT() || dc.GetVeltB()) << flag;
  }
  record.m_UpperCase = record.m_VeltB = "1";
  TDC::ConvertQCSCommAdminStructToTDC(record, dc);
  EXPECT_TRUE(!dc.GetVeltR() && dc.GetUC() && !dc.GetVeltT() && dc.GetVeltB());
}

TEST(TDCTest, StartDaysAreRepairedAndTheRepairIsAChange) {
  const std::pair<int, int> cases[] = {{1, 0},  {7, 6},       {0, 1},      {8, 1},
                                       {-1, 1}, {INT_MIN, 1}, {INT_MAX, 1}};
  for (const auto& [served, stored] : cases) {
    QCSCommAdminStruct record = Record();
    record.m_StartDayOfTheWeek = served;
    TDC dc;
    TDC::ConvertQCSCommAdminStructToTDC(record, dc);
    LogLines log(5);
    const bool repaired = served < 1 || served > 7;
    EXPECT_EQ(TDC::ConvertQCSCommAdminStructToTDC(record, dc), repaired) << served;
    EXPECT_EQ(dc.GetStartDayOfTheWeek(), stored) << served;
    EXPECT_EQ(log.Take(), "");
  }
}

TEST(TDCTest, EachChangeLeavesItsLineInOrder) {
  std::string expected =
      "6 TDCList::ConvertQCSCommAdminStructToTDC: Enter\n6 TDC::UpdateFull: Enter\n";
  const auto expect = [&expected](const std::string& label, const std::string& change) {
    expected += "6 TDC::UpdateFieldIfChanged: Enter\n5 TDC::UpdateFieldIfChanged: Value of " +
                label + " was changed from " + change + "\n";
  };
  expect("Name", " to BERLIN");
  expect("Enabled", " to Y");
  expected += "5 TDC::UpdateFull: Platform & Version was changed from Unknown: to UNIX:700.20\n";
  expect("Code", " to B01");
  expect("Protocol", " to TCP");
  for (const char* const flag : {"Uppercase", "VELTRA-R", "VELTRA-T", "VELTRA-B"}) {
    expect(flag, "0 to 1");
  }
  expect("Time Zone", " to GMT+01:00");
  expect("Host Name", " to host");
  expect("Port", "0 to 7005");
  expect("Start Day", "0 to 6");
  expect("Gateway Host", " to gateway");
  expect("Gateway Port", "0 to 7006");
  expect("NewDay", " to +0700");
  expect("Description", " to description");
  expect("Contact", " to contact");
  expect("ST Start", " to start");
  expect("ST End", " to end");
  QCSCommAdminStruct record = Record();
  record.m_UpperCase = record.m_VeltB = "1";
  TDC dc;
  LogLines log(6);
  TDC::ConvertQCSCommAdminStructToTDC(record, dc);
  EXPECT_EQ(log.Take(), expected);
}

TEST(TDCTest, TheFixPackLevelCountsOnlyWithTheVersion) {
  QCSCommAdminStruct record = Record();
  TDC dc = Filled();
  LogLines log(5);
  record.m_Platform = "Distributed";  // another text of the same type
  record.m_FixPackLevel = "30";
  EXPECT_FALSE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  EXPECT_EQ(dc.GetVersion().FullVer(), "700.20");
  EXPECT_EQ(log.Take(), "");
  const char* const cases[][3] = {{" 00 ", "00", "640"}, {" ", "", "640"}, {"  ", "  ", "640.  "}};
  for (const auto& [level, logged, stored] : cases) {
    dc = Filled();
    log.Take();
    record.m_Version = "640";
    record.m_FixPackLevel = level;
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
    EXPECT_EQ(log.Take(), std::string("5 TDC::UpdateFull: Platform & Version was changed from "
                                      "Distributed:700.20 to Distributed:640.") +
                              logged + "\n");
    EXPECT_EQ(dc.GetVersion().FullVer(), stored);
  }
}

}  // namespace
