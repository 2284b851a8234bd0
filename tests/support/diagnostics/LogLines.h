// The lines of the diagnostic log that a test causes, each as "level text", and the level put back.
//
//   LogLines log(4);
//   ...
//   EXPECT_THAT(log.Take(), ElementsAre("4 Testing V", "4 V turned off"));
//
// Thread contract: one thread at a time.
#ifndef VQ_TESTS_SUPPORT_DIAGNOSTICS_LOGLINES_H
#define VQ_TESTS_SUPPORT_DIAGNOSTICS_LOGLINES_H

#include <string>
#include <utility>
#include <vector>

#include <support/diagnostics/TDiag.h>

class LogLines {
 public:
  explicit LogLines(int level) : m_former(TDiag::Instance()->GetMinimumDebugLevel()) {
    TDiag::Instance()->SetMinimumDebugLevel(level);
    m_sink = TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
      m_lines.push_back(std::to_string(line.level) + " " + std::string(line.text));
      m_scopes.emplace_back(line.scope);
      m_classes.push_back(line.lineClass);
    });
  }
  ~LogLines() {
    TDiag::Instance()->RemoveSink(m_sink);
    TDiag::Instance()->SetMinimumDebugLevel(m_former);
  }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  std::vector<std::string> Take() { return std::exchange(m_lines, {}); }
  const std::vector<std::string>& Scopes() const { return m_scopes; }
  const std::vector<std::uint32_t>& Classes() const { return m_classes; }

 private:
  int m_former;
  TDiag::SinkId m_sink;
  std::vector<std::string> m_lines;
  std::vector<std::string> m_scopes;
  std::vector<std::uint32_t> m_classes;
};

#endif  // VQ_TESTS_SUPPORT_DIAGNOSTICS_LOGLINES_H
