// Runs a whole program for a benchmark, without output.
#ifndef VQ_BENCHMARKS_SPAWNEDPROGRAM_H
#define VQ_BENCHMARKS_SPAWNEDPROGRAM_H

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace vq {

// In seconds.
struct ProgramTimes {
  double processor;
  double elapsed;
};

// Runs the program with these environment variables only, so that no setting of the host applies.
// Throws when it does not start or fails.
inline ProgramTimes RunProgram(std::vector<std::string> arguments,
                               std::vector<std::string> environment = {}) {
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  };
  const std::vector<char*> argv = pointers(arguments);
  const std::vector<char*> envp = pointers(environment);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  const int failure = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("can't start " + arguments[0]);

  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) {
    throw std::runtime_error(arguments[0] + " failed");
  }
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return {seconds(usage.ru_utime) + seconds(usage.ru_stime), elapsed.count()};
}

}  // namespace vq

#endif  // VQ_BENCHMARKS_SPAWNEDPROGRAM_H
