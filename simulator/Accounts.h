// The state of the users' accounts while the simulator runs: failed tries, locks, changed
// passwords. Each begins with the site's data for the user.
//
// Thread safety: any thread.
#ifndef VQ_SIMULATOR_ACCOUNTS_H
#define VQ_SIMULATOR_ACCOUNTS_H

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include <simulator/Credentials.h>
#include <simulator/Site.h>

namespace vq::sim {

class Accounts {
 public:
  enum class Verdict { kUnknownUser, kLocked, kWrong, kRight };

  // The state of one account. A user without a login has none.
  struct Standing {
    int failedTries = 0;
    bool locked = false;
    std::string encoded;  // the changed password; empty: the site's
  };

  explicit Accounts(Challenges& challenges) : m_challenges(challenges) {}

  // Checks what a client sent at a registration: the response to an open challenge while the site
  // encodes passwords, else the plain password. The right one clears the failed tries; a wrong one
  // counts, and the site's number of them locks the account for every later try.
  Verdict LogIn(const Site& site, const std::string& user, std::string_view sent);
  // Checks a password without a challenge and without counting; encoded while the site encodes.
  Verdict Check(const Site& site, const std::string& user, std::string_view sent);
  // Whether the account is locked, by the site or after wrong passwords.
  bool IsLocked(const Site& site, const std::string& user);
  // The current password, encoded; empty when there is no such user.
  std::string Encoded(const Site& site, const std::string& user);
  // Changes the password to the one that a client sent, which is encoded while the site encodes
  // passwords. It is no longer expired.
  void ChangePassword(const Site& site, const std::string& user, std::string_view sent);
  // Whether the password has expired or is about to, by the site until it is changed.
  Expiry ExpiryOf(const Site& site, const std::string& user);
  // Back to the site's data.
  void Forget(const std::string& user);
  void Clear();
  [[nodiscard]] std::map<std::string, Standing> List();

 private:
  // The lock is held in both.
  Standing StandingOf(const std::string& user) const;
  std::string EncodedOf(const User& known, const std::string& user) const;

  Challenges& m_challenges;
  std::mutex m_mutex;
  std::map<std::string, Standing> m_standings;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_ACCOUNTS_H
