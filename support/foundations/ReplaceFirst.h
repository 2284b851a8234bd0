// Fills a message template, one mark at a time.
//
// Message templates are never format strings. Intentional: a string that is filled in may itself
// contain a mark, and the next call then replaces that one. Several messages depend on it.
//
//   std::string text = "Version %s of %s";
//   vq::ReplaceFirst(text, "%s", "6.4");           // "Version 6.4 of %s"
//   vq::ReplaceFirst(text, "%s", "client");        // "Version 6.4 of client"
//   vq::Filled("Version %s of %s", {"6.4", "client"});   // the same
#ifndef VQ_SUPPORT_FOUNDATIONS_REPLACEFIRST_H
#define VQ_SUPPORT_FOUNDATIONS_REPLACEFIRST_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace vq {

// Replaces the first occurrence of `pattern` in `text`, searched from its start, and returns
// whether there was one. Without one, and for an empty pattern, `text` is unchanged. `pattern` and
// `by` must not be views into `text`.
inline bool ReplaceFirst(std::string& text, std::string_view pattern, std::string_view by) {
  if (pattern.empty()) return false;
  const std::size_t at = text.find(pattern);
  if (at == std::string::npos) return false;
  text.replace(at, pattern.size(), by);
  return true;
}

// Replaces the first "%s" in `text` by each of the values in turn.
inline std::string Filled(std::string text, std::initializer_list<std::string_view> values) {
  for (const std::string_view value : values) ReplaceFirst(text, "%s", value);
  return text;
}

}  // namespace vq

#endif  // VQ_SUPPORT_FOUNDATIONS_REPLACEFIRST_H
