// TDC's conversions from the server's administration record: the one file here that knows it.

#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include <support/diagnostics/TDiag.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

TDiagRegister diagModule("TDC");

// A text member is never null on the wire; one that a caller made null counts as empty.
std::string Text(const char* member) {
  return member != nullptr ? member : "";
}

// A flag is set by "1" and by nothing else.
bool Flag(const char* member) {
  return Text(member) == "1";
}

// The server counts the days of the week from 1, the record from 0. What is below 1 stays below 0.
std::int32_t StartDay(std::int32_t day) {
  return std::max(day, 0) - 1;
}

}  // namespace

TVltVersion TDC::ConvertVLTVersionFromQCSCommAdminStruct(const QCSCommAdminStruct& record) {
  return {TVltVersion::TypeFromString(Text(record.m_Platform.in())), Text(record.m_Version.in()),
          Text(record.m_FixPackLevel.in())};
}

bool TDC::ConvertQCSCommAdminStructToTDC(const QCSCommAdminStruct& record, TDC& tdc) {
  // Meant so: the log knows this function under the list's name, and readers search for that.
  const TDiagFunc diag(diagModule, "TDCList::ConvertQCSCommAdminStructToTDC");
  return tdc.UpdateFull(
      Text(record.m_Name.in()), Text(record.m_Enabled.in()), Text(record.m_Platform.in()),
      Text(record.m_Version.in()), Text(record.m_FixPackLevel.in()), Text(record.m_Code.in()),
      Text(record.m_Protocol.in()), Flag(record.m_VeltR.in()), Flag(record.m_UpperCase.in()),
      Flag(record.m_VeltT.in()), Flag(record.m_VeltB.in()), Text(record.m_TimeZone.in()),
      Text(record.m_HostName.in()), record.m_PortNumber, StartDay(record.m_StartDayOfTheWeek),
      Text(record.m_GatewayHostName.in()), record.m_GatewayPortNumber,
      Text(record.m_NewDayTime.in()), Text(record.m_Description.in()), Text(record.m_Contact.in()),
      Text(record.m_StartSummerTime.in()), Text(record.m_EndSummerTime.in()));
}
