// A text of the XML library in the encoding of the process's locale.
//
//   std::cerr << StrX(exception.getMessage()).localForm();
//
// For clients that read XML themselves. Xerces must be started for as long as the object lives
// (ClientProperties::Get starts it).
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_STRX_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_STRX_H

#include <vq_client_common/Export.h>
#include <xercesc/util/XercesDefs.hpp>

// Thread contract: one thread an object.
class VQ_CLIENT_COMMON_API StrX {
 public:
  // Converts a text that ends in a zero; null is taken for the empty text. Characters that the
  // locale's encoding does not have come out as a substitute.
  explicit StrX(const XMLCh* text);
  ~StrX();
  StrX(const StrX&) = delete;
  StrX& operator=(const StrX&) = delete;

  // Both give the converted text, never null; it belongs to this object and lives as long.
  const char* localForm() const { return m_localForm; }
  operator char*() const { return m_localForm; }

 private:
  char* m_localForm;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_STRX_H
