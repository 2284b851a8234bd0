#include <vq_client_common/text/TablePath.h>

#include <cstddef>
#include <utility>

#include <support/os_toolkit/os_tokenizer.h>

namespace {

using vq::kTablePathSeparator;
constexpr std::size_t kNone = std::string_view::npos;

}  // namespace

bool AppendToTablePath(const std::string& path, const std::string& name, std::string& out) {
  if (path.empty()) {
    // Intentional: `out` is not cleared; callers that collect names in it depend on that.
    out += name;
    return true;
  }
  std::string joined = path;
  if (!path.ends_with(kTablePathSeparator)) joined += kTablePathSeparator;
  joined += name;
  out = std::move(joined);
  return true;
}

bool SplitTablePath(const std::string& path, std::list<std::string>& out) {
  std::list<std::string> names;
  std::string_view rest = path;
  while (!rest.empty()) names.emplace_back(vq::Cut(rest, kTablePathSeparator.front()));
  out = std::move(names);
  return true;
}

bool SplitLeftMost(const std::string& path, std::string& left, std::string& right) {
  const std::string text = path;  // may be the same object as an output
  const std::size_t position = text.find(kTablePathSeparator);
  left = text.substr(0, position);
  right = position == kNone ? "" : text.substr(position + kTablePathSeparator.size());
  return true;
}

bool SplitRightMost(const std::string& path, std::string& left, std::string& right) {
  const std::string text = path.c_str();  // a copy, as above, up to the first zero byte
  const std::size_t position = text.rfind(kTablePathSeparator);
  left = text.substr(0, position);
  // Intentional: without a separator both outputs are the path; callers recognise an outermost
  // table by that.
  right = position == kNone ? text : text.substr(position + kTablePathSeparator.size());
  return true;
}

bool IsOuterMostTableName(const std::string& path) {
  return path.find(kTablePathSeparator) == kNone;
}

bool DoesTableBelongToTable(const std::string& first, const std::string& second) {
  // Intentional: false for a path that contains the other; clients depend on that answer.
  if (second.find(first) != kNone) return false;
  if (first.size() == second.size()) return true;
  if (second.size() < first.size() + 2) return false;
  return std::string_view(second).substr(first.size()).starts_with(kTablePathSeparator);
}
