// A program that asks on the console: console_program user|password|thread|handler|ignore. Ends
// with 0 when the answer is "operator" or "sesame", 7 when there was none, 8 otherwise.
#include <csignal>
#include <thread>

#include <support/diagnostics/ConsoleInput.h>

namespace {

constexpr int kRefused = 7;
constexpr int kWrongText = 8;
volatile std::sig_atomic_t handled = 0;

template <int ask(std::string&)>
int Ask(const char* expected) {
  std::string answer = "before";
  if (ask(answer) == 0) return answer == "before" ? kRefused : kWrongText;
  return answer == expected ? 0 : kWrongText;
}

}  // namespace

int main(int, char** argv) {
  const std::string what = argv[1];
  if (what == "user") return Ask<getUserFromStdin>("operator");
  if (what == "thread") std::jthread([] { Ask<getPasswdFromStdin>("sesame"); });
  if (what == "ignore") std::signal(SIGINT, SIG_IGN);
  if (what == "handler") std::signal(SIGINT, [](int) { handled = handled + 1; });
  const int result = Ask<getPasswdFromStdin>("sesame");
  if (what != "handler") return result;
  std::raise(SIGINT);  // the handler is in its place again
  return handled == 2 ? result : kWrongText;
}
