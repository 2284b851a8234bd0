// Answers for thousands of grants at once which of them fit an object, without trying each.
//
// A *grant* is a criteria text (a selection, see QCSSelectionDef.h) with a level. The answers are
// those of trying QCSSelectionDef::DoesItFit(object, false) on every grant; only the time differs.
//
//   const std::vector<vq::Grant> grants = {{"NAME LIKE 'PAY*'", 3}, {"NAME = 'PAYROLL'", 2}};
//   const vq::GrantIndex index(grants);
//   QCSObject table;
//   table.SetAttribute("NAME", "PAYROLL");
//   index.HighestFitting(table);   // 3
//
// How. Each term is filed in one bucket, under the rarest thing that it demands of an object: an
// exact text (`=`, or LIKE without wildcards), the text before a pattern's first wildcard, the text
// after its last, a piece of eight bytes or fewer between two, or at least that the attribute be
// there. A question looks up what the object has to offer (its values, their prefixes of the
// lengths in use, their suffixes, their pieces) and evaluates the terms it finds. Within a bucket
// the terms of the highest level come first, so the search for the highest ends early.
//
// Cost. Building is linear in the texts. A question takes one lookup for every prefix, suffix and
// piece of the object's values, however many grants there are, and then one evaluation for each
// term found. Terms that demand nothing by which they can be told apart (only !=, NOT LIKE, <, >
// and their like) are tried one by one when the object has their attribute.
#ifndef VQ_SUPPORT_GRANTS_GRANTINDEX_H
#define VQ_SUPPORT_GRANTS_GRANTINDEX_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <support/grants/GrantKeys.h>
#include <support/selection/QCSObject.h>
#include <support/selection/SelectionMatching.h>
#include <support/selection/SelectionParseError.h>

namespace vq {

struct Grant {
  std::string_view criteria;
  std::uint8_t level;
};

// Thread contract: does not change once built; any number of threads may ask it.
class GrantIndex {
 public:
  static constexpr int kNoneFits = -1;

  // A grant whose criteria do not parse. It fits nothing.
  struct Refused {
    std::uint32_t grant;
    SelectionParseError error;
  };

  // The grants are numbered from 0 in their order. Copies what it needs of the texts.
  explicit GrantIndex(std::vector<Grant> grants);
  GrantIndex(const GrantIndex&) = delete;
  GrantIndex& operator=(const GrantIndex&) = delete;

  // All grants, the refused ones among them, as they were given. The texts live as long as the
  // index.
  const std::vector<Grant>& Grants() const { return m_grants; }
  const std::vector<Refused>& RefusedGrants() const { return m_refused; }

  // The highest level of the grants that fit, or kNoneFits.
  int HighestFitting(const QCSObject& object) const;

  // Whether `accept` says yes to the number of some grant that fits. Calls it until it says yes, in
  // no set order, and perhaps more than once for a grant.
  bool AnyFitting(const QCSObject& object, const std::function<bool(std::uint32_t)>& accept) const;

 private:
  class Builder;
  class BoundObject;

  struct Matching {
    std::string_view value;
    std::uint32_t field;
    SelectionOperator op;
  };
  struct Term {
    std::uint32_t firstMatching;  // its matchings end where the next term's begin
    std::uint32_t grant;
    std::uint32_t bucket;
    std::uint8_t level;
  };
  struct Entry {
    std::uint32_t term;
    std::uint8_t level;
  };
  // What kinds of keys are in use for one field, so that a question looks up no others.
  struct FieldKeys {
    std::uint32_t presence = KeyTable::kNone;  // the bucket of the terms that ask no more
    bool exact = false;
    std::uint8_t pieces = 0;              // bit i: pieces of kPieceLengths[i]
    std::vector<std::uint32_t> prefixes;  // their lengths, rising
    std::vector<std::uint32_t> suffixes;  // likewise
  };

  // Calls `look(entries)` for every bucket that may hold terms that fit, until it returns true.
  template <class Look>
  bool LookThrough(const BoundObject& object, Look look) const;
  template <class Look>
  bool LookUpValue(std::uint32_t field, std::string_view value, Look& look) const;
  template <class Look>
  bool LookUp(std::uint64_t hash, Look& look) const;
  std::uint32_t BucketOf(std::uint64_t hash) const;  // or KeyTable::kNone
  std::span<const Entry> Bucket(std::uint32_t bucket) const;
  bool Fits(std::uint32_t term, const BoundObject& object) const;

  std::string m_text;                  // all criteria, one after the other
  std::deque<std::string> m_unquoted;  // the values that are written with doubled quotes
  std::vector<Grant> m_grants;         // into m_text
  std::vector<Refused> m_refused;
  std::vector<Matching> m_matchings;  // into m_text or m_unquoted
  std::vector<Term> m_terms;          // and one more, where the matchings end
  std::unordered_map<std::string_view, std::uint32_t> m_fieldNumbers;
  std::vector<FieldKeys> m_fields;
  KeyFilter m_filter;
  KeyTable m_table;
  std::vector<std::uint32_t> m_bucketStarts;  // one more than there are buckets
  std::vector<Entry> m_entries;               // by bucket, highest level first
};

}  // namespace vq

#endif  // VQ_SUPPORT_GRANTS_GRANTINDEX_H
