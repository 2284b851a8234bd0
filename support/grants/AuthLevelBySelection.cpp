#include <support/grants/AuthLevelBySelection.h>

#include <utility>
#include <vector>

#include <support/diagnostics/TDiag.h>
#include <support/grants/GrantLevels.h>

namespace {

TDiagRegister diagModule("AuthLevelBySelection");

// Returns whether all of the new criteria parsed.
bool Load(std::shared_ptr<const vq::GrantIndex>& holder, const QCSCorbaAuth2LvlSeq& wire,
          bool replace, const TDiagFunc& diag) {
  std::vector<vq::Grant> grants;
  if (!replace && holder != nullptr) grants = holder->Grants();
  const auto first = static_cast<std::uint32_t>(grants.size());
  grants.reserve(grants.size() + wire.length());
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const char* criteria = wire[i].m_sCriteria;  // null only in a list made in this process
    grants.push_back({criteria == nullptr ? "" : criteria, vq::StoredLevel(wire[i].m_eLevel)});
  }
  auto index = std::make_shared<const vq::GrantIndex>(std::move(grants));
  vq::LogRefusedGrants(diag, *index, first);
  holder = std::move(index);
  return holder->RefusedGrants().empty() || holder->RefusedGrants().back().grant < first;
}

}  // namespace

AuthLevelBySelection::AuthLevelBySelection() = default;
AuthLevelBySelection::AuthLevelBySelection(const AuthLevelBySelection&) = default;
AuthLevelBySelection& AuthLevelBySelection::operator=(const AuthLevelBySelection&) = default;
AuthLevelBySelection::~AuthLevelBySelection() = default;

bool AuthLevelBySelection::UserAuthFromCORBA(const QCSCorbaAuth2LvlSeq& grants, bool replace) {
  const TDiagFunc diag(diagModule, "AuthLevelBySelection::UserAuthFromCORBA");
  return Load(m_user, grants, replace, diag);
}

void AuthLevelBySelection::GroupAuthFromCORBA(const QCSCorbaAuth2LvlSeq& grants, bool replace) {
  const TDiagFunc diag(diagModule, "AuthLevelBySelection::GroupAuthFromCORBA");
  Load(m_group, grants, replace, diag);
}

bool AuthLevelBySelection::IsAuthorized(const QCSObject& object,
                                        const QCSAuthLevelEnum& level) const {
  return vq::GrantsGiveLevel(m_user.get(), m_group.get(), object, level);
}

bool AuthLevelBySelection::IsEmpty() const {
  return !vq::HasGrants(m_user.get()) && !vq::HasGrants(m_group.get());
}
