// What the library's log says at level 1, which is where it tells the reason of a failure.
#ifndef VQ_CLIENT_LOGREASONS_H
#define VQ_CLIENT_LOGREASONS_H

#include <mutex>
#include <string>
#include <utility>

#include <vq_client_common/vq_client_common.h>

namespace vqclient {

// Thread contract: the log's lines come from any thread, the rest belongs to one.
class LogReasons {
 public:
  LogReasons()
      : m_sink(TDiag::Instance()->AddCallbackSink([this](const TDiagLine& logged) {
          if (logged.level > 1) return;
          const std::lock_guard lock(m_mutex);
          if (!m_lines.empty()) m_lines += '\n';
          m_lines += logged.text;
        })) {}
  ~LogReasons() { TDiag::Instance()->RemoveSink(m_sink); }
  LogReasons(const LogReasons&) = delete;
  LogReasons& operator=(const LogReasons&) = delete;

  // The lines since the last call.
  std::string Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_lines, {});
  }

 private:
  std::mutex m_mutex;
  std::string m_lines;
  TDiag::SinkId m_sink;
};

}  // namespace vqclient

#endif  // VQ_CLIENT_LOGREASONS_H
