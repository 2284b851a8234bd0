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
  return *this = SecretString(other);
}

SecretString& SecretString::operator=(SecretString&& other) noexcept {
  SecretString taken(std::move(other));  // Its destructor wipes what the swap leaves in it.
  Wipe(m_text);
  m_text.swap(taken.m_text);
  return *this;
}

}  // namespace vq
