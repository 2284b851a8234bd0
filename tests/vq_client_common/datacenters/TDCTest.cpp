#include <vq_client_common/datacenters/TDC.h>

#include <climits>

#include <gtest/gtest.h>
#include <tests/fixture/LogCapture.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

using Served = QCSCommAdminStruct;

// The server's record with values that all differ.
const std::pair<decltype(&Served::m_Name), const char*> kServedTexts[] = {
    {&Served::m_Name, "BERLIN"},
    {&Served::m_Enabled, "Y"},
    {&Served::m_Platform, "UNIX"},
    {&Served::m_Version, "700"},
    {&Served::m_Code, "B01"},
    {&Served::m_Protocol, "TCP"},
    {&Served::m_UpperCase, "1"},
    {&Served::m_VeltR, "1"},
    {&Served::m_VeltT, "1"},
    {&Served::m_VeltB, "1"},
    {&Served::m_TimeZone, "GMT+01:00"},
    {&Served::m_HostName, "host"},
    {&Served::m_GatewayHostName, "gateway"},
    {&Served::m_NewDayTime, "+0700"},
    {&Served::m_Description, "description"},
    {&Served::m_Contact, "contact"},
    {&Served::m_StartSummerTime, "start"},
    {&Served::m_EndSummerTime, "end"}};
const std::pair<decltype(&Served::m_PortNumber), int> kServedNumbers[] = {
    {&Served::m_PortNumber, 7005},
    {&Served::m_GatewayPortNumber, 7006},
    {&Served::m_StartDayOfTheWeek, 7}};  // the server counts from 1

Served Record() {
  Served record;
  for (const auto& [member, value] : kServedTexts) record.*member = value;
  for (const auto& [member, value] : kServedNumbers) record.*member = value;
  record.m_FixPackLevel = " 20 ";
  return record;
}

TDC Filled(const Served& record = Record()) {
  TDC dc;
  EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
  return dc;
}

constexpr std::string (TDC::*kTexts[])() const = {
    &TDC::GetName,        &TDC::GetNewDayTime,      &TDC::GetEnabled,       &TDC::GetCode,
    &TDC::GetTimeZone,    &TDC::GetStartSummerTime, &TDC::GetEndSummerTime, &TDC::GetProtocol,
    &TDC::GetVLTHostName, &TDC::GetGTWHostName,     &TDC::GetDescription,   &TDC::GetContact};
constexpr std::pair<bool (TDC::*)() const, void (TDC::*)(bool)> kFlags[] = {
    {&TDC::GetUC, &TDC::SetUC},
    {&TDC::GetVeltR, &TDC::SetVeltR},
    {&TDC::GetVeltT, &TDC::SetVeltT},
    {&TDC::GetVeltB, &TDC::SetVeltB}};

std::string Flags(const TDC& dc) {
  std::string text;
  for (const auto& [get, set] : kFlags) text += (dc.*get)() ? '1' : '0';
  return text;
}

std::string Dump(const TDC& dc) {
  std::string text = dc.GetVersion().TypeAsString() + "|" + dc.GetVersion().FullVer() + "|";
  for (const auto get : kTexts) text += (dc.*get)() + "|";
  for (const int number :
       {dc.GetStartDayOfTheWeek(), dc.GetVLTPortNumber(), dc.GetGTWPortNumber()}) {
    text += std::to_string(number) + "|";
  }
  return text + Flags(dc) + (dc.IsOnlyInDraft() ? "|draft" : "");
}

TEST(TDCTest, FieldsAreServedAndSet) {
  const std::string kFilled =
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
    std::string expected = "0000";
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
  std::vector<Served> records;
  for (const auto& row : kServedTexts) records.emplace_back(Record()).*row.first = "new";
  for (const auto& row : kServedNumbers) records.emplace_back(Record()).*row.first = 3;
  std::string lines;
  for (const Served& record : records) {
    TDC dc = Filled();
    vq::test::LogCapture log(5);
    EXPECT_TRUE(TDC::ConvertQCSCommAdminStructToTDC(record, dc));
    EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
    lines += log.Text();
  }
  EXPECT_NE(lines.find(": Value of Port was changed from 7005 to 3\n"), std::string::npos);
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

}  // namespace
