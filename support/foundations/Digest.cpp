#include <support/foundations/Digest.h>

#include <array>

#include <openssl/evp.h>

bool CalcMD5(const char* text, std::size_t length, int /*reserved*/, char* buffer) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  std::size_t size = 0;
  buffer[0] = '\0';
  if (EVP_Q_digest(nullptr, "MD5", nullptr, text, length, digest.data(), &size) != 1 ||
      size != 16) {
    return false;
  }
  char* out = buffer;
  for (std::size_t i = 0; i < size; ++i) {
    *out++ = kDigits[digest[i] >> 4U];
    *out++ = kDigits[digest[i] & 0xFU];
  }
  *out = '\0';
  return true;
}
