// Takes the library's log into an application's own, and hears of a callback that fails.
//
//   log_and_hooks SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// Without a sink the library writes no log anywhere.

#include <cstdlib>
#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// This file's own place in the log, beside the library's modules.
TDiagRegister diagModule("LogAndHooks");

// What the application keeps; the hook below gets a pointer to it.
struct Application {
  int callbackFailures = 0;
};

// Called within the login when the server cannot call this client back. A plain function: it must
// not raise. A client with a window would open its connection wizard here.
void OnCallbackFailure(void* data) {
  ++static_cast<Application*>(data)->callbackFailures;
}

// Called for one line at a time, under the log's lock: no other call of the log may be made here.
void OnLine(const TDiagLine& line) {
  std::cout << '[' << line.level << "] " << line.module << ": " << line.text << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: log_and_hooks SERVER USER [-ORBInitRef NameService=REFERENCE]\n";
    return 2;
  }
  TDiag* const log = TDiag::Instance();
  const TDiag::SinkId sink = log->AddCallbackSink(OnLine);
  log->SetMinimumDebugLevel(0);           // nothing in general ...
  log->SetModuleLevel("GlobalFuncs", 4);  // ... but errors, warnings and notes of one module
  log->SetModuleLevel("LogAndHooks", 5);

  Application application;
  GL_SetCallbackTroubleshooter(OnCallbackFailure, &application);
  setenv("ENABLE_TEST_CALLBACK", "1", 1);  // otherwise no callback is tried

  TDiagFunc diag(diagModule, "main");
  VQ_LOG(diag, 5) << "logging in to " << argv[1];
  int exitCode = 0;
  try {
    const vq::Session session({.server = argv[1],
                               .user = argv[2],
                               .credentials = vq::AskForPassword(),
                               .orbArguments = {argv, argv + argc}});
    if (!session.Message().empty()) std::cerr << session.Message() << '\n';
    VQ_LOG(diag, 5) << "callbacks that failed: " << application.callbackFailures;
  } catch (const vq::LoginError& e) {
    std::cerr << e.what() << '\n' << e.Cause() << '\n';
    exitCode = 1;
  }
  GL_SetCallbackTroubleshooter(nullptr, nullptr);
  log->RemoveSink(sink);
  return exitCode;
}
