// What the holders of grants share: levels as the grant index keeps them, the rule that a user's
// own grants go before the groups', and the lines about criteria that do not parse.
#ifndef VQ_SUPPORT_GRANTS_GRANTLEVELS_H
#define VQ_SUPPORT_GRANTS_GRANTLEVELS_H

#include <algorithm>
#include <cstdint>
#include <limits>

#include <support/diagnostics/TDiag.h>
#include <support/grants/GrantIndex.h>
#include <support/orb/Corba.h>
#include <support/selection/QCSObject.h>
#include <vq_idl/AuthorizationC.h>

namespace vq {

// The ORB refuses numbers outside the enumeration; a value made in this process may still be one.
inline std::uint8_t StoredLevel(QCSAuthLevelEnum level) {
  return static_cast<std::uint8_t>(
      std::clamp<int>(static_cast<int>(level), 0, std::numeric_limits<std::uint8_t>::max()));
}

// Whether the user's grants, or where none of them fits the groups', give the level over the
// object. Either may be null. May be called from any thread.
bool GrantsGiveLevel(const GrantIndex* user, const GrantIndex* group, const QCSObject& object,
                     QCSAuthLevelEnum level);

// Whether any grant of the index can ever fit. Null has none.
inline bool HasGrants(const GrantIndex* index) {
  return index != nullptr && index->RefusedGrants().size() < index->Grants().size();
}

// One line at level 1 for each of the first refused grants from number `first` on, and one that
// counts the rest.
void LogRefusedGrants(const TDiagFunc& diag, const GrantIndex& index, std::uint32_t first);

}  // namespace vq

#endif  // VQ_SUPPORT_GRANTS_GRANTLEVELS_H
