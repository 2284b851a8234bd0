#include <vq_client_common/session/VQBaseException.h>

#include <exception>
#include <iostream>
#include <utility>

#include <support/diagnostics/TDiag.h>

namespace {

TDiagRegister diagModule("VQBaseException");

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
  // Without an exception in hand there is nothing to raise, and trying would end the process.
  if (std::current_exception() != nullptr) throw;
}
