#include <simulator/Accounts.h>

namespace vq::sim {

Accounts::Standing Accounts::StandingOf(const std::string& user) const {
  const auto found = m_standings.find(user);
  return found == m_standings.end() ? Standing{} : found->second;
}

std::string Accounts::EncodedOf(const User& known, const std::string& user) const {
  const std::string changed = StandingOf(user).encoded;
  return changed.empty() ? Encode(known.password) : changed;
}

std::string Accounts::Encoded(const Site& site, const std::string& user) {
  const User* known = site.FindUser(user);
  const std::lock_guard lock(m_mutex);
  return known == nullptr ? std::string() : EncodedOf(*known, user);
}

Accounts::Verdict Accounts::LogIn(const Site& site, const std::string& user,
                                  std::string_view sent) {
  const User* known = site.FindUser(user);
  if (known == nullptr) return Verdict::kUnknownUser;
  const std::lock_guard lock(m_mutex);
  const std::string encoded = EncodedOf(*known, user);
  Standing& standing = m_standings[user];
  if (known->locked || standing.locked) return Verdict::kLocked;
  const bool right = site.EncodesPasswords() ? m_challenges.Spend(sent, encoded)
                                             : SameSecret(Encode(sent), encoded);
  standing.failedTries = right ? 0 : standing.failedTries + 1;
  standing.locked = site.triesBeforeLock > 0 && standing.failedTries >= site.triesBeforeLock;
  return right ? Verdict::kRight : Verdict::kWrong;
}

Accounts::Verdict Accounts::Check(const Site& site, const std::string& user,
                                  std::string_view sent) {
  const User* known = site.FindUser(user);
  if (known == nullptr) return Verdict::kUnknownUser;
  const std::lock_guard lock(m_mutex);
  if (known->locked || StandingOf(user).locked) return Verdict::kLocked;
  const std::string encoded = site.EncodesPasswords() ? std::string(sent) : Encode(sent);
  return SameSecret(encoded, EncodedOf(*known, user)) ? Verdict::kRight : Verdict::kWrong;
}

bool Accounts::IsLocked(const Site& site, const std::string& user) {
  const User* known = site.FindUser(user);
  const std::lock_guard lock(m_mutex);
  return (known != nullptr && known->locked) || StandingOf(user).locked;
}

void Accounts::ChangePassword(const Site& site, const std::string& user, std::string_view sent) {
  const std::lock_guard lock(m_mutex);
  m_standings[user].encoded = site.EncodesPasswords() ? std::string(sent) : Encode(sent);
}

Expiry Accounts::ExpiryOf(const Site& site, const std::string& user) {
  const User* known = site.FindUser(user);
  const std::lock_guard lock(m_mutex);
  const bool isFresh = known == nullptr || !StandingOf(user).encoded.empty();
  return isFresh ? Expiry::kNever : known->expiry;
}

void Accounts::Forget(const std::string& user) {
  const std::lock_guard lock(m_mutex);
  m_standings.erase(user);
}

void Accounts::Clear() {
  const std::lock_guard lock(m_mutex);
  m_standings.clear();
}

std::map<std::string, Accounts::Standing> Accounts::List() {
  const std::lock_guard lock(m_mutex);
  return m_standings;
}

}  // namespace vq::sim
