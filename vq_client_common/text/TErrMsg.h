// One message that a server sends about an operation on a member of a list.
//
// Terms. *TRC* is the message's code: 1 is success, 36 an internal error. *MemName* is the member
// that the message is about, *Index* its place in the list. A *conversion error* is a failure to
// bring the message itself into the client's form; it has a text of its own.
//
//   TErrMsg message;
//   message.SetTRC(36);
//   message.SetMsg("no space left");
//   message.GetAsString();   // "UNK [UNK]\t[00]\t36\tno space left"
#ifndef VQ_CLIENT_COMMON_TEXT_TERRMSG_H
#define VQ_CLIENT_COMMON_TEXT_TERRMSG_H

#include <cstdint>
#include <vector>

#include <support/Export.h>
#include <vq_client_common/text/BaseString.h>

// Thread contract: an object belongs to its caller. Copying copies every field, the reserved ones
// included.
class VQ_CLIENT_COMMON_API TErrMsg {
 public:
  // A valid message: TRC 1, no conversion error, no text.
  TErrMsg() = default;

  // ---- The fields as they are stored; the banner tells what each means. Any value is taken.
  BaseString GetMemName() const { return m_memName; }
  void SetMemName(const BaseString& memName) { m_memName = memName; }

  std::int32_t GetIndex() const { return m_index; }
  void SetIndex(std::int32_t index) { m_index = index; }

  void SetMsg(const BaseString& message) { m_msg = message; }

  std::int32_t GetTRC() const { return m_trc; }
  void SetTRC(std::int32_t trc) { m_trc = trc; }

  bool IsConvertErr() const { return m_convertErr; }
  void SetConvertErr(bool convertErr) { m_convertErr = convertErr; }

  BaseString GetConvertMsg() const { return m_convertMsg; }
  void SetConvertMsg(const BaseString& message) { m_convertMsg = message; }

  // One line of five columns parted by tabs: the first code text and, in brackets, the second, each
  // of exactly three characters; the index in brackets with at least two digits; TRC; the message.
  // At most 999 bytes, the rest is cut.
  BaseString GetAsString() const;

  bool IsValidMessage() const;  // TRC is 1 and there is no conversion error
  bool IsInternalErr() const;   // TRC is 36

  // Empties the message and sets TRC to 1, the index to 0 and the code texts. The conversion error,
  // its text and MemName stay, so a reset message is valid only without a conversion error.
  void ResetMessage();

 private:
  BaseString m_firstText;  // reserved: copied, never read
  BaseString m_memName;
  BaseString m_firstCodeText = "UNKNOWN";
  BaseString m_secondCodeText = "UNKNOWN";
  std::int32_t m_index = 0;
  BaseString m_msg;
  std::int32_t m_trc = 1;
  [[maybe_unused]] std::int32_t m_reservedCode = 0;  // copied, never read
  bool m_convertErr = false;
  BaseString m_convertMsg;
};

// The messages of one answer of a server, in the order of adding.
//
//   TErrMsgs messages;
//   messages.AddMsg(message);
//   for (std::uint32_t i = 0; i < messages.GetSize(); ++i) Show(messages.GetMsgRef(i));
class VQ_CLIENT_COMMON_API TErrMsgs {
 public:
  // Appends a copy. References to elements are no longer valid then. A list at its size limit
  // raises std::length_error "vector<T> too long".
  void AddMsg(const TErrMsg& message);
  // Makes the list empty.
  void RemoveAll() { m_messages.clear(); }
  // The number of messages.
  std::uint32_t GetSize() const { return static_cast<std::uint32_t>(m_messages.size()); }

  // The element at `index`, from 0: itself, a copy, itself. An index at or beyond the size raises
  // std::out_of_range "invalid vector<T> subscript".
  TErrMsg& GetMsg(std::uint32_t index);
  TErrMsg GetMsg(std::uint32_t index) const { return GetMsgRef(index); }
  const TErrMsg& GetMsgRef(std::uint32_t index) const;

 private:
  std::vector<TErrMsg> m_messages;
};

#endif  // VQ_CLIENT_COMMON_TEXT_TERRMSG_H
