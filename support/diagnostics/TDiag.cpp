#include <support/diagnostics/TDiag.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <fcntl.h>

#include <fmt/format.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_tokenizer.h>

namespace {

int ClampLevel(int level) {
  return std::clamp(level, TDiag::kAlways, TDiag::kTrace);
}

// Text sinks indent the text after a line end, so that text from outside cannot imitate a line of
// the log. Other control characters but the tab are written as their numbers, because a terminal
// would execute them.
std::string Indented(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 8);
  for (const char c : text) {
    if (c == '\n') {
      result += "\n    ";
    } else if (c == '\x7F' || (c >= 0 && c < ' ' && c != '\t')) {
      fmt::format_to(std::back_inserter(result), "\\x{:02x}", static_cast<int>(c));
    } else if (result.ends_with('\xC2') && (c & 0xE0) == 0x80) {  // U+0080 to U+009F
      result.pop_back();
      fmt::format_to(std::back_inserter(result), "\\u00{:02x}", c & 0xFF);
    } else {
      result += c;
    }
  }
  return result;
}

// The scope, with the module in brackets before it unless the scope begins with its name: levels
// are set by module.
std::string Origin(const TDiagLine& line) {
  if (line.scope.empty()) return std::string(line.module);
  if (fmt::format("{}::", line.scope).starts_with(fmt::format("{}::", line.module))) {
    return std::string(line.scope);
  }
  return fmt::format("[{}] {}", line.module, line.scope);
}

TDiag::Callback TextSink(std::shared_ptr<spdlog::sinks::sink> sink) {
  sink->set_formatter(std::make_unique<spdlog::pattern_formatter>("%Y-%m-%d %H:%M:%S.%e %P:%t %v"));
  return [sink = std::move(sink)](const TDiagLine& line) {
    const std::string text =
        fmt::format("L{} {}: {}", line.level, Origin(line), Indented(line.text));
    sink->log(spdlog::details::log_msg("", spdlog::level::info, text));
    sink->flush();
  };
}

}  // namespace

struct TDiag::State {
  std::mutex mutex;
  int level = 1;
  std::atomic<std::uint32_t> classMask{kAllClasses};
  std::map<std::string, int, std::less<>> moduleLevels;
  std::vector<TDiagRegister*> modules;
  std::map<SinkId, Callback> sinks;
  SinkId lastSink = 0;
  SinkId standardError = 0;  // its last number; 0: never added

  int EffectiveLevel(const char* module) const {
    if (sinks.empty()) return -1;
    const auto own = moduleLevels.find(std::string_view(module));
    return own != moduleLevels.end() ? own->second : level;
  }

  // Called with the mutex held, after a change of levels or sinks.
  void Spread() {
    for (TDiagRegister* module : modules) module->m_level = EffectiveLevel(module->m_name);
  }

  void Change(const std::function<void(State&)>& change) {
    const std::lock_guard lock(mutex);
    change(*this);
    Spread();
  }

  // Called with the mutex held.
  SinkId Add(Callback sink) {
    sinks.emplace(++lastSink, std::move(sink));
    Spread();
    return lastSink;
  }
};

TDiag::TDiag() : m_state(new State) {
  // A program with more rights than its caller must not write to a file that the caller names.
  const char* const levels = ::secure_getenv("VQ_DIAG_LEVEL");
  const char* const file = ::secure_getenv("VQ_DIAG_FILE");
  if (levels != nullptr) ApplyLevels(levels);
  if (file != nullptr && *file != '\0') {
    if (AddFileSink(file) == 0) AddStandardErrorSink();
  } else if (levels != nullptr && *levels != '\0') {
    AddStandardErrorSink();
  }
}

TDiag::~TDiag() = default;

TDiag* TDiag::Instance() {
  // Never destroyed: lines are written by destructors that run after any static object here.
  static TDiag* const instance = new TDiag;
  return instance;
}

void TDiag::SetMinimumDebugLevel(int level) {
  m_state->Change([&](State& state) { state.level = ClampLevel(level); });
}

int TDiag::GetMinimumDebugLevel() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->level;
}

void TDiag::SetModuleLevel(std::string_view module, int level) {
  m_state->Change([&](State& state) {
    state.moduleLevels.insert_or_assign(std::string(module), ClampLevel(level));
  });
}

void TDiag::ClearModuleLevels() {
  m_state->Change([](State& state) { state.moduleLevels.clear(); });
}

void TDiag::SetClassMask(std::uint32_t mask) {
  m_state->classMask = mask;
}

std::uint32_t TDiag::GetClassMask() const {
  return m_state->classMask;
}

TDiag::SinkId TDiag::AddStandardErrorSink() {
  const std::lock_guard lock(m_state->mutex);
  if (!m_state->sinks.contains(m_state->standardError)) {
    m_state->standardError =
        m_state->Add(TextSink(std::make_shared<spdlog::sinks::stderr_sink_st>()));
  }
  return m_state->standardError;
}

TDiag::SinkId TDiag::AddFileSink(const std::string& path, std::size_t maxBytes,
                                 std::size_t olderFiles) {
  const std::lock_guard lock(m_state->mutex);
  try {
    using File = spdlog::sinks::rotating_file_sink_st;
    spdlog::file_event_handlers handlers;
    handlers.after_open = [](const std::string&, std::FILE* file) {
      fcntl(fileno(file), F_SETFD, FD_CLOEXEC);  // not for the programs that this one starts
    };
    return m_state->Add(
        TextSink(std::make_shared<File>(path, maxBytes, olderFiles, false, handlers)));
  } catch (const spdlog::spdlog_ex&) {
    return 0;
  }
}

TDiag::SinkId TDiag::AddCallbackSink(Callback callback) {
  const std::lock_guard lock(m_state->mutex);
  return callback ? m_state->Add(std::move(callback)) : 0;
}

void TDiag::RemoveSink(SinkId id) {
  m_state->Change([&](State& state) { state.sinks.erase(id); });
}

void TDiag::RemoveAllSinks() {
  m_state->Change([](State& state) { state.sinks.clear(); });
}

void TDiag::ApplyLevels(std::string_view text) {
  for (const std::string& item : os_tokenizer(text, ",")) {
    const std::size_t equals = item.find('=');
    const bool isOfModule = equals != std::string::npos;
    const auto level = vq::WholeNumber<int>(isOfModule ? item.substr(equals + 1) : item);
    if (!level) continue;
    isOfModule ? SetModuleLevel(item.substr(0, equals), *level) : SetMinimumDebugLevel(*level);
  }
}

void TDiag::Write(const TDiagLine& line) {
  if ((line.lineClass & m_state->classMask.load(std::memory_order_relaxed)) == 0) return;
  // A function that a callback calls may log as well; it would wait for itself.
  thread_local bool isWriting = false;
  if (isWriting) return;
  struct Writing {
    Writing() { isWriting = true; }
    ~Writing() { isWriting = false; }
  } const writing;
  const std::lock_guard lock(m_state->mutex);
  for (const auto& [id, sink] : m_state->sinks) sink(line);
}

TDiagRegister::TDiagRegister(const char* moduleName) : m_name(moduleName) {
  TDiag::State& state = *TDiag::Instance()->m_state;
  const std::lock_guard lock(state.mutex);
  state.modules.push_back(this);
  m_level = state.EffectiveLevel(m_name);
}

TDiagRegister::~TDiagRegister() {
  TDiag::State& state = *TDiag::Instance()->m_state;
  const std::lock_guard lock(state.mutex);
  std::erase(state.modules, this);
  m_level = -1;
}

void TDiagFunc::Enter() const {
  Line(TDiag::kTrace) << "Enter";
}
