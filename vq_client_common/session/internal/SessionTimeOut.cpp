#include <vq_client_common/session/internal/SessionTimeOut.h>

#include <string>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/IniFile.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace vq::session {
namespace {

TDiagRegister diagModule("SessionTimeOut");

constexpr long kDefault = 600;

}  // namespace

std::optional<int> ProfileTimeOut() {
  int value = 0;
  if (!GetProfileIntFromCurrentUserOrLocalMachine("", "Orb Parameters", "RegisterTimeOut", value,
                                                  true)) {
    return std::nullopt;
  }
  return value;
}

long ConfiguredTimeOut() {
  const TDiagFunc diag(diagModule, "GL_GetCRBRegisterTimeOut");
  if (const std::optional<int> profile = ProfileTimeOut()) return *profile;
  // The two keys differ in one letter, and both forms are in use.
  std::string text;
  if (GetSystemParameter("RegisterTimeout", text, "gui", E_GSR) && vq::Atoi(text) > 0) {
    return vq::Atoi(text);
  }
  return kDefault;
}

}  // namespace vq::session
