// The table behind CLIENT_ID: what the server, the ORB and the user call each client program.
#ifndef VQ_CLIENT_COMMON_SESSION_INTERNAL_CLIENTTABLE_H
#define VQ_CLIENT_COMMON_SESSION_INTERNAL_CLIENTTABLE_H

#include <array>
#include <cstddef>
#include <string_view>

#include <vq_client_common/session/ClientId.h>

namespace vq::session {

struct ClientKind {
  std::string_view registerName;  // sent in CRB_Register
  std::string_view orbName;       // the ORB is named after it
  std::string_view words;         // shown to the user
  bool pureClient;                // how the ORB starts
};

// The columns follow no common rule. "Unkown_Client" is what servers know, spelled so.
inline constexpr std::array kClientKinds{
    ClientKind{"vq_gui", "GUI", "VELTRA-M/VQ GUI", false},
    ClientKind{"vq_desktop", "Desktop", "VELTRA-M/Desktop", false},
    ClientKind{"vq_xmlutil", "XmlUtil", "XML Utility", true},
    ClientKind{"vq_cli", "CLI", "VELTRA-M/VQ CLI", false},
    ClientKind{"vq_report", "Report", "Reporting Facility", true},
    ClientKind{"vq_qimc", "QIMC", "VELTRA-M/VQ QIM Client", false},
    ClientKind{"vq_vcm", "VCM", "VELTRA-M/VQ Configuration Manager", true},
    ClientKind{"vq_sweep", "Sweep", "Sweep Utility", false},
    ClientKind{"vq_vcmcli", "VCM_CLI", "VELTRA-M/VQ Configuration Manager CLI", true},
    ClientKind{"open_viewpoint_simulator", "OpenVPSim", "VELTRA-M/VQ Service Impact Manager",
               false},
    ClientKind{"Unkown_Client", "RCI", "VELTRA-M/VQ Remote Client Interface", true},
    ClientKind{"Unkown_Client", "", "Unknown Client", true},
};

// What a value beyond the table counts as: its last row without the words.
inline constexpr ClientKind kBeyondTheTable{"Unkown_Client", "", "", true};

constexpr ClientKind ClientKindOf(CLIENT_ID clientId) {
  const auto index = static_cast<std::size_t>(clientId);
  return index < kClientKinds.size() ? kClientKinds[index] : kBeyondTheTable;
}

}  // namespace vq::session

#endif  // VQ_CLIENT_COMMON_SESSION_INTERNAL_CLIENTTABLE_H
