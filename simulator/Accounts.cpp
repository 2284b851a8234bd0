#include <simulator/Accounts.h>

namespace vq::sim {

std::string Accounts::EncodedLocked(const User& known, const std::string& user) const {
  const auto standing = m_standings.find(user);
  const bool changed = standing != m_standings.end() && !standing->second.encoded.empty();
  return changed ? standing->second.encoded : Encode(known.password);
}

std::string Accounts::Encoded(const Site& site, const std::string& user) {
  const User* known = site.FindUser(user);
  const std::lock_guard lock(m_mutex);
  return known == nullptr ? std::string() : EncodedLocked(*known, user);
}

Accounts::Verdict Accounts::LogIn(const Site& site, const std::string& user,
                                  std::string_view shown) {
  const User* known = site.FindUser(user);
  if (known == nullptr) return Verdict::UnknownUser;
  const std::lock_guard lock(m_mutex);
  const std::string encoded = EncodedLocked(*known, user);
  Standing& standing = m_standings[user];
  if (known->locked || standing.locked) return Verdict::Locked;
  const bool right = site.EncodesPasswords() ? m_challenges.Spend(shown, encoded)
                                             : SameSecret(Encode(shown), encoded);
  if (right) {
    standing.failedTries = 0;
    return Verdict::Right;
  }
  ++standing.failedTries;
  standing.locked = site.triesBeforeLock > 0 && standing.failedTries >= site.triesBeforeLock;
  return Verdict::Wrong;
}

Accounts::Verdict Accounts::Check(const Site& site, const std::string& user,
                                  std::string_view shown) {
  const User* known = site.FindUser(user);
  if (known == nullptr) return Verdict::UnknownUser;
  const std::lock_guard lock(m_mutex);
  const auto standing = m_standings.find(user);
  if (known->locked || (standing != m_standings.end() && standing->second.locked)) {
    return Verdict::Locked;
  }
  const std::string encoded = site.EncodesPasswords() ? std::string(shown) : Encode(shown);
  return SameSecret(encoded, EncodedLocked(*known, user)) ? Verdict::Right : Verdict::Wrong;
}

void Accounts::ChangePassword(const Site& site, const std::string& user, std::string_view sent) {
  const std::lock_guard lock(m_mutex);
  m_standings[user].encoded = site.EncodesPasswords() ? std::string(sent) : Encode(sent);
}

Expiry Accounts::ExpiryOf(const Site& site, const std::string& user) {
  const User* known = site.FindUser(user);
  const std::lock_guard lock(m_mutex);
  const auto standing = m_standings.find(user);
  const bool changed = standing != m_standings.end() && !standing->second.encoded.empty();
  return known == nullptr || changed ? Expiry::Never : known->expiry;
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
