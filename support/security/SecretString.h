// A string that is overwritten when it is no longer needed, such as a password.
//
// A *secret* is a password or a value computed from one. Freeing a string leaves its bytes in the
// heap, and a short string leaves them in the object itself, so a secret is overwritten before its
// memory is freed.
//
//   vq::SecretString secret;
//   if (vq::AskForPassword()(user, secret).empty()) SetUserPassword(secret.Text(), false);
//   // The end of the scope overwrites the secret.
#ifndef VQ_SUPPORT_SECURITY_SECRETSTRING_H
#define VQ_SUPPORT_SECURITY_SECRETSTRING_H

#include <concepts>
#include <string>
#include <string_view>

#include <support/Export.h>

namespace vq {

// Overwrites the whole buffer of `text`, up to its capacity, and leaves it empty. The compiler does
// not optimise the overwriting away. Buffers that the string freed earlier, when it grew, are out
// of reach.
VQ_CLIENT_COMMON_API void Wipe(std::string& text) noexcept;

// Owns one string and wipes it when it is destroyed, assigned to or moved from.
class VQ_CLIENT_COMMON_API SecretString {
 public:
  SecretString() = default;
  // A copy of `text`, which the caller wipes.
  explicit SecretString(std::string_view text) : m_text(text) {}
  // Takes over a temporary or moved std::string and wipes what is left in it. A template, since a
  // string literal would fit both constructors.
  template <std::same_as<std::string> String>
  explicit SecretString(String&& text) noexcept {
    m_text.swap(text);
    Wipe(text);
  }
  ~SecretString() { Wipe(m_text); }

  SecretString(const SecretString& other) = default;
  SecretString(SecretString&& other) noexcept;
  SecretString& operator=(const SecretString& other);
  SecretString& operator=(SecretString&& other) noexcept;

  // The string itself, for functions that read or fill a std::string. Growing it step by step
  // leaves copies behind; assign it at once.
  std::string& Text() noexcept { return m_text; }
  const std::string& Text() const noexcept { return m_text; }

 private:
  std::string m_text;
};

}  // namespace vq

#endif  // VQ_SUPPORT_SECURITY_SECRETSTRING_H
