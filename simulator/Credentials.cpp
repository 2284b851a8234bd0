#include <simulator/Credentials.h>

#include <algorithm>
#include <array>
#include <span>
#include <stdexcept>
#include <vector>

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

namespace vq::sim {
namespace {

constexpr std::size_t kEncodedLength = 8;
constexpr std::size_t kResponseLength = 2 * SHA256_DIGEST_LENGTH;

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::string Hex(std::span<const unsigned char> bytes) {
  return fmt::format("{:02x}", fmt::join(bytes, ""));
}

std::string WithLength(const std::string& text) {
  std::string length(8, '\0');
  for (std::size_t i = 0; i < 8; ++i) {
    length[i] = static_cast<char>(static_cast<std::uint64_t>(text.size()) >> (56 - 8 * i));
  }
  return length + text;
}

}  // namespace

void PrepareCredentials() {
  // The ORB's threads may still be in OpenSSL when the process ends; without its exit handler
  // OpenSSL keeps the objects that they use.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
  Respond({RandomHex(2), ""}, Encode(""));
}

std::string Encode(std::string_view password) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
  SHA256(Bytes(password), password.size(), digest.data());
  std::array<unsigned char, 4 * SHA256_DIGEST_LENGTH> base64{};
  EVP_EncodeBlock(base64.data(), digest.data(), static_cast<int>(digest.size()));
  std::string text(base64.begin(), base64.begin() + kEncodedLength);
  std::replace(text.begin(), text.end(), '+', '-');
  std::replace(text.begin(), text.end(), '/', '_');
  return text;
}

std::string Respond(const Challenge& challenge, std::string_view encoded) {
  const std::string message = WithLength(challenge.first) + WithLength(challenge.second);
  std::array<unsigned char, SHA256_DIGEST_LENGTH> mac{};
  if (HMAC(EVP_sha256(), encoded.data(), static_cast<int>(encoded.size()), Bytes(message),
           message.size(), mac.data(), nullptr) == nullptr) {
    throw std::runtime_error("no HMAC-SHA-256");
  }
  return Hex(mac);
}

std::string RandomHex(std::size_t digits) {
  std::vector<unsigned char> bytes((digits + 1) / 2);
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw std::runtime_error("no random numbers");
  }
  return Hex(bytes).substr(0, digits);
}

bool SameSecret(std::string_view left, std::string_view right) {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string_view FormOf(std::string_view sent, std::string_view encoded) {
  if (sent.empty()) return "empty";
  if (!encoded.empty() && SameSecret(sent, encoded)) return "encoded";
  if (!encoded.empty() && SameSecret(Encode(sent), encoded)) return "plain";
  const bool hex = sent.find_first_not_of("0123456789abcdef") == std::string_view::npos;
  return hex && sent.size() == kResponseLength ? "response" : "unknown";
}

Challenge Challenges::Acquire(std::size_t pending, std::chrono::seconds lifetime) {
  const Challenge challenge{RandomHex(32), RandomHex(32)};
  const std::lock_guard lock(m_mutex);
  while (m_open.size() >= pending) m_open.pop_front();
  m_open.push_back({challenge, m_clock.Now() + lifetime});
  return challenge;
}

bool Challenges::Spend(std::string_view response, std::string_view encoded) {
  const std::lock_guard lock(m_mutex);
  const Clock::Time now = m_clock.Now();
  std::erase_if(m_open, [&](const Open& open) { return open.until <= now; });
  const auto answered = std::find_if(m_open.begin(), m_open.end(), [&](const Open& open) {
    return SameSecret(response, Respond(open.challenge, encoded));
  });
  if (answered == m_open.end()) return false;
  m_open.erase(answered);
  return true;
}

void Challenges::Clear() {
  const std::lock_guard lock(m_mutex);
  m_open.clear();
}

}  // namespace vq::sim
