#include <support/diagnostics/Osl_UnicodeConfiguration.h>

#include <atomic>
#include <mutex>

namespace {

std::mutex mutex;

Osl_UnicodeConfiguration::InitParameters& Parameters() {
  // Never destroyed: static objects of the application may log in when they are destroyed.
  static auto& parameters = *new Osl_UnicodeConfiguration::InitParameters{"latin1", {}};
  return parameters;
}

std::atomic<bool> isCJKMode{false};

}  // namespace

void Osl_UnicodeConfiguration::Init(const InitParameters& parameters) {
  const std::lock_guard lock(mutex);
  Parameters() = parameters;
}

Osl_UnicodeConfiguration::InitParameters Osl_UnicodeConfiguration::GetParameters() {
  const std::lock_guard lock(mutex);
  return Parameters();
}

void Osl_UnicodeConfiguration::SetCJKMode(bool isCJK) {
  isCJKMode = isCJK;
}

std::string Osl_UnicodeConfiguration::GetCurrentEncoding() {
  const std::string mode = GetParameters().mode;
  return mode == "cjk" || mode == "utf8" ? "UTF-8" : "ISO-8859-1";
}

bool i18n_aux::IsCJK_mode() {
  return isCJKMode;
}
