// Values of the site file with their places in it, and readers that refuse what does not fit. A
// reader that refuses raises SiteError with the place ("/users/ann/expiry"); a reader of an object
// looks at every key, so that a misspelt one is found.
//
//   ReadObject(value, {{"name", Into(name)}, {"locked", Into(locked)}});
//
// Thread contract: no state; any thread.
#ifndef VQ_SIMULATOR_SITEVALUE_H
#define VQ_SIMULATOR_SITEVALUE_H

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace vq::sim {

// One value of the file, with its place in it. Borrows what it refers to.
struct Value {
  const nlohmann::json& node;
  const std::string& file;
  std::string place;

  // Raises SiteError.
  [[noreturn]] void Fail(const std::string& what) const;
  [[nodiscard]] Value Child(const std::string& key, const nlohmann::json& child) const;
};

using Reader = std::function<void(const Value&)>;
using Fields = std::map<std::string_view, Reader>;

// Reads an object by its keys; each key must be one of the fields. Keys may be missing.
void ReadObject(const Value& value, const Fields& fields);
// Reads an object whose keys are names of the site's own.
void ReadNamed(const Value& value,
               const std::function<void(const std::string&, const Value&)>& item);
void ReadArray(const Value& value, const Reader& item);

std::string Text(const Value& value);  // without zero characters, which the wire cannot carry
bool Flag(const Value& value);
// A whole number from `least` to `most`.
std::int64_t WholeNumber(const Value& value, std::int64_t least, std::int64_t most);
template <typename Number>
Number Whole(const Value& value, Number least, Number most) {
  return static_cast<Number>(
      WholeNumber(value, static_cast<std::int64_t>(least), static_cast<std::int64_t>(most)));
}
std::int32_t Long(const Value& value);
std::chrono::milliseconds Milliseconds(const Value& value);  // up to an hour

// The index of a text in a list of names.
template <typename Names>
int OneOf(const Value& value, const std::string& text, const Names& names) {
  const auto found = std::find(std::begin(names), std::end(names), text);
  if (found != std::end(names)) return static_cast<int>(std::distance(std::begin(names), found));
  std::string all;
  for (const std::string_view name : names) all += (all.empty() ? "" : ", ") + std::string(name);
  value.Fail("'" + text + "' is not one of " + all);
}

// Readers that put a value where it belongs; the target outlives the reader.
Reader Into(std::string& target);
Reader Into(bool& target);
Reader Into(std::chrono::milliseconds& target);
Reader Into(std::int32_t& target);

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SITEVALUE_H
