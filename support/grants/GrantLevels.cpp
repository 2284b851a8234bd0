#include <support/grants/GrantLevels.h>

namespace vq {
namespace {

constexpr std::size_t kLinesAtMost = 20;  // a list that is wrong throughout need not fill the log
constexpr std::size_t kExcerptBytes = 200;

}  // namespace

bool GrantsGiveLevel(const GrantIndex* user, const GrantIndex* group, const QCSObject& object,
                     QCSAuthLevelEnum level) {
  int given = GrantIndex::kNoneFits;
  if (user != nullptr) given = user->HighestFitting(object);
  if (given == GrantIndex::kNoneFits && group != nullptr) given = group->HighestFitting(object);
  if (given == GrantIndex::kNoneFits) given = DEFAULT_ACCESS;
  return given >= static_cast<int>(level);
}

void LogRefusedGrants(const TDiagFunc& diag, const GrantIndex& index, std::uint32_t first) {
  std::size_t refused = 0;
  for (const GrantIndex::Refused& grant : index.RefusedGrants()) {
    if (grant.grant < first || ++refused > kLinesAtMost) continue;
    VQ_LOG(diag, 1) << "A grant is left out, its criteria do not parse " << grant.error.AsString()
                    << ". Criteria: "
                    << index.Grants()[grant.grant].criteria.substr(0, kExcerptBytes);
  }
  if (refused > kLinesAtMost) {
    VQ_LOG(diag, 1) << refused - kLinesAtMost << " further grants are left out likewise";
  }
}

}  // namespace vq
