// The messages of one answer of a server, in the order of adding.
//
//   TErrMsgs messages;
//   messages.AddMsg(message);
//   for (std::uint32_t i = 0; i < messages.GetSize(); ++i) Show(messages.GetMsgRef(i));
#ifndef VQ_CLIENT_COMMON_TEXT_TERRMSGS_H
#define VQ_CLIENT_COMMON_TEXT_TERRMSGS_H

#include <cstdint>
#include <vector>

#include <vq_client_common/Export.h>
#include <vq_client_common/text/TErrMsg.h>

// Thread contract: an object belongs to its caller.
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

#endif  // VQ_CLIENT_COMMON_TEXT_TERRMSGS_H
