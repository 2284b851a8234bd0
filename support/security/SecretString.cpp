#include <support/security/SecretString.h>

#include <utility>

#include <openssl/crypto.h>

namespace vq {

void Wipe(std::string& text) noexcept {
  text.resize(text.capacity());  // Never allocates: the capacity is there already.
  OPENSSL_cleanse(text.data(), text.size());
  text.clear();
}

SecretString::SecretString(SecretString&& other) noexcept : m_text(std::move(other.m_text)) {
  Wipe(other.m_text);  // A short string was copied, not moved.
}

SecretString& SecretString::operator=(const SecretString& other) {
  if (this == &other) return *this;
  std::string copy(other.m_text);
  Wipe(m_text);
  m_text.swap(copy);
  Wipe(copy);  // Swapping short strings leaves the secret's bytes in it.
  return *this;
}

SecretString& SecretString::operator=(SecretString&& other) noexcept {
  if (this == &other) return *this;
  Wipe(m_text);
  m_text.swap(other.m_text);
  Wipe(other.m_text);  // Swapping short strings goes through both buffers.
  return *this;
}

}  // namespace vq
