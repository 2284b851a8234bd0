#include <vq_client_common/text/TErrMsg.h>

#include <limits>
#include <stdexcept>

namespace {

constexpr std::int32_t kSuccess = 1;
constexpr std::int32_t kInternalError = 36;

}  // namespace

BaseString TErrMsg::GetAsString() const {
  BaseString line;
  line.Format("%3.3s [%3.3s]\t[%2.2d]\t%d\t%s", m_firstCodeText.c_str(), m_secondCodeText.c_str(),
              m_index, m_trc, m_msg.c_str());
  return line;
}

bool TErrMsg::IsValidMessage() const {
  return m_trc == kSuccess && !m_convertErr;
}

bool TErrMsg::IsInternalErr() const {
  return m_trc == kInternalError;
}

void TErrMsg::ResetMessage() {
  m_msg.Empty();
  m_firstCodeText = "UNKNOWN";
  m_trc = kSuccess;
  m_reservedCode = -1;
  m_index = 0;
  // Intentional: lower case, unlike in a new message; "[unk]" in a log shows that it was reset.
  m_secondCodeText = "unknown";
}

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
