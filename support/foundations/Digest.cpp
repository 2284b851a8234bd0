#include <support/foundations/Digest.h>

#include <array>
#include <span>
#include <string>

#include <openssl/evp.h>

#include <support/security/ChallengeResponse.h>

bool CalcMD5(const char* text, std::size_t length, int /*reserved*/, char* buffer) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  std::size_t size = 0;
  buffer[0] = '\0';
  if (EVP_Q_digest(nullptr, "MD5", nullptr, text, length, digest.data(), &size) != 1 ||
      size != 16) {
    return false;
  }
  std::string digits;
  vq::AppendHex(std::span(digest).first(size), digits);
  buffer[digits.copy(buffer, digits.size())] = '\0';
  return true;
}
