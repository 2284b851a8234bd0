#include <simulator/SiteValue.h>

#include <fstream>
#include <limits>

#include <simulator/Site.h>

namespace vq::sim {

using nlohmann::json;

void Value::Fail(const std::string& what) const {
  throw SiteError(file + ": " + (place.empty() ? "/" : place) + ": " + what);
}

Value Value::Child(const std::string& key, const json& child) const {
  return {child, file, place + "/" + key};
}

void ReadObject(const Value& value, const Fields& fields) {
  if (!value.node.is_object()) value.Fail("must be an object");
  for (const auto& [key, child] : value.node.items()) {
    const auto field = fields.find(key);
    if (field == fields.end()) value.Child(key, child).Fail("unknown key");
    field->second(value.Child(key, child));
  }
}

void ReadNamed(const Value& value,
               const std::function<void(const std::string&, const Value&)>& item) {
  if (!value.node.is_object()) value.Fail("must be an object");
  for (const auto& [key, child] : value.node.items()) item(key, value.Child(key, child));
}

void ReadArray(const Value& value, const Reader& item) {
  if (!value.node.is_array()) value.Fail("must be an array");
  std::size_t index = 0;
  for (const json& child : value.node) item(value.Child(std::to_string(index++), child));
}

std::string Text(const Value& value) {
  if (!value.node.is_string()) value.Fail("must be a string");
  auto text = value.node.get<std::string>();
  if (text.find('\0') != std::string::npos) value.Fail("must not hold a zero character");
  return text;
}

bool Flag(const Value& value) {
  if (!value.node.is_boolean()) value.Fail("must be true or false");
  return value.node.get<bool>();
}

std::int64_t WholeNumber(const Value& value, std::int64_t least, std::int64_t most) {
  const auto range =
      "must be a whole number from " + std::to_string(least) + " to " + std::to_string(most);
  if (!value.node.is_number_integer()) value.Fail(range);
  if (value.node.is_number_unsigned() &&
      value.node.get<std::uint64_t>() > static_cast<std::uint64_t>(most)) {
    value.Fail(range);
  }
  const auto number = value.node.get<std::int64_t>();
  if (number < least || number > most) value.Fail(range);
  return number;
}

std::int32_t Long(const Value& value) {
  return Whole<std::int32_t>(value, std::numeric_limits<std::int32_t>::min(),
                             std::numeric_limits<std::int32_t>::max());
}

std::chrono::milliseconds Milliseconds(const Value& value) {
  return std::chrono::milliseconds(Whole(value, 0, 3'600'000));
}

Reader Into(std::string& target) {
  return [&target](const Value& value) { target = Text(value); };
}
Reader Into(bool& target) {
  return [&target](const Value& value) { target = Flag(value); };
}
Reader Into(std::chrono::milliseconds& target) {
  return [&target](const Value& value) { target = Milliseconds(value); };
}
Reader Into(std::int32_t& target) {
  return [&target](const Value& value) { target = Long(value); };
}

namespace {

// No site nests deeper; what does is an attempt on the stack.
constexpr int kDeepest = 32;

bool IsShallow(const json& value, int levels) {
  return std::all_of(value.begin(), value.end(), [levels](const json& child) {
    return !child.is_structured() || (levels > 0 && IsShallow(child, levels - 1));
  });
}

}  // namespace

json ParseSite(const std::string& text, const std::string& name) {
  try {
    json document = json::parse(text, nullptr, true, true);
    if (!IsShallow(document, kDeepest)) throw SiteError(name + ": nested too deeply");
    return document;
  } catch (const json::parse_error& error) {
    const std::size_t end = std::min(error.byte == 0 ? 0 : error.byte - 1, text.size());
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    const std::size_t start = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::size_t column = start == std::string::npos ? end + 1 : end - start;
    throw SiteError(name + ":" + std::to_string(line) + ":" + std::to_string(column) +
                    ": not JSON");
  }
}

json ParseSiteFile(const std::filesystem::path& path) {
  std::string text;
  try {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) throw SiteError(path.string() + ": cannot be opened");
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  } catch (const std::ios_base::failure&) {  // a directory opens, and does not read
    throw SiteError(path.string() + ": cannot be read");
  }
  return ParseSite(text, path.string());
}

}  // namespace vq::sim
