#include <support/security/ChallengeResponse.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include <endian.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <support/security/SecretString.h>

namespace {

constexpr std::size_t kDigestSize = 32;

// A digest on the stack that is wiped on every way out.
struct Digest {
  std::array<unsigned char, kDigestSize> bytes{};
  Digest() = default;
  ~Digest() { OPENSSL_cleanse(bytes.data(), bytes.size()); }
  Digest(const Digest&) = delete;
  Digest& operator=(const Digest&) = delete;
};

void ToBase64Url(const Digest& digest, std::string& out) {
  constexpr std::size_t kLength = 43;
  out.resize(kLength + 2);  // a closing "=" and a zero byte
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), digest.bytes.data(), kDigestSize);
  out.resize(kLength);
  std::ranges::replace(out, '+', '-');
  std::ranges::replace(out, '/', '_');
}

void AppendWithLength(const std::string& text, std::string& message) {
  const std::uint64_t length = htobe64(text.size());
  message.append(reinterpret_cast<const char*>(&length), sizeof length);
  message += text;
}

}  // namespace

void ChkSum(const std::string& text, std::string& result) {
  Digest digest;
  const bool done = EVP_Q_digest(nullptr, "SHA256", nullptr, text.data(), text.size(),
                                 digest.bytes.data(), nullptr) == 1;
  vq::Wipe(result);
  if (!done) throw std::runtime_error("ChkSum: no SHA-256 digest");
  ToBase64Url(digest, result);
}

void MakeChallengeResponse(const std::string& first, const std::string& second,
                           const std::string& password, std::string& response) {
  std::string message;
  message.reserve(first.size() + second.size() + 16);
  AppendWithLength(first, message);
  AppendWithLength(second, message);

  Digest digest;
  std::size_t written = 0;
  const bool done =
      EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA256", nullptr, password.data(), password.size(),
                reinterpret_cast<const unsigned char*>(message.data()), message.size(),
                digest.bytes.data(), digest.bytes.size(), &written) != nullptr;
  vq::Wipe(response);
  if (!done || written != kDigestSize) {
    throw std::runtime_error("MakeChallengeResponse: no HMAC-SHA-256");
  }
  vq::AppendHex(digest.bytes, response);
}

void vq::AppendHex(std::span<const unsigned char> bytes, std::string& text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  text.reserve(text.size() + 2 * bytes.size());  // so that no copy of a secret is left behind
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
  }
}
