// Holds data centers by name, and asks what their schedulers' versions can do. Needs no server.
//
//   data_centers
//
// A real program fills the list from the server's records (TDC::ConvertQCSCommAdminStructToTDC).

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// `platform` as the server writes it, `version` as "700.20": the version and its fix-pack level.
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
  // The process has a list of its own, which the library neither fills nor reads.
  DataCenters.Add(MakeDataCenter("PARIS", "UNIX", "700.20"));
  DataCenters.Add(MakeDataCenter("BERLIN", "UNIX", "610"));
  DataCenters.Add(MakeDataCenter("TOKYO", "MVS", "620"));
  DataCenters.Add(MakeDataCenter("OSLO", "UNIX", "700.10"));

  // By name. The first record comes by its position: GetNextDC moves on before it copies.
  TDCList::Position position = DataCenters.GetFirstDCPosition();
  Show(position->second);
  TDC dc;
  for (DataCenters.GetNextDC(position, dc); position != DataCenters.GetEndDCPosition();
       DataCenters.GetNextDC(position, dc)) {
    Show(dc);
  }

  // May one stand in for another? Type and version must be the same; the fix pack does not count.
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
