// Proofs of a password that a client sends, implemented anew from their description, so that client
// and simulator check each other:
//
//   encoded   the first 8 characters of base64url(SHA-256(password))
//   response  hex(HMAC-SHA-256(key = encoded, message)), where the message is both challenges, each
//             after its length in eight bytes, the most significant first
//
//   Encode("secret")                            -> "K7gNU3sd"
//   Respond({first, second}, "K7gNU3sd")        -> 64 hexadecimal digits
//
// The server keeps encoded passwords only.
//
// Thread safety: Challenges may be used from any thread.
#ifndef VQ_SIMULATOR_CREDENTIALS_H
#define VQ_SIMULATOR_CREDENTIALS_H

#include <chrono>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

#include <simulator/Clock.h>

namespace vq::sim {

// Initializes the cryptographic library. To be called once, before there are other threads: the
// initialization leaks memory when several threads start it at the same time.
void PrepareCredentials();

struct Challenge {
  std::string first;
  std::string second;
};

// 8 characters of A-Z a-z 0-9 - _.
std::string Encode(std::string_view password);

// 64 characters of 0-9 a-f.
std::string Respond(const Challenge& challenge, std::string_view encoded);

// Random bytes, written as `digits` hexadecimal digits.
std::string RandomHex(std::size_t digits);

// Whether the two are equal, in a time that does not depend on where they differ.
bool SameSecret(std::string_view left, std::string_view right);

// The form of a string sent as a password, given the right password (encoded; empty when the user
// is unknown): "empty", "plain", "encoded", "response", "unknown".
std::string_view FormOf(std::string_view sent, std::string_view encoded);

// The challenges that were issued and not answered yet. A client does not name the one that it
// answers, so each of them is tried; an answered one is removed.
class Challenges {
 public:
  explicit Challenges(const Clock& clock) : m_clock(clock) {}

  // A new challenge. With more than `pending` of them open the oldest is forgotten.
  Challenge Acquire(std::size_t pending, std::chrono::seconds lifetime);
  // Whether this answers an open challenge, which is then removed.
  bool Spend(std::string_view response, std::string_view encoded);
  // Forgets all of them.
  void Clear();

 private:
  struct Open {
    Challenge challenge;
    Clock::Time until;
  };
  const Clock& m_clock;
  std::mutex m_mutex;
  std::deque<Open> m_open;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CREDENTIALS_H
