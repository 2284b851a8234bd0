#include <simulator/Control.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vq::sim {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::size_t kLongestLine = 64U << 20U;  // a site with many grants is one line
constexpr std::int64_t kFarthestStep = 10LL * 366 * 86'400'000;

}  // namespace

Control::Control(World& world, std::filesystem::path site)
    : m_world(world), m_site(std::move(site)) {}

Control::~Control() {
  Stop();
}

void Control::Start(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof(address.sun_path)) throw std::runtime_error(text + ": path too long");
  text.copy(address.sun_path, text.size());

  namespace fs = std::filesystem;
  if (fs::is_socket(fs::symlink_status(path))) fs::remove(path);
  m_listener = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  m_stop = Descriptor(eventfd(0, EFD_CLOEXEC));
  const mode_t mask = umask(0177);
  const bool isBound =
      m_listener.IsOpen() && m_stop.IsOpen() &&
      bind(m_listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  umask(mask);
  if (!isBound || listen(m_listener.Get(), 8) != 0) {
    throw std::system_error(errno, std::generic_category(), text);
  }
  m_path = path;
  m_thread = std::thread([this] { Serve(); });
}

void Control::Stop() {
  if (!m_thread.joinable()) return;
  eventfd_write(m_stop.Get(), 1);
  m_thread.join();
  unlink(m_path.c_str());
}

bool Control::WaitFor(int file, short event) const {
  pollfd files[2] = {{file, event, 0}, {m_stop.Get(), POLLIN, 0}};
  while (poll(files, 2, -1) < 0) {
    if (errno != EINTR) return false;
  }
  return files[1].revents == 0;
}

bool Control::Send(int connection, const std::string& text) const {
  for (std::size_t done = 0; done < text.size();) {
    if (!WaitFor(connection, POLLOUT)) return false;
    const ssize_t sent =
        send(connection, text.data() + done, text.size() - done, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (sent <= 0) return false;
    done += static_cast<std::size_t>(sent);
  }
  return true;
}

void Control::Serve() {
  while (WaitFor(m_listener.Get(), POLLIN)) {
    const Descriptor connection(accept4(m_listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (connection.IsOpen()) ServeConnection(connection.Get());
  }
}

void Control::ServeConnection(int connection) {
  std::string received;
  char buffer[4096];
  while (WaitFor(connection, POLLIN)) {
    const ssize_t size = read(connection, buffer, sizeof(buffer));
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0 || received.size() > kLongestLine) return;
    const std::size_t from = received.size();
    received.append(buffer, static_cast<std::size_t>(size));
    std::size_t start = 0;
    for (std::size_t end = received.find('\n', from); end != std::string::npos;
         end = received.find('\n', start)) {
      const std::string answer = Execute(received.substr(start, end - start));
      start = end + 1;
      if (!Send(connection, answer + "\n")) return;
    }
    received.erase(0, start);
  }
}

std::string Control::Execute(const std::string& line) {
  ordered_json answer = {{"ok", true}};
  try {
    answer.update(Run(ParseSite(line, "command")));
  } catch (const std::exception& error) {
    answer = {{"ok", false}, {"error", error.what()}};
  }
  return answer.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json Control::State() {
  ordered_json sessions = ordered_json::array();
  for (const Sessions::Info& session : m_world.sessions.List()) {
    sessions.push_back(
        {{"userId", session.userId}, {"user", session.user}, {"timeOut", session.timeOut.count()}});
  }
  ordered_json accounts = ordered_json::object();
  for (const auto& [name, standing] : m_world.accounts.List()) {
    accounts[name] = {{"failedTries", standing.failedTries},
                      {"locked", standing.locked},
                      {"passwordChanged", !standing.encoded.empty()}};
  }
  return {{"sessions", sessions}, {"accounts", accounts}, {"calls", m_world.log.Counts()}};
}

ordered_json Control::Run(const json& command) {
  if (!command.is_object() || !command.value("command", json()).is_string()) {
    throw std::invalid_argument("a command is {\"command\": NAME, ...}");
  }
  const auto name = command.at("command").get<std::string>();
  if (name == "ping") return ordered_json::object();
  if (name == "state") return State();
  if (name == "patch") {
    m_world.Patch(command.at("site"));
  } else if (name == "faults") {
    m_world.SetFaults(command.at("faults"));
  } else if (name == "reload") {
    m_world.Load(ParseSiteFile(m_site), m_site.string());
  } else if (name == "advance") {
    const auto step = command.at("ms").get<std::int64_t>();
    if (step < 0 || step > kFarthestStep) throw std::invalid_argument("ms: out of range");
    m_world.clock.Advance(std::chrono::milliseconds(step));
  } else if (name == "end-sessions") {
    m_world.sessions.CloseAll();
  } else if (name == "reset") {
    m_world.Reset();
  } else if (name == "clear-counts") {
    m_world.log.ClearCounts();
  } else {
    throw std::invalid_argument("unknown command '" + name + "'");
  }
  return ordered_json::object();
}

}  // namespace vq::sim
