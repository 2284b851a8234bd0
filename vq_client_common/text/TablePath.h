// Paths of job tables.
//
// Tables nest. A *table path* is the names from the outermost table to the innermost, joined by the
// separator "/". No character is escaped, so a name must not hold a separator.
//
//   std::string path, left, right;
//   AppendToTablePath("T1", "T2", path);        // "T1/T2"
//   SplitLeftMost("T1/T2/T3", left, right);     // "T1", "T2/T3"
//   SplitRightMost("T1/T2/T3", left, right);    // "T1/T2", "T3"
//
// Thread contract: every function may be called from any thread, with arguments that no other
// thread changes. An output may be the same object as an input. None fails, save for want of
// memory.
#ifndef VQ_CLIENT_COMMON_TEXT_TABLEPATH_H
#define VQ_CLIENT_COMMON_TEXT_TABLEPATH_H

#include <list>
#include <string>
#include <string_view>

#include <support/Export.h>

namespace vq {
// What stands between two names of a path.
inline constexpr std::string_view kTablePathSeparator = "/";
}  // namespace vq

// Sets `out` to `path`, a separator unless `path` ends in one, and `name`. With an empty `path`,
// `name` is appended to what `out` holds, so pass an empty `out`. Always true.
VQ_CLIENT_COMMON_API bool AppendToTablePath(const std::string& path, const std::string& name,
                                            std::string& out);

// Sets `out` to the names of `path`, outermost first. A leading separator and two in a row give an
// empty name, a closing one gives none; an empty path gives an empty list. Always true.
VQ_CLIENT_COMMON_API bool SplitTablePath(const std::string& path, std::list<std::string>& out);

// Sets `left` to the outermost name and `right` to what follows its separator. Without a separator
// `left` is the path and `right` is empty. Always true.
VQ_CLIENT_COMMON_API bool SplitLeftMost(const std::string& path, std::string& left,
                                        std::string& right);

// Sets `right` to the innermost name and `left` to what stands before its separator. The path ends
// at its first zero byte. Without a separator both are the path, unlike SplitLeftMost. Always true.
VQ_CLIENT_COMMON_API bool SplitRightMost(const std::string& path, std::string& left,
                                         std::string& right);

// Whether `path` names a table that lies in no other: it has no separator. True for an empty path.
VQ_CLIENT_COMMON_API bool IsOuterMostTableName(const std::string& path);

// False when `first` occurs anywhere in `second`; then true when both are of one length; then
// whether `second` has a separator right behind as many bytes as `first` has, and something after
// it. So the name promises the reverse: ("T1", "T1/T2") is false, ("AB", "CD/E") is true.
VQ_CLIENT_COMMON_API bool DoesTableBelongToTable(const std::string& first,
                                                 const std::string& second);

#endif  // VQ_CLIENT_COMMON_TEXT_TABLEPATH_H
