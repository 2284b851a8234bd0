#include <support/orb/CorbaText.h>

#include <fmt/format.h>

#include <support/orb/OrbProduct.h>

namespace vq::orb {

std::string ExceptionText(const CORBA::Exception& exception) {
  std::string text = fmt::format("{} ({})", exception._name(), exception._rep_id());
  const auto* system = dynamic_cast<const CORBA::SystemException*>(&exception);
  if (system == nullptr) return text;
  text += fmt::format(", minor code 0x{:08X}", static_cast<unsigned>(system->minor()));
  if (const std::string name = MinorCodeName(*system); !name.empty()) {
    text += fmt::format(" ({})", name);
  }
  const bool isYes = system->completed() == CORBA::COMPLETED_YES;
  const bool isNo = system->completed() == CORBA::COMPLETED_NO;
  text += fmt::format(", completed: {}", isYes ? "YES" : isNo ? "NO" : "MAYBE");
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
