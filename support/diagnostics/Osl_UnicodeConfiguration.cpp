#include <support/diagnostics/Osl_UnicodeConfiguration.h>

#include <atomic>
#include <mutex>
#include <string_view>

namespace {

struct ModeEncoding {
  std::string_view mode;
  std::string_view encoding;
};
constexpr ModeEncoding kEncodings[] = {
    {"latin1", "ISO-8859-1"},  // also for every mode that is not listed
    {"cjk", "UTF-8"},
    {"utf8", "UTF-8"},
};

struct Configuration {
  std::mutex mutex;
  Osl_UnicodeConfiguration::InitParameters parameters{std::string(kEncodings[0].mode), {}};
};

Configuration& TheConfiguration() {
  // Never destroyed: strings are compared by destructors that run after any static object here.
  static Configuration* const configuration = new Configuration;
  return *configuration;
}

std::atomic<bool> isCJKMode{false};

}  // namespace

void Osl_UnicodeConfiguration::Init(const InitParameters& parameters) {
  Configuration& configuration = TheConfiguration();
  const std::lock_guard lock(configuration.mutex);
  configuration.parameters = parameters;
}

Osl_UnicodeConfiguration::InitParameters Osl_UnicodeConfiguration::GetParameters() {
  Configuration& configuration = TheConfiguration();
  const std::lock_guard lock(configuration.mutex);
  return configuration.parameters;
}

void Osl_UnicodeConfiguration::SetCJKMode(bool isCJK) {
  isCJKMode = isCJK;
}

std::string Osl_UnicodeConfiguration::GetCurrentEncoding() {
  const std::string mode = GetParameters().mode;
  for (const ModeEncoding& entry : kEncodings) {
    if (entry.mode == mode) return std::string(entry.encoding);
  }
  return std::string(kEncodings[0].encoding);
}

bool i18n_aux::IsCJK_mode() {
  return isCJKMode;
}
