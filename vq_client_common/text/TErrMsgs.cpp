#include <vq_client_common/text/TErrMsgs.h>

#include <limits>
#include <stdexcept>

void TErrMsgs::AddMsg(const TErrMsg& message) {
  if (m_messages.size() >= std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("vector<T> too long");
  }
  m_messages.push_back(message);
}

TErrMsg& TErrMsgs::GetMsg(std::uint32_t index) {
  return const_cast<TErrMsg&>(GetMsgRef(index));
}

const TErrMsg& TErrMsgs::GetMsgRef(std::uint32_t index) const {
  if (index >= m_messages.size()) throw std::out_of_range("invalid vector<T> subscript");
  return m_messages[index];
}
