// A VQBaseException with a second, longer text.
//
//   throw VQDetailedMessageException(__FILE__, __LINE__, "The job is locked.", 12, 3, SEVERITY(1),
//                                    true, "Locked by alice since 10:20.");
#ifndef VQ_CLIENT_COMMON_SESSION_VQDETAILEDMESSAGEEXCEPTION_H
#define VQ_CLIENT_COMMON_SESSION_VQDETAILEDMESSAGEEXCEPTION_H

#include <string>

#include <support/Export.h>
#include <vq_client_common/session/VQBaseException.h>

// A failure with a second text. Thread contract: as VQBaseException.
class VQ_CLIENT_COMMON_API VQDetailedMessageException : public VQBaseException {
 public:
  // As the base's, with a second text that may be empty.
  VQDetailedMessageException(const char* file, int line, std::string reason, int major, int minor,
                             SEVERITY severity, bool shouldPrint, std::string detailedReason = {});
  VQDetailedMessageException(const VQDetailedMessageException&) = default;
  VQDetailedMessageException& operator=(const VQDetailedMessageException&) = default;
  ~VQDetailedMessageException() override;

  // Prints as the base does, then the detailed reason in the same two ways.
  void print() override;

  // "VQSimpleMessageException": the name that handlers know, not the class's own.
  std::string getName() override;

  // The second text; lasts as long as the object.
  const std::string& getDetailedReason() const { return m_detailedReason; }

 private:
  std::string m_detailedReason;
};

#endif  // VQ_CLIENT_COMMON_SESSION_VQDETAILEDMESSAGEEXCEPTION_H
