#include <support/orb/omniorb/OmniOrbTransport.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <sys/auxv.h>
#include <unistd.h>

#include <omniORB4/minorCode.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/omniORB.h>

#include <support/diagnostics/TDiag.h>
#include <support/orb/CorbaText.h>
#include <support/orb/omniorb/OmniOrbCalls.h>
#include <support/orb/omniorb/OmniOrbCodeSet.h>
#include <support/orb/omniorb/OmniOrbEndpoint.h>
#include <support/orb/omniorb/OmniOrbGuest.h>
#include <support/orb/omniorb/OmniOrbInternals.h>
#include <support/orb/omniorb/OmniOrbMessages.h>
#include <support/orb/omniorb/OmniOrbOptions.h>
#include <support/orb/omniorb/OmniOrbProfiles.h>
#include <support/orb/omniorb/OmniOrbSslContext.h>
#include <support/orb/omniorb/OmniOrbTls.h>

namespace vq::orb {
namespace {

TDiagRegister diagModule("ORB");

// Shows connections and calls. From 30 on omniORB prints the content of messages, which includes
// passwords.
constexpr CORBA::ULong kTraceOn = 25;
constexpr CORBA::ULong kTraceOff = 1;

// omniORB writes this line at each start without TLS.
constexpr std::string_view kNoTls = "SSL transport disabled";

// omniORB calls it from destructors, so it must not raise.
void LogLine(const char* text) noexcept {
  std::string_view line(text);
  if (line.find(kNoTls) != std::string_view::npos) return;
  while (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  const CORBA::ULong level = std::atomic_ref(omniORB::traceLevel).load(std::memory_order_relaxed);
  if (!line.empty()) VQ_LOG(diagModule, level > kTraceOff ? 6 : 2) << line;
}

// omniORB's threads, including those of an ORB that has ended, may read the setting at any time.
template <class Setting>
void Trace(Setting& setting, Setting value) {
  std::atomic_ref(setting).store(value, std::memory_order_relaxed);
}

// The caller of a set-user-ID program must not choose the files that omniORB reads and deletes.
void ForgetVariables() {
  if (::getauxval(AT_SECURE) == 0) return;
  std::vector<std::string> names;
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (text.starts_with("ORB") || text.starts_with("OMNIORB_")) {
      names.emplace_back(text.substr(0, text.find('=')));
    }
  }
  for (const std::string& name : names) ::unsetenv(name.c_str());
}

// omniORB has one ORB for the process, with the settings of the code that starts it.
bool IsRunning() {
  try {
    return omniORB::getInterceptors() != nullptr;
  } catch (const CORBA::INITIALIZE&) {
    return false;
  }
}

// omniORB keeps the lists of a start that failed, such as its endpoints, until an ORB ends.
void ForgetOptions() {
  try {
    int none = 0;
    const CORBA::ORB_var orb = CORBA::ORB_init(none, nullptr, "omniORB4");
    orb->destroy();
  } catch (const CORBA::Exception&) {  // Its own settings are wrong, also for the next start.
  }
}

}  // namespace

CORBA::ORB_ptr InitOmniOrb(const OrbSettings& settings, const std::vector<OmniOrbOption>& options,
                           std::vector<std::string> arguments) {
  const std::unique_ptr<const char*[][2]> table(new const char* [options.size() + 1][2] {});
  for (std::size_t i = 0; i < options.size(); ++i) {
    table[i][0] = options[i].first.c_str();
    table[i][1] = options[i].second.c_str();
  }
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  ForgetVariables();
  PrepareTls(settings);
  try {
    return CORBA::ORB_init(count, pointers.data(), "omniORB4", table.get());
  } catch (const CORBA::Exception&) {
    RemoveSslContext();  // Only an ORB that started destroys the context.
    ForgetOptions();
    throw;
  }
}

OmniOrbTransport& OmniOrbTransport::Instance() {
  static auto* const transport = new OmniOrbTransport;
  return *transport;
}

CORBA::ORB_ptr OmniOrbTransport::Acquire(const void* user, const OrbSettings& settings,
                                         const std::vector<std::string>& arguments) {
  const std::lock_guard lock(m_mutex);
  FinishEnding();
  if (m_users.empty()) {
    m_orb = Initialise(settings, arguments);
    m_tls = settings.tls;
    m_process = ::getpid();
  }
  m_users.push_back({user, settings.biDirectional});
  OfferAsLastUser();
  return m_orb.in();
}

void OmniOrbTransport::Release(const void* user, bool wait) {
  const std::lock_guard lock(m_mutex);
  if (std::erase_if(m_users, [&](const User& known) { return known.id == user; }) == 0) return;
  OfferAsLastUser();
  if (!m_users.empty()) return;
  m_ending = true;
  m_orb->shutdown(wait);
  if (wait) FinishEnding();
}

bool OmniOrbTransport::HasOtherUsers(const void* user) {
  const std::lock_guard lock(m_mutex);
  return std::ranges::any_of(m_users, [&](const User& known) { return known.id != user; });
}

TlsSettings OmniOrbTransport::Tls() {
  const std::lock_guard lock(m_mutex);
  return m_tls;
}

void OmniOrbTransport::OfferAsLastUser() const {
  if (m_users.empty()) return;
  const bool biDirectional = m_users.back().biDirectional;
  OfferBiDirectional(biDirectional);
  if (biDirectional) ForbidMessagesAfterHandshake();
}

CORBA::ORB_ptr OmniOrbTransport::Initialise(const OrbSettings& settings,
                                            const std::vector<std::string>& arguments) {
  if (!m_failed && IsRunning()) {
    throw std::invalid_argument(
        "omniORB is up already: other code of this process has started it, or it did not end in "
        "order; log in first, or start the program again");
  }
  omniORB::setLogFunction(LogLine);
  Trace(omniORB::traceLevel, diagModule.IsActive(TDiag::kTrace) ? kTraceOn : kTraceOff);
  std::vector<OmniOrbOption> options = OmniOrbOptions(settings);
  std::string endpoint;
  for (auto& [name, value] : options) {
    if (name == "endPoint") endpoint = value = CheckedEndpoint(value);
  }
  InstallCodeSet();
  m_failed = true;
  CORBA::ORB_var orb = InitOmniOrb(settings, options, arguments);
  OpenOnly(endpoint);
  Trace(omniORB::traceLevel, std::min(omniORB::traceLevel, kTraceOn));  // omniORB's own settings
  // The log adds the time itself, and omniORB reads it in a way that is not thread-safe.
  Trace(omniORB::traceTime, false);
  [[maybe_unused]] static const int registered = std::atexit(LeaveAtExit);
  InstallCalls(settings);
  InstallProfiles();
  OmniOrbGuest::Install();
  GuardTls(orb.in(), settings);
  m_failed = false;
  return orb._retn();
}

// A child process has the connections of its parent, and no thread. An ORB that ended without
// waiting would use what the end of the process destroys.
void OmniOrbTransport::LeaveAtExit() {
  OmniOrbTransport& transport = Instance();
  const std::unique_lock lock(transport.m_mutex, std::try_to_lock);
  const bool isUp = !transport.m_users.empty() || transport.m_ending;
  if (!lock || !isUp || transport.m_process != ::getpid()) return;
  StopTakingCalls();
  try {
    transport.FinishEnding();
  } catch (const CORBA::Exception&) {  // called by a servant
  } catch (const omniORB::fatalException&) {
  }
}

// An ORB that ended without waiting is destroyed before the next one starts.
void OmniOrbTransport::FinishEnding() {
  if (!m_ending) return;
  const LongerEnd end;
  try {
    m_orb->destroy();
  } catch (const CORBA::BAD_INV_ORDER& exception) {
    if (exception.minor() == omni::BAD_INV_ORDER_WouldDeadLock) throw;  // in an incoming call
  } catch (const omniORB::fatalException& exception) {  // What is destroyed must not be again.
    Report(exception);
  }
  m_orb = CORBA::ORB::_nil();
  m_ending = false;
  m_listeners = 0;
}

PortableServer::POA_ptr OmniOrbTransport::OpenListener() {
  const std::lock_guard lock(m_mutex);
  CORBA::Object_var object = m_orb->resolve_initial_references("RootPOA");
  PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
  PortableServer::POAManager_var manager = root->the_POAManager();
  manager->activate();
  ++m_listeners;
  return root._retn();
}

void OmniOrbTransport::CloseListener() {
  const std::lock_guard lock(m_mutex);
  if (m_listeners == 0 || --m_listeners > 0 || m_users.empty()) return;
  const LongerEnd end;
  try {
    CORBA::Object_var object = m_orb->resolve_initial_references("RootPOA");
    PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
    root->destroy(true, true);
    CloseEndpoints();
  } catch (const CORBA::Exception& e) {
    VQ_LOG(diagModule, 2) << "The listen endpoints stay open: " << e;
  }
}

}  // namespace vq::orb
