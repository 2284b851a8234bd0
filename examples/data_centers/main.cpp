// Stores data centers by name, and prints the features of their schedulers. Needs no server.
//
//   data_centers
//
// A real program fills the list from the server's records (TDC::ConvertQCSCommAdminStructToTDC).

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// `platform`: as in the server's data. `full`: version and fix-pack level, such as "700.20".
TDC MakeDataCenter(const std::string& name, const std::string& platform, const std::string& full) {
  std::string version = full;
  std::string fixPack;
  if (full.find('.') != std::string::npos) {
    TVltVersion::SplitFullVersionStr(full, version, fixPack);
  }
  TDC dc;
  dc.SetName(name);
  dc.SetVersion(TVltVersion(TVltVersion::TypeFromString(platform), version, fixPack));
  return dc;
}

void Show(const TDC& dc) {
  const TVltVersion version = dc.GetVersion();
  std::cout << dc.GetName() << ' ' << version.TypeAsString() << ' ' << version.FullVer()
            << ": applications " << (version.SupportsApplications() ? "yes" : "no")
            << ", active tables " << (version.SupportsActiveTables() ? "yes" : "no")
            << ", sub-tables " << (version.SupportsActiveSubTables() ? "yes" : "no") << '\n';
}

}  // namespace

int main() {
  // The list of the process, which the library neither fills nor reads.
  DataCenters.Add(MakeDataCenter("PARIS", "UNIX", "700.20"));
  DataCenters.Add(MakeDataCenter("BERLIN", "UNIX", "610"));
  DataCenters.Add(MakeDataCenter("TOKYO", "MVS", "620"));
  DataCenters.Add(MakeDataCenter("OSLO", "UNIX", "700.10"));

  auto position = DataCenters.GetFirstDCPosition();  // in the order of their names
  for (; position != DataCenters.GetEndDCPosition(); ++position) Show(position->second);

  // May one replace another? Type and version must be equal; the fix-pack level does not count.
  std::string why;
  for (const char* other : {"OSLO", "BERLIN", "ROME"}) {
    const bool can = DataCenters.CanReplace("PARIS", other, why) == 1;
    std::cout << "PARIS by " << other << ": " << (can ? "yes" : why) << '\n';
  }

  ArrayWrap<std::string> names;
  DataCenters.GetAsStringListByVersion(names, TVltVersion(VLT_TYPE_DISTRIBUTED, "700", ""));
  std::cout << "Distributed 700:";
  for (const std::string& name : names) std::cout << ' ' << name;
  std::cout << '\n';
  return 0;
}
