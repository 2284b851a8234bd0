#include <support/diagnostics/TDiag.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <map>
#include <mutex>
#include <utility>
#include <variant>
#include <vector>

#include <fmt/format.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

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

spdlog::level::level_enum SpdlogLevel(int level) {
  if (level <= 1) return spdlog::level::err;
  if (level <= 4) return spdlog::level::warn;
  return level == 5 ? spdlog::level::info : spdlog::level::trace;
}

}  // namespace

struct TDiag::State {
  using TextSink = std::shared_ptr<spdlog::sinks::sink>;
  using Sink = std::variant<TextSink, Callback>;

  std::mutex mutex;
  int level = 1;
  std::atomic<std::uint32_t> classMask{kAllClasses};
  std::map<std::string, int, std::less<>> moduleLevels;
  std::vector<TDiagRegister*> modules;
  std::map<SinkId, Sink> sinks;
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

  SinkId Add(Sink sink) {
    const std::lock_guard lock(mutex);
    return Insert(std::move(sink));
  }

  // Called with the mutex held.
  SinkId Insert(Sink sink) {
    if (auto* text = std::get_if<TextSink>(&sink)) {
      (*text)->set_formatter(
          std::make_unique<spdlog::pattern_formatter>("%Y-%m-%d %H:%M:%S.%e %P:%t %v"));
    }
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
  const std::lock_guard lock(m_state->mutex);
  m_state->level = ClampLevel(level);
  m_state->Spread();
}

int TDiag::GetMinimumDebugLevel() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->level;
}

void TDiag::SetModuleLevel(std::string_view module, int level) {
  const std::lock_guard lock(m_state->mutex);
  m_state->moduleLevels.insert_or_assign(std::string(module), ClampLevel(level));
  m_state->Spread();
}

void TDiag::ClearModuleLevels() {
  const std::lock_guard lock(m_state->mutex);
  m_state->moduleLevels.clear();
  m_state->Spread();
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
    m_state->standardError = m_state->Insert(std::make_shared<spdlog::sinks::stderr_sink_st>());
  }
  return m_state->standardError;
}

TDiag::SinkId TDiag::AddFileSink(const std::string& path, std::size_t maxBytes,
                                 std::size_t olderFiles) {
  try {
    return m_state->Add(
        std::make_shared<spdlog::sinks::rotating_file_sink_st>(path, maxBytes, olderFiles));
  } catch (const spdlog::spdlog_ex&) {
    return 0;
  }
}

TDiag::SinkId TDiag::AddCallbackSink(Callback callback) {
  return callback ? m_state->Add(std::move(callback)) : 0;
}

void TDiag::RemoveSink(SinkId id) {
  const std::lock_guard lock(m_state->mutex);
  m_state->sinks.erase(id);
  m_state->Spread();
}

void TDiag::RemoveAllSinks() {
  const std::lock_guard lock(m_state->mutex);
  m_state->sinks.clear();
  m_state->Spread();
}

void TDiag::ApplyLevels(std::string_view text) {
  while (!text.empty()) {
    const std::size_t comma = text.find(',');
    const std::string_view item = text.substr(0, comma);
    text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);

    const std::size_t equals = item.find('=');
    const std::string_view digits =
        equals == std::string_view::npos ? item : item.substr(equals + 1);
    int level = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), level);
    if (error != std::errc() || end != digits.end()) continue;
    if (equals == std::string_view::npos) {
      SetMinimumDebugLevel(level);
    } else {
      SetModuleLevel(item.substr(0, equals), level);
    }
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
  std::string text;  // composed once, for the first text sink
  for (auto& [id, sink] : m_state->sinks) {
    if (auto* callback = std::get_if<Callback>(&sink)) {
      (*callback)(line);
      continue;
    }
    if (text.empty()) {
      text = fmt::format("L{} {}: {}", line.level, Origin(line), Indented(line.text));
    }
    const auto& textSink = std::get<State::TextSink>(sink);
    textSink->log(spdlog::details::log_msg("", SpdlogLevel(line.level), text));
    textSink->flush();
  }
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
