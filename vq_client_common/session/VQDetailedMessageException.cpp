#include <vq_client_common/session/VQDetailedMessageException.h>

#include <iostream>
#include <utility>

#include <support/diagnostics/TDiag.h>

namespace {

TDiagRegister diagModule("VQDetailedMessageException");

}  // namespace

VQDetailedMessageException::VQDetailedMessageException(const char* file, int line,
                                                       std::string reason, int major, int minor,
                                                       SEVERITY severity, bool shouldPrint,
                                                       std::string detailedReason)
    : VQBaseException(file, line, std::move(reason), major, minor, severity, shouldPrint),
      m_detailedReason(std::move(detailedReason)) {}

VQDetailedMessageException::~VQDetailedMessageException() = default;

void VQDetailedMessageException::print() {
  VQBaseException::print();
  VQ_LOG(diagModule, 4) << "Detailed Reason:  " << m_detailedReason;
  std::cerr << m_detailedReason << std::endl;
}

// Intentional: handlers tell the two exceptions apart by these names.
std::string VQDetailedMessageException::getName() {
  return "VQSimpleMessageException";
}
