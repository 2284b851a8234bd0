// Keeps a session alive from a program's own event loop, and logs in again when it is lost.
//
//   keep_alive SERVER USER SECONDS COUNT -ORBInitRef NameService=corbaloc::HOST:2809/NameService
//
// The library has no thread and no timer: the loop says when. A tick every SECONDS, COUNT times or
// until Ctrl-C. A real program takes about a third of the session's time-out.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <vq_client_common/vq_client_common.h>

namespace {

constexpr unsigned int kTimeOut = 600;  // seconds without a keep-alive, and the session is over

// One keep-alive, and a second login when it fails. True as long as there is a session.
bool KeepUp() {
  try {
    if (GL_ClientKeepAlive() == 1) return true;
  } catch (BaseLoginEx& e) {  // raised here, where the other GL_ functions return a code
    std::cerr << e.handle() << '\n';
  }
  GL_LogOut(false);  // forgets the references of a server that is gone, and what the user may do
  const int code = GL_ReLogin(kTimeOut);
  std::string message;
  return (code == 1 || code == 50) && GL_PostLogin(message) == 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::cerr << "usage: keep_alive SERVER USER SECONDS COUNT [-ORBInitRef ...]\n";
    return 2;
  }
  UserPass credentials(argv[2], "", "");
  if (!credentials.Init()) return 2;

  // Before the ORB starts its threads, so that none of them takes the signal.
  sigset_t interrupts;
  sigemptyset(&interrupts);
  sigaddset(&interrupts, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);

  std::string message;
  int code = GL_Login(credentials.GetUsername(), credentials.GetPassword(), argv[1], kTimeOut,
                      message, CLIENT_CLI, E_GSR, argc, argv);
  if (code == 1 || code == 50) code = GL_PostLogin(message);
  if (!message.empty()) std::cerr << message << '\n';

  const long seconds = std::atol(argv[3]);
  const itimerspec ticks{{seconds, 0}, {seconds, 0}};
  const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
  timerfd_settime(timer, 0, &ticks, nullptr);
  pollfd sources[] = {{timer, POLLIN, 0}, {signalfd(-1, &interrupts, SFD_CLOEXEC), POLLIN, 0}};

  bool alive = code == 1;
  for (int left = std::atoi(argv[4]); alive && left > 0 && poll(sources, 2, -1) > 0; --left) {
    if (sources[1].revents != 0) break;  // Ctrl-C
    std::uint64_t missed = 0;            // ticks since the last look; one keep-alive serves all
    if (read(timer, &missed, sizeof missed) < 0) break;
    alive = KeepUp();
    std::cout << (alive ? "The session is alive." : "The session is lost.") << std::endl;
  }
  GL_LogOut(true);
  exit_vqclient_common();
  return alive ? 0 : 1;
}
