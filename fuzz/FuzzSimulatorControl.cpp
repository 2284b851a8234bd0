// The simulator's control channel, and with it the site reader: no line crashes them, and the
// answer to every line is one line of JSON.

#include <nlohmann/json.hpp>

#include <fuzz/Require.h>
#include <simulator/Control.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vq::sim::World world;
  vq::sim::Control control(world, "/dev/null");
  const std::string answer = control.Execute(vq::Text(data, size));
  const auto json = nlohmann::json::parse(answer, nullptr, false);
  vq::Require(json.is_object() && json.contains("ok") && answer.find('\n') == std::string::npos);
  return 0;
}
