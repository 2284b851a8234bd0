#include <support/grants/VQServiceUserAuth.h>

#include <algorithm>
#include <utility>

#include <support/diagnostics/TDiag.h>
#include <support/grants/GrantIndex.h>
#include <support/orb/CorbaConversions.h>

namespace {

TDiagRegister diagModule("VQServiceUserAuth");

}  // namespace

void CrbConvert(const QCSCorbaAuth2LvlSeq2& wire, std::list<VQServiceAuth>& grants) {
  std::list<VQServiceAuth> converted;
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    const QCSCORBAAuthPair2& pair = wire[i];
    VQServiceAuth& grant = converted.emplace_back(
        VQServiceAuth{CorbaString2StlString(pair.Criteria.in()), pair.Level, {}});
    const auto* const actions = pair.Actions.get_buffer();
    grant.Actions.assign(actions, actions + LengthOnTheWire(pair.Actions));
  }
  grants = std::move(converted);
}

struct VQServiceUserAuth::Grants {
  explicit Grants(std::list<VQServiceAuth> grants) : list(std::move(grants)) {
    const TDiagFunc diag(diagModule, "VQServiceUserAuth::VQServiceUserAuth");
    for (const VQServiceAuth& grant : list) {
      index.Add(grant.Criteria, grant.Level, diag);
      byNumber.push_back(&grant);
    }
  }

  std::list<VQServiceAuth> list;
  vq::GrantIndex index;
  std::vector<const VQServiceAuth*> byNumber;  // as the index numbers them
};

VQServiceUserAuth::VQServiceUserAuth() : VQServiceUserAuth(std::list<VQServiceAuth>()) {}
VQServiceUserAuth::VQServiceUserAuth(const VQServiceUserAuth&) = default;
VQServiceUserAuth& VQServiceUserAuth::operator=(const VQServiceUserAuth&) = default;
VQServiceUserAuth::~VQServiceUserAuth() = default;

VQServiceUserAuth::VQServiceUserAuth(std::list<VQServiceAuth> user, std::list<VQServiceAuth> groups)
    : m_user(std::make_shared<const Grants>(std::move(user))),
      m_group(std::make_shared<const Grants>(std::move(groups))) {}

void VQServiceUserAuth::Clear() {
  *this = VQServiceUserAuth();
}

void VQServiceUserAuth::Append(std::shared_ptr<const Grants>& grants,
                               const std::shared_ptr<const Grants>& others) {
  if (grants->list.empty()) {
    grants = others;
    return;
  }
  std::list<VQServiceAuth> list = grants->list;
  list.insert(list.end(), others->list.begin(), others->list.end());
  grants = std::make_shared<const Grants>(std::move(list));
}

void VQServiceUserAuth::AddUserAuth(const VQServiceUserAuth& other) {
  Append(m_user, other.m_user);
}

void VQServiceUserAuth::AddGroupAuth(const VQServiceUserAuth& other) {
  Append(m_group, other.m_group);
}

bool VQServiceUserAuth::IsDefAccessAllowed(const QCSObject& service, QCSAuthLevelEnum level) const {
  return vq::GrantsGiveLevel(m_user->index, m_group->index, service, level);
}

bool VQServiceUserAuth::IsActionAllowed(const QCSObject& service, int action) const {
  for (const Grants* grants : {m_user.get(), m_group.get()}) {
    bool someFits = false;
    const bool allowed = grants->index.AnyFitting(service, [&](std::uint32_t number) {
      someFits = true;
      const std::vector<int>& actions = grants->byNumber[number]->Actions;
      return std::find(actions.begin(), actions.end(), action) != actions.end();
    });
    if (someFits) return allowed;
  }
  return false;
}

bool VQServiceUserAuth::IsEmpty() const {
  return m_user->list.empty() && m_group->list.empty();
}

const std::list<VQServiceAuth>& VQServiceUserAuth::UserAuth() const {
  return m_user->list;
}

const std::list<VQServiceAuth>& VQServiceUserAuth::GroupAuth() const {
  return m_group->list;
}
