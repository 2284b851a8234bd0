// Whether a TCP connection to a host and port comes about.
#ifndef VQ_CLIENT_TCPPROBE_H
#define VQ_CLIENT_TCPPROBE_H

#include <chrono>
#include <string>

namespace vqclient {

// Empty when it does, otherwise why not. Each address of the host is tried for that long. Thread
// contract: any thread.
std::string TcpProbe(const std::string& host, const std::string& port,
                     std::chrono::milliseconds limit);

}  // namespace vqclient

#endif  // VQ_CLIENT_TCPPROBE_H
