// What the fuzzers have in common.
#ifndef VQ_FUZZ_REQUIRE_H
#define VQ_FUZZ_REQUIRE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace vq {

// Ends the process, which is a finding, unless the condition is true.
inline void Require(bool condition) {
  if (!condition) std::abort();
}

// The bytes of an input.
inline std::string Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace vq

#endif  // VQ_FUZZ_REQUIRE_H
