#include <support/grants/AuthLevelBySelection.h>

#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/grants/GrantIndex.h>
#include <support/orb/CorbaConversions.h>

namespace {

TDiagRegister diagModule("AuthLevelBySelection");

// Returns whether all of the new criteria parsed.
bool Load(std::shared_ptr<const vq::GrantIndex>& holder, const QCSCorbaAuth2LvlSeq& wire,
          bool replace, const TDiagFunc& diag) {
  auto index = std::make_shared<vq::GrantIndex>(replace ? vq::GrantIndex() : *holder);
  bool allParse = true;
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    allParse &= index->Add(CorbaString2StlString(wire[i].m_sCriteria.in()), wire[i].m_eLevel, diag);
  }
  holder = std::move(index);
  return allParse;
}

}  // namespace

AuthLevelBySelection::AuthLevelBySelection()
    : m_user(std::make_shared<const vq::GrantIndex>()), m_group(m_user) {}
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
  return vq::GrantsGiveLevel(*m_user, *m_group, object, level);
}

bool AuthLevelBySelection::IsEmpty() const {
  return m_user->size() == 0 && m_group->size() == 0;
}
