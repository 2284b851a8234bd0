// The messages of a server about an operation on the members of a list.
//
// Terms. *TRC* is the code of a message: 1 is success, 36 an internal error. *MemName* is the name
// of the member, *Index* its index in the list. A *conversion error* means that the message itself
// could not be converted to the client's form; it has a text of its own.
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

// One message of a server.
class VQ_CLIENT_COMMON_API TErrMsg {
 public:
  // A valid message: TRC 1, no conversion error, no text.
  TErrMsg() = default;

  // ---- The stored fields; the top of this file explains them. Any value is accepted.
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

  // One line with tabs between its columns: the first code text and, in brackets, the second, each
  // of three characters; in brackets the index with at least two digits; TRC; the message. At most
  // 999 bytes; the rest is cut.
  BaseString GetAsString() const;

  bool IsValidMessage() const;  // whether TRC is 1 and there is no conversion error
  bool IsInternalErr() const;   // whether TRC is 36

  // Empties the text, sets TRC to 1 and the index to 0, and resets the code texts. The conversion
  // error, its text and MemName are unchanged, so a message with a conversion error stays invalid.
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

// The messages of one reply of a server, in the order in which they were added.
//
//   TErrMsgs messages;
//   messages.AddMsg(TErrMsg());
//   for (std::uint32_t i = 0; i < messages.GetSize(); ++i) {
//     Show(messages.GetMsgRef(i).GetAsString().c_str());
//   }
class VQ_CLIENT_COMMON_API TErrMsgs {
 public:
  // Appends a copy. References to elements become invalid. Raises std::length_error "vector<T> too
  // long" when the list is full.
  void AddMsg(const TErrMsg& message);
  // Removes all messages.
  void RemoveAll() { m_messages.clear(); }
  // The number of messages.
  std::uint32_t GetSize() const { return static_cast<std::uint32_t>(m_messages.size()); }

  // The message at `index`, from 0 on: a reference, a copy, a reference. Raises std::out_of_range
  // "invalid vector<T> subscript" for an index that is not below GetSize().
  TErrMsg& GetMsg(std::uint32_t index);
  TErrMsg GetMsg(std::uint32_t index) const { return GetMsgRef(index); }
  const TErrMsg& GetMsgRef(std::uint32_t index) const;

 private:
  std::vector<TErrMsg> m_messages;
};

#endif  // VQ_CLIENT_COMMON_TEXT_TERRMSG_H
