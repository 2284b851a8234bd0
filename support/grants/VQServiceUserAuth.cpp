#include <support/grants/VQServiceUserAuth.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <support/diagnostics/TDiag.h>
#include <support/grants/GrantLevels.h>

namespace {

TDiagRegister diagModule("VQServiceUserAuth");

std::vector<vq::Grant> ForIndex(const std::list<VQServiceAuth>& list) {
  std::vector<vq::Grant> grants;
  grants.reserve(list.size());
  for (const VQServiceAuth& grant : list) {
    grants.push_back({grant.Criteria, vq::StoredLevel(grant.Level)});
  }
  return grants;
}

}  // namespace

class VQServiceUserAuth::Grants {
 public:
  static std::shared_ptr<const Grants> Make(std::list<VQServiceAuth> list, const TDiagFunc& diag) {
    if (list.empty()) return nullptr;
    auto grants = std::make_shared<const Grants>(std::move(list));
    vq::LogRefusedGrants(diag, grants->Index(), 0);
    return grants;
  }

  static std::shared_ptr<const Grants> Join(const std::shared_ptr<const Grants>& first,
                                            const std::shared_ptr<const Grants>& second) {
    if (first == nullptr) return second;
    if (second == nullptr) return first;
    std::list<VQServiceAuth> list = first->m_list;
    list.insert(list.end(), second->m_list.begin(), second->m_list.end());
    return std::make_shared<const Grants>(std::move(list));
  }

  explicit Grants(std::list<VQServiceAuth> list)
      : m_list(std::move(list)), m_index(ForIndex(m_list)) {
    m_byNumber.reserve(m_list.size());
    for (const VQServiceAuth& grant : m_list) m_byNumber.push_back(&grant);
  }

  const std::list<VQServiceAuth>& List() const { return m_list; }
  const vq::GrantIndex& Index() const { return m_index; }

  enum class Verdict { NoneFits, Refused, Allowed };
  Verdict JudgeAction(const QCSObject& service, int action) const {
    bool someFits = false;
    const bool allowed = m_index.AnyFitting(service, [&](std::uint32_t number) {
      someFits = true;
      const std::vector<int>& actions = m_byNumber[number]->Actions;
      return std::find(actions.begin(), actions.end(), action) != actions.end();
    });
    if (allowed) return Verdict::Allowed;
    return someFits ? Verdict::Refused : Verdict::NoneFits;
  }

  static const vq::GrantIndex* IndexOf(const std::shared_ptr<const Grants>& grants) {
    return grants == nullptr ? nullptr : &grants->m_index;
  }
  static const std::list<VQServiceAuth>& ListOf(const std::shared_ptr<const Grants>& grants) {
    static const std::list<VQServiceAuth> kNone;
    return grants == nullptr ? kNone : grants->m_list;
  }

 private:
  std::list<VQServiceAuth> m_list;
  vq::GrantIndex m_index;
  std::vector<const VQServiceAuth*> m_byNumber;
};

VQServiceUserAuth::VQServiceUserAuth() = default;
VQServiceUserAuth::VQServiceUserAuth(const VQServiceUserAuth&) = default;
VQServiceUserAuth& VQServiceUserAuth::operator=(const VQServiceUserAuth&) = default;
VQServiceUserAuth::~VQServiceUserAuth() = default;

VQServiceUserAuth::VQServiceUserAuth(std::list<VQServiceAuth> user,
                                     std::list<VQServiceAuth> groups) {
  const TDiagFunc diag(diagModule, "VQServiceUserAuth::VQServiceUserAuth");
  m_user = Grants::Make(std::move(user), diag);
  m_group = Grants::Make(std::move(groups), diag);
}

void VQServiceUserAuth::Clear() {
  m_user.reset();
  m_group.reset();
}

void VQServiceUserAuth::AddUserAuth(const VQServiceUserAuth& other) {
  m_user = Grants::Join(m_user, other.m_user);
}

void VQServiceUserAuth::AddGroupAuth(const VQServiceUserAuth& other) {
  m_group = Grants::Join(m_group, other.m_group);
}

bool VQServiceUserAuth::IsDefAccessAllowed(const QCSObject& service, QCSAuthLevelEnum level) const {
  return vq::GrantsGiveLevel(Grants::IndexOf(m_user), Grants::IndexOf(m_group), service, level);
}

bool VQServiceUserAuth::IsActionAllowed(const QCSObject& service, int action) const {
  using Verdict = Grants::Verdict;
  Verdict verdict = Verdict::NoneFits;
  if (m_user != nullptr) verdict = m_user->JudgeAction(service, action);
  if (verdict == Verdict::NoneFits && m_group != nullptr) {
    verdict = m_group->JudgeAction(service, action);
  }
  return verdict == Verdict::Allowed;
}

bool VQServiceUserAuth::IsEmpty() const {
  return !vq::HasGrants(Grants::IndexOf(m_user)) && !vq::HasGrants(Grants::IndexOf(m_group));
}

const std::list<VQServiceAuth>& VQServiceUserAuth::UserAuth() const {
  return Grants::ListOf(m_user);
}

const std::list<VQServiceAuth>& VQServiceUserAuth::GroupAuth() const {
  return Grants::ListOf(m_group);
}
