// The simulator's control channel, and with it the site reader: no line brings them down, and every
// line gets one line of JSON for an answer.

#include <nlohmann/json.hpp>

#include <fuzz/Require.h>
#include <simulator/Control.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vq::sim::World world;
  vq::sim::Control control(world, "/dev/null");
  const std::string answer = control.Execute(vq::Text(data, size));
  const auto json = nlohmann::json::parse(answer, nullptr, false);
  if (!json.is_object() || !json.contains("ok") || answer.find('\n') != std::string::npos) {
    std::abort();
  }
  return 0;
}
