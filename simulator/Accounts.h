// How the users stand while the simulator runs: failed tries, locks, passwords that were changed.
// What the site says of a user is where each starts from.
//
// Thread contract: any thread.
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

  // How one user stands. Users that nothing happened to have none.
  struct Standing {
    int failedTries = 0;
    bool locked = false;
    std::string encoded;  // the changed password; empty: the site's
  };

  explicit Accounts(Challenges& challenges) : m_challenges(challenges) {}

  // Judges what a client showed at a registration: the response to an open challenge while the site
  // encodes passwords, else the plain password. The right one clears the failed tries; the wrong
  // one counts as one, and the site's number of them locks the account for every later try.
  Verdict LogIn(const Site& site, const std::string& user, std::string_view shown);
  // Judges a password without a challenge and without counting: encoded or plain as the site says.
  Verdict Check(const Site& site, const std::string& user, std::string_view shown);
  // Whether the account is locked, by the site or after wrong passwords.
  bool IsLocked(const Site& site, const std::string& user);
  // The password that is right at present, encoded; empty when there is no such user.
  std::string Encoded(const Site& site, const std::string& user);
  // Changes the password to what a client sent: encoded already while the site encodes passwords.
  // An expired password is fresh again.
  void ChangePassword(const Site& site, const std::string& user, std::string_view sent);
  // Whether the password has expired or is about to: as the site says, until it is changed.
  Expiry ExpiryOf(const Site& site, const std::string& user);
  // Back to what the site says.
  void Forget(const std::string& user);
  void Clear();
  [[nodiscard]] std::map<std::string, Standing> List();

 private:
  // The lock is held in both.
  Standing StandingOf(const std::string& user) const;
  std::string EncodedLocked(const User& known, const std::string& user) const;

  Challenges& m_challenges;
  std::mutex m_mutex;
  std::map<std::string, Standing> m_standings;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_ACCOUNTS_H
