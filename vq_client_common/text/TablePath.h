// Joins and splits the paths of job tables.
//
// A table may contain tables. A *table path* is the names from the outermost table to the innermost
// with the separator "/" between them. There is no escape character, so a name must not contain a
// separator.
//
//   std::string path, left, right;
//   AppendToTablePath("T1", "T2", path);       // "T1/T2"
//   SplitLeftMost("T1/T2/T3", left, right);    // "T1", "T2/T3"
//   SplitRightMost("T1/T2/T3", left, right);   // "T1/T2", "T3"
//
// An output may be the same object as an input. The functions with outputs always return true.
#ifndef VQ_CLIENT_COMMON_TEXT_TABLEPATH_H
#define VQ_CLIENT_COMMON_TEXT_TABLEPATH_H

#include <list>
#include <string>
#include <string_view>

#include <support/Export.h>

namespace vq {
// The separator between two names of a path.
inline constexpr std::string_view kTablePathSeparator = "/";
}  // namespace vq

// Sets `out` to `path`, a separator unless `path` ends with one, and `name`. With an empty `path`
// it appends `name` to `out`, so pass an empty `out`.
VQ_CLIENT_COMMON_API bool AppendToTablePath(const std::string& path, const std::string& name,
                                            std::string& out);

// Sets `out` to the names of `path`, the outermost first. A separator at the start, or after
// another one, gives an empty name, a separator at the end gives none. An empty path gives an empty
// list.
VQ_CLIENT_COMMON_API bool SplitTablePath(const std::string& path, std::list<std::string>& out);

// Sets `left` to the outermost name and `right` to the path after it. Without a separator `left` is
// the whole path and `right` is empty.
VQ_CLIENT_COMMON_API bool SplitLeftMost(const std::string& path, std::string& left,
                                        std::string& right);

// Sets `right` to the innermost name and `left` to the path before it. Without a separator both are
// the whole path, unlike in SplitLeftMost. The path ends at its first zero byte.
VQ_CLIENT_COMMON_API bool SplitRightMost(const std::string& path, std::string& left,
                                         std::string& right);

// Whether `path` has no separator, so that its table is in no other. True for an empty path.
VQ_CLIENT_COMMON_API bool IsOuterMostTableName(const std::string& path);

// Does not answer the question of its name: ("T1", "T1/T2") is false, ("AB", "CD/E") is true. False
// when `second` contains `first`; otherwise true when both have the same length; otherwise whether
// `second` has a separator at the index `first.size()` and at least one byte after it.
VQ_CLIENT_COMMON_API bool DoesTableBelongToTable(const std::string& first,
                                                 const std::string& second);

#endif  // VQ_CLIENT_COMMON_TEXT_TABLEPATH_H
