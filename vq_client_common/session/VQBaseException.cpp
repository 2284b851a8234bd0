#include <vq_client_common/session/VQBaseException.h>

#include <exception>
#include <iostream>
#include <utility>

#include <support/diagnostics/TDiag.h>

namespace {

TDiagRegister diagModule("VQBaseException");
TDiagRegister detailedModule("VQDetailedMessageException");

}  // namespace

VQBaseException::VQBaseException(const char* file, int line, std::string reason, int major,
                                 int minor, SEVERITY severity, bool shouldPrint)
    : m_file(file != nullptr ? file : ""),
      m_line(line),
      m_shouldPrint(shouldPrint ? 1 : 0),
      m_reason(std::move(reason)),
      m_major(major),
      m_minor(minor),
      m_severity(severity) {}

VQBaseException::~VQBaseException() = default;

void VQBaseException::print() {
  VQ_LOG(diagModule, 4) << "[File: " << m_file << " Line: " << m_line << "]\n" << m_reason;
  std::cerr << m_reason << std::endl;
}

std::string VQBaseException::getName() {
  return "VQBaseException";
}

void VQBaseException::handle() {
  print();
  // A throw without a current exception would end the process.
  if (std::current_exception() != nullptr) throw;
}

VQDetailedMessageException::VQDetailedMessageException(const char* file, int line,
                                                       std::string reason, int major, int minor,
                                                       SEVERITY severity, bool shouldPrint,
                                                       std::string detailedReason)
    : VQBaseException(file, line, std::move(reason), major, minor, severity, shouldPrint),
      m_detailedReason(std::move(detailedReason)) {}

VQDetailedMessageException::~VQDetailedMessageException() = default;

void VQDetailedMessageException::print() {
  VQBaseException::print();
  VQ_LOG(detailedModule, 4) << "Detailed Reason:  " << m_detailedReason;
  std::cerr << m_detailedReason << std::endl;
}

// Intentional: handlers distinguish the two exceptions by these names.
std::string VQDetailedMessageException::getName() {
  return "VQSimpleMessageException";
}
