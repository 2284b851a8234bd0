// The process's diagnostic log.
//
// Terms. A *line* has a level from 0 (always) to 6 (trace) and a class, one or more bits of 32. A
// *module* is a part of the library, mostly one source file; it may have a level of its own. A
// *sink* is where lines go: stderr, a rotating file, or a callback of the application. There is no
// sink until one is added, and without a sink every log statement is disabled, whatever its level.
//
// The environment switches it on without code. It is read once when the library loads, and not at
// all by a program that runs with more rights than its caller:
//   VQ_DIAG_LEVEL=4                    lines up to level 4
//   VQ_DIAG_LEVEL=1,LoginHandler=6     1 in general, 6 for one module
//   VQ_DIAG_FILE=/var/log/client.log   to this file (10 MB, three older files kept) instead of
//                                      stderr
//
// Writing lines:
//
//   namespace { TDiagRegister diagModule("LoginHandler"); }
//
//   void ResetTimeout(int timeOut) {
//     TDiagFunc diag(diagModule, "ResetTimeout");   // logs "Enter" at level 6
//     VQ_LOG(diag, 4) << "Resetting timeout to: " << timeOut;
//   }
//
// A disabled log statement costs one load and one branch, and nothing to the right of VQ_LOG is
// evaluated.
#ifndef VQ_SUPPORT_DIAGNOSTICS_TDIAG_H
#define VQ_SUPPORT_DIAGNOSTICS_TDIAG_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <support/Export.h>
#include <support/diagnostics/FormatObj.h>

class TDiagRegister;

// One line as a callback sink receives it. The views live for the length of the call.
struct TDiagLine {
  int level;                // 0 to 6
  std::uint32_t lineClass;  // kAllClasses unless the line names its own
  std::string_view module;  // as registered, e.g. "LoginHandler"
  std::string_view scope;   // the function's qualified name; may be empty
  std::string_view text;    // as logged, line ends included
};

// Thread safety: every operation may be called from any thread. A callback sink is called under the
// log's lock, one line at a time: lines that it logs itself are dropped, and it must not call any
// other operation.
class VQ_CLIENT_COMMON_API TDiag {
 public:
  // The lowest and the highest level, and the class of a line that names none.
  static constexpr int kAlways = 0;
  static constexpr int kTrace = 6;
  static constexpr std::uint32_t kAllClasses = 0xFFFFFFFFU;

  // What a callback sink is, and the number that a sink is removed by.
  using Callback = std::function<void(const TDiagLine&)>;
  using SinkId = unsigned;

  // The one log of the process; never null, never destroyed.
  static TDiag* Instance();

  // The level of every module that has none of its own. Values outside 0 to 6 are taken as the
  // nearest of them. 1 until set.
  void SetMinimumDebugLevel(int level);
  int GetMinimumDebugLevel() const;

  // A level for one module by its registered name, now or when such a module appears.
  void SetModuleLevel(std::string_view module, int level);
  // Every module then has the general level.
  void ClearModuleLevels();

  // Lines whose class has no bit in common with the mask are not written. All bits until set.
  void SetClassMask(std::uint32_t mask);
  std::uint32_t GetClassMask() const;

  // Each returns a number for RemoveSink. A text sink writes "L1 LoginHandler::Login: text", or
  // "L1 [GlobalFuncs] GL_Login: text" where the scope does not begin with the module; it indents
  // the text after a line end and writes control characters as their numbers. A callback gets the
  // text as logged. AddFileSink appends to `path`, starts a new file when it reaches `maxBytes` and
  // keeps `olderFiles` old ones. 0 when the file does not open or the callback is empty. stderr is
  // one sink however often it is added.
  SinkId AddStandardErrorSink();
  SinkId AddFileSink(const std::string& path, std::size_t maxBytes = 10U << 20U,
                     std::size_t olderFiles = 3);
  SinkId AddCallbackSink(Callback callback);
  void RemoveSink(SinkId id);  // an unknown number is ignored
  // Every log statement is disabled then.
  void RemoveAllSinks();

  // Applies a string of the form of VQ_DIAG_LEVEL; parts of another form are ignored.
  void ApplyLevels(std::string_view text);

  // Used by TDiagRegister and the macros.
  void Write(const TDiagLine& line);

  TDiag(const TDiag&) = delete;
  TDiag& operator=(const TDiag&) = delete;

 private:
  friend class TDiagRegister;
  TDiag();
  ~TDiag();
  struct State;
  State* const m_state;
};

// The module of a source file's lines: a static object named diagModule in each file that writes.
class VQ_CLIENT_COMMON_API TDiagRegister {
 public:
  explicit TDiagRegister(const char* moduleName);  // the text must outlive the object
  ~TDiagRegister();
  TDiagRegister(const TDiagRegister&) = delete;
  TDiagRegister& operator=(const TDiagRegister&) = delete;

  // Whether a line of this level would be written: one load and one comparison.
  bool IsActive(int level) const { return level <= m_level.load(std::memory_order_relaxed); }
  // Begins a line; VQ_LOG asks IsActive first.
  FormatObj Line(int level, std::uint32_t lineClass = TDiag::kAllClasses) const {
    return FormatObj(*this, {}, level, lineClass);
  }
  // As registered.
  const char* Name() const { return m_name; }

 private:
  friend class TDiag;
  const char* m_name;
  std::atomic<int> m_level{-1};  // the highest active level; -1 while nothing is active
};

// The scope of one function: logs "Enter" at level 6 and gives its name to the lines inside.
class TDiagFunc {
 public:
  // Both must outlive the object.
  TDiagFunc(const TDiagRegister& module, const char* qualifiedName)
      : m_module(module), m_name(qualifiedName) {
    if (IsActive(TDiag::kTrace)) [[unlikely]]
      Enter();
  }
  TDiagFunc(const TDiagFunc&) = delete;
  TDiagFunc& operator=(const TDiagFunc&) = delete;

  // As those of TDiagRegister, with the function's name in the line.
  bool IsActive(int level) const { return m_module.IsActive(level); }
  FormatObj Line(int level, std::uint32_t lineClass = TDiag::kAllClasses) const {
    return FormatObj(m_module, m_name, level, lineClass);
  }

 private:
  VQ_CLIENT_COMMON_API void Enter() const;
  const TDiagRegister& m_module;
  const char* m_name;
};

// For the two macros below. One expression, so that they can be used wherever a statement can.
#define VQ_LOG_IF(where, level, line) \
  !(where).IsActive(level) ? (void)0 : vq::EndOfLine() & (where).line

// VQ_LOG(where, level) << ...; writes one line of the level. `where`: a TDiagFunc or TDiagRegister.
#define VQ_LOG(where, level) VQ_LOG_IF(where, level, Line(level))
// The same for a line in a class of its own.
#define VQ_LOG_CLASS(where, level, lineClass) VQ_LOG_IF(where, level, Line(level, lineClass))

namespace vq {

// Gives both branches of VQ_LOG's condition the same type.
struct EndOfLine {
  // Binds less tightly than <<, so the line is composed first.
  void operator&(const FormatObj&) const {}
};

}  // namespace vq

#endif  // VQ_SUPPORT_DIAGNOSTICS_TDIAG_H
