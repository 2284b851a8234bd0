// The simulator's control channel, and with it the site reader: no line brings them down, and every
// line gets one line of JSON for an answer.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <simulator/Control.h>
#include <nlohmann/json.hpp>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vq::sim::World world;
  vq::sim::Control control(world, "/dev/null");
  const std::string answer =
      control.Execute(std::string(reinterpret_cast<const char*>(data), size));
  const auto json = nlohmann::json::parse(answer, nullptr, false);
  if (!json.is_object() || !json.contains("ok") || answer.find('\n') != std::string::npos) {
    std::abort();
  }
  return 0;
}
