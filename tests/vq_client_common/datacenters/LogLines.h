// What the code under test writes to the log, for the length of a scope.
#ifndef VQ_TESTS_DATACENTERS_LOGLINES_H
#define VQ_TESTS_DATACENTERS_LOGLINES_H

#include <string>
#include <utility>

#include <support/diagnostics/TDiag.h>

// Thread contract: one thread at a time.
class LogLines {
 public:
  explicit LogLines(int level)
      : m_sink(TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
          m_lines.append(std::to_string(line.level)).append(" ").append(line.scope);
          m_lines.append(": ").append(line.text).append("\n");
        })) {
    TDiag::Instance()->SetMinimumDebugLevel(level);
  }
  ~LogLines() {
    TDiag::Instance()->RemoveSink(m_sink);
    TDiag::Instance()->SetMinimumDebugLevel(1);
  }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  // The lines since the last call, each as "<level> <scope>: <text>\n".
  std::string Take() { return std::exchange(m_lines, {}); }

 private:
  std::string m_lines;
  TDiag::SinkId m_sink;
};

#endif  // VQ_TESTS_DATACENTERS_LOGLINES_H
