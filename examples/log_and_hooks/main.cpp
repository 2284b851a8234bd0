// Copies the library's log to that of the application, and reports a callback that fails.
//
//   log_and_hooks SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// Without a sink the library writes no log anywhere.

#include <cstdlib>
#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

// This file's module in the log, beside those of the library.
TDiagRegister diagModule("LogAndHooks");

// The application's data; the hook below gets a pointer to it.
struct Application {
  int callbackFailures = 0;
};

// Called during the login when the server cannot call this client back. Must not throw. A graphical
// client would open its connection wizard.
void OnCallbackFailure(void* data) {
  ++static_cast<Application*>(data)->callbackFailures;
}

// Called for each line, while the log is locked: it must not call other functions of the log.
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
  log->SetMinimumDebugLevel(0);           // only the lines that are always written ...
  log->SetModuleLevel("GlobalFuncs", 4);  // ... and errors, warnings and notes of one module
  log->SetModuleLevel("LogAndHooks", 5);

  Application application;
  GL_SetCallbackTroubleshooter(OnCallbackFailure, &application);
  setenv("ENABLE_TEST_CALLBACK", "1", 1);  // without it no callback is tested

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
