// What a TArchive raises when its stream fails.
//
//   try {
//     archive >> name;
//   } catch (const TArchiveException&) {
//     // the stream ended, broke, or holds something else
//   }
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TARCHIVEEXCEPTION_H
#define VQ_CLIENT_COMMON_DATACENTERS_TARCHIVEEXCEPTION_H

#include <cstdint>
#include <string>

#include <vq_client_common/Export.h>

// The failure of an archive. Does not derive from std::exception: catch it by its own name. An
// archive itself knows one failure only, code 0 without a message.
//
// Thread contract: an object belongs to the thread that caught it.
class VQ_CLIENT_COMMON_API TArchiveException {
 public:
  // Copies `message`; null counts as an empty text.
  TArchiveException(int code, const char* message)
      : m_code(code), m_message(message != nullptr ? message : "") {}
  TArchiveException(const TArchiveException&) = default;
  TArchiveException& operator=(const TArchiveException&) = default;
  virtual ~TArchiveException() = default;

  // What the constructor was given; the reference lasts as long as the object.
  std::int32_t GetCode() const { return m_code; }
  const std::string& GetMessage() const { return m_message; }

 private:
  std::int32_t m_code;
  std::string m_message;
};

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TARCHIVEEXCEPTION_H
