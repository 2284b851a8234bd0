// Keeps a session alive, and registers again when it is lost.
//
//   keep_alive SERVER USER SECONDS COUNT
//              -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// The session's own thread sends the keep-alives, every SECONDS. The program reports COUNT times,
// or until Ctrl-C. A real program takes about a third of the session's time-out as SECONDS.

#include <chrono>
#include <cstdlib>
#include <iostream>

#include <signal.h>
#include <time.h>

#include <vq_client_common/vq_client_common.h>

int main(int argc, char** argv) {
  if (argc < 5) {
    std::cerr << "usage: keep_alive SERVER USER SECONDS COUNT [-ORBInitRef ...]\n";
    return 2;
  }
  // Before the ORB starts its threads, which inherit the signal mask.
  sigset_t interrupts;
  sigemptyset(&interrupts);
  sigaddset(&interrupts, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);

  const std::chrono::seconds interval(std::atol(argv[3]));
  try {
    const vq::Session session({.server = argv[1],
                               .user = argv[2],
                               .credentials = vq::AskForPassword(),
                               .orbArguments = {argv, argv + argc},
                               .keepAlive = interval,
                               .renew = true,
                               // Called on the session's thread when it cannot be renewed.
                               .onLost = [] { std::cerr << "The session is lost.\n"; }});
    if (!session.Message().empty()) std::cerr << session.Message() << '\n';
    const timespec pause{interval.count(), 0};
    for (int left = std::atoi(argv[4]); left > 0; --left) {
      if (sigtimedwait(&interrupts, nullptr, &pause) == SIGINT) break;
      if (!session.IsLost()) std::cout << "The session is alive." << std::endl;
    }
    return session.IsLost() ? 1 : 0;
  } catch (const vq::LoginError& e) {
    std::cerr << e.what() << '\n' << e.Cause() << '\n';
    return 1;
  }
}
