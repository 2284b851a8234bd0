#include <vq_client_common/text/TErrMsg.h>

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
  // Meant: small letters, unlike a new message's; a printed [unk] tells that it was reset.
  m_secondCodeText = "unknown";
}
