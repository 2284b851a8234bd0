// Whether a TCP connection to a host and port comes about.
#ifndef VQ_CLIENT_TCPPROBE_H
#define VQ_CLIENT_TCPPROBE_H

#include <chrono>
#include <string>

namespace vqclient {

enum class Reach { kReached, kNotResolvable, kRefused, kSilent, kFailed };

struct ProbeResult {
  Reach reach = Reach::kFailed;
  std::string error;  // in words; empty when reached
};

// Each address of the host is tried for that long; the result is that of the last one. Thread
// contract: any thread.
ProbeResult TcpProbe(const std::string& host, const std::string& port,
                     std::chrono::milliseconds limit);

}  // namespace vqclient

#endif  // VQ_CLIENT_TCPPROBE_H
