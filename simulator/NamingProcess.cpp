#include <simulator/NamingProcess.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/os_toolkit/os_file_system.h>

namespace vq::sim {
namespace {

// A shell command; $1 is the host, $2 the port and $3 the directory.
constexpr const char* kCommand =
#include <simulator/NamingCommand.inc>
    ;
constexpr const char* kHost = "127.0.0.1";

sockaddr_in Address(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// 0 when there is none.
int FreePort() {
  const Descriptor probe(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address = Address(0);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const bool found =
      bind(probe.Get(), generic, size) == 0 && getsockname(probe.Get(), generic, &size) == 0;
  return found ? ntohs(address.sin_port) : 0;
}

bool Listens(int port) {
  const Descriptor probe(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in address = Address(port);
  return connect(probe.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// In the child: never returns.
[[noreturn]] void RunService(const char* port, const char* directory, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  setpgid(0, 0);  // Ctrl-C is for the simulator, which removes its names first
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing, stream);
  execl("/bin/sh", "sh", "-c", kCommand, "naming-service", kHost, port, directory,
        static_cast<char*>(nullptr));
  _exit(127);
}

}  // namespace

NamingProcess::NamingProcess()
    : m_directory(std::filesystem::temp_directory_path() / "vq-naming-XXXXXX") {
  if (mkdtemp(m_directory.data()) == nullptr) {
    throw std::runtime_error(m_directory + ": no directory for the naming service can be made");
  }
  // Another process may take the port between its choice and its use.
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (Start()) return;
    Stop();
  }
  RemoveDirectory();
  throw std::runtime_error(std::string("the naming service does not start by the command: ") +
                           kCommand);
}

NamingProcess::~NamingProcess() {
  Stop();
  RemoveDirectory();
}

void NamingProcess::RemoveDirectory() const {
  std::error_code ignored;
  std::filesystem::remove_all(m_directory, ignored);
}

std::string NamingProcess::Reference() const {
  return std::string("corbaloc:iiop:") + kHost + ":" + std::to_string(m_port) + "/NameService";
}

bool NamingProcess::Start() {
  constexpr std::chrono::seconds kPatience{20};
  m_port = FreePort();
  const std::string port = std::to_string(m_port);
  const pid_t parent = getpid();
  m_process = fork();
  if (m_process == 0) RunService(port.c_str(), m_directory.c_str(), parent);
  if (m_process == -1 || m_port == 0) return false;
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    if (waitpid(m_process, nullptr, WNOHANG) == m_process) {
      m_process = -1;
      return false;
    }
    if (Listens(m_port)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

void NamingProcess::Stop() {
  if (m_process == -1) return;
  kill(m_process, SIGTERM);
  waitpid(m_process, nullptr, 0);
  m_process = -1;
}

}  // namespace vq::sim
