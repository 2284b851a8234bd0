// The control channel: a UNIX socket by which a test or a demonstration changes the site, advances
// the clock and reads the state, while the simulator runs.
//
// One JSON object a line in, one JSON object a line out: {"ok": true, ...} or {"ok": false,
// "error": TEXT}. A command has taken effect when its answer is there. docs/simulator.md lists the
// commands.
//
// Thread safety: one thread calls Start and Stop; Execute may be called from any thread. The
// channel has a thread of its own and serves one connection after the other.
#ifndef VQ_SIMULATOR_CONTROL_H
#define VQ_SIMULATOR_CONTROL_H

#include <filesystem>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include <simulator/World.h>
#include <support/os_toolkit/os_file_system.h>

namespace vq::sim {

class Control {
 public:
  // `site` is the file that the command "reload" reads.
  Control(World& world, std::filesystem::path site);
  ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // Opens the socket, for its owner only, and serves it. A socket that a dead process left is
  // replaced. Raises std::runtime_error.
  void Start(const std::filesystem::path& path);
  void Stop();

  // Executes one line. Never raises: an error is reported in the answer.
  std::string Execute(const std::string& line);

 private:
  nlohmann::ordered_json Run(const nlohmann::json& command);
  nlohmann::ordered_json State();
  void Serve();
  void ServeConnection(int connection);
  // Waits until the file can be read (POLLIN) or written (POLLOUT). False when the channel stops.
  [[nodiscard]] bool WaitFor(int file, short event) const;
  // False when the client is gone, or the channel stops before the client has taken all of it.
  [[nodiscard]] bool Send(int connection, const std::string& text) const;

  World& m_world;
  std::filesystem::path m_site;
  std::filesystem::path m_path;
  Descriptor m_listener;
  Descriptor m_stop;  // an event that ends the thread
  std::thread m_thread;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CONTROL_H
