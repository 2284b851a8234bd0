// A text of a thread. It has no destructor: exit handlers and static objects of the application may
// still make calls when the objects of a thread have been destroyed.
//
//   thread_local ThreadText<300> peer;
//   peer = "host:2809";  // cut to 300 bytes
#ifndef VQ_SUPPORT_ORB_THREADTEXT_H
#define VQ_SUPPORT_ORB_THREADTEXT_H

#include <array>
#include <cstddef>
#include <string_view>

namespace vq::orb {

template <std::size_t Size>
class ThreadText {
 public:
  ThreadText& operator=(std::string_view text) noexcept {
    m_size = text.copy(m_text.data(), Size);
    return *this;
  }
  operator std::string_view() const noexcept { return {m_text.data(), m_size}; }
  bool empty() const noexcept { return m_size == 0; }

 private:
  std::array<char, Size> m_text{};
  std::size_t m_size = 0;
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_THREADTEXT_H
