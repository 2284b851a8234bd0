#include <support/orb/CorbaText.h>

#include <fmt/format.h>

#include <support/orb/OrbProduct.h>

namespace vq::orb {
namespace {

const char* CompletionText(CORBA::CompletionStatus status) {
  switch (status) {
    case CORBA::COMPLETED_YES:
      return "YES";
    case CORBA::COMPLETED_NO:
      return "NO";
    default:
      return "MAYBE";
  }
}

}  // namespace

std::string ExceptionText(const CORBA::Exception& exception) {
  std::string text = fmt::format("{} ({})", exception._name(), exception._rep_id());
  const auto* system = dynamic_cast<const CORBA::SystemException*>(&exception);
  if (system == nullptr) return text;
  text += fmt::format(", minor code 0x{:08X}", static_cast<unsigned>(system->minor()));
  if (const std::string name = MinorCodeName(*system); !name.empty()) {
    text += fmt::format(" ({})", name);
  }
  text += fmt::format(", completed: {}", CompletionText(system->completed()));
  if (IsMessageTooLarge(*system)) {
    text += std::string(": the message is larger than the setting ") + kMaxMessageSize + " allows";
  }
  return text;
}

std::string NameAndMinorText(const CORBA::SystemException& exception) {
  return fmt::format("Failed with CORBA::SystemException [name = {}] [minor = {}]",
                     exception._name(), static_cast<unsigned>(exception.minor()));
}

}  // namespace vq::orb
