#include <vq_client_common/datacenters/TDC.h>

#include <algorithm>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaConversions.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

TDiagRegister diagModule("TDC");

template <typename Field>
bool UpdateIfChanged(const char* label, Field& field, const Field& value) {
  const TDiagFunc diag(diagModule, "TDC::UpdateFieldIfChanged");
  if (field == value) return false;
  VQ_LOG(diag, 5) << "Value of " << label << " was changed from " << field << " to " << value;
  field = value;
  return true;
}

constexpr auto* Text = CorbaString2StlString;

// Only "1" sets a flag.
bool Flag(const char* member) {
  return Text(member) == "1";
}

// The server counts the days of the week from 1, the record from 0. A day below 1 becomes -1.
std::int32_t StartDay(std::int32_t day) {
  return std::max(day, 0) - 1;
}

}  // namespace

TDC::~TDC() = default;

void TDC::Serialize(void* /*archive*/) {}

void TDC::SerializePrevVersion(void* /*archive*/) {}

void TDC::Set(const std::string& name, const TVltVersion& version, bool uc, bool veltR, bool veltT,
              bool veltB, std::int32_t startDay, const std::string& newDay) {
  m_name = name;
  m_version = version;
  m_uc = uc;
  m_veltR = veltR;
  m_veltT = veltT;
  m_veltB = veltB;
  m_startDayOfTheWeek = startDay;
  m_newDayTime = newDay;
}

bool TDC::UpdateFieldIfChanged(const char* label, std::string& field, const std::string& value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFieldIfChanged(const char* label, bool& field, bool value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFieldIfChanged(const char* label, std::int32_t& field, std::int32_t value) {
  return UpdateIfChanged(label, field, value);
}

bool TDC::UpdateFull(const std::string& name, const std::string& enabled,
                     const std::string& platform, const std::string& version,
                     const std::string& fixPack, const std::string& code,
                     const std::string& protocol, bool veltR, bool uc, bool veltT, bool veltB,
                     const std::string& timeZone, const std::string& hostName, std::int32_t port,
                     std::int32_t startDay, const std::string& gatewayHost,
                     std::int32_t gatewayPort, const std::string& newDay,
                     const std::string& description, const std::string& contact,
                     const std::string& startSummerTime, const std::string& endSummerTime) {
  const TDiagFunc diag(diagModule, "TDC::UpdateFull");
  bool changed = false;
  if (startDay < 0 || startDay > 6) {
    // Intentional: a repair always counts as a change; callers recognise a bad record by it.
    startDay = 1;
    changed = true;
  }
  changed |= UpdateFieldIfChanged("Name", m_name, name);
  changed |= UpdateFieldIfChanged("Enabled", m_enabled, enabled);

  const std::string level = vq::TrimFixPackLevel(fixPack);
  const TVltType type = TVltVersion::TypeFromString(platform);
  // Intentional: a new fix-pack level alone is no change and is not stored; see operator==.
  if (m_version != TVltVersion(type, version, level)) {
    VQ_LOG(diag, 5) << "Platform & Version was changed from " << m_version.TypeAsString() << ':'
                    << m_version.FullVer() << " to " << platform << ':' << version << '.' << level;
    m_version.SetTypeVer(type, version, level);
    changed = true;
  }

  changed |= UpdateFieldIfChanged("Code", m_code, code);
  changed |= UpdateFieldIfChanged("Protocol", m_protocol, protocol);
  changed |= UpdateFieldIfChanged("Uppercase", m_uc, uc);
  changed |= UpdateFieldIfChanged("VELTRA-R", m_veltR, veltR);
  changed |= UpdateFieldIfChanged("VELTRA-T", m_veltT, veltT);
  changed |= UpdateFieldIfChanged("VELTRA-B", m_veltB, veltB);
  changed |= UpdateFieldIfChanged("Time Zone", m_timeZone, timeZone);
  changed |= UpdateFieldIfChanged("Host Name", m_vltHostName, hostName);
  changed |= UpdateFieldIfChanged("Port", m_vltPortNumber, port);
  changed |= UpdateFieldIfChanged("Start Day", m_startDayOfTheWeek, startDay);
  changed |= UpdateFieldIfChanged("Gateway Host", m_gtwHostName, gatewayHost);
  changed |= UpdateFieldIfChanged("Gateway Port", m_gtwPortNumber, gatewayPort);
  changed |= UpdateFieldIfChanged("NewDay", m_newDayTime, newDay);
  changed |= UpdateFieldIfChanged("Description", m_description, description);
  changed |= UpdateFieldIfChanged("Contact", m_contact, contact);
  changed |= UpdateFieldIfChanged("ST Start", m_startSummerTime, startSummerTime);
  changed |= UpdateFieldIfChanged("ST End", m_endSummerTime, endSummerTime);
  return changed;
}

TVltVersion TDC::ConvertVLTVersionFromQCSCommAdminStruct(const QCSCommAdminStruct& record) {
  return {TVltVersion::TypeFromString(Text(record.m_Platform.in())), Text(record.m_Version.in()),
          Text(record.m_FixPackLevel.in())};
}

bool TDC::ConvertQCSCommAdminStructToTDC(const QCSCommAdminStruct& record, TDC& tdc) {
  // Intentional: the scope has the name of the list's class; readers of logs search for it.
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
