// The rights of a user, in the forms of the wire.
#ifndef VQ_SIMULATOR_SNAPSHOT_H
#define VQ_SIMULATOR_SNAPSHOT_H

#include <string>
#include <vector>

#include <simulator/Site.h>
#include <vq_idl/AuthorizationC.h>

namespace vq::sim {

QCSCorbaAuth2LvlSeq ToWire(const std::vector<Grant>& grants);
QCSCorbaAuth2LvlSeq2 ServicesToWire(const std::vector<Grant>& grants);
stringSeq ToWire(const std::vector<std::string>& texts);

// The snapshot of the first generation. Empty: m_BrowseAccessJobs (nil), the directory's members
// and the spare ones.
QCSCorbaAuthorizationStruct MakeSnapshot(const Site& site, const User& user);

// The criteria of all grants of a kind with at least BROWSE_ACCESS, joined by " OR ": the user's
// own grants, or the groups' where the user has none. The result is always a selection (AND binds
// closer than OR): criteria that do not parse are left out. Empty without any.
std::string MakeQuery(const Site& site, const User& user, GrantKind kind);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SNAPSHOT_H
