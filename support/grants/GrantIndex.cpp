#include <support/grants/GrantIndex.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <support/grants/GrantIndexBuilder.h>

namespace vq {

// The object's values by the index's field numbers.
class GrantIndex::BoundObject {
 public:
  BoundObject(const GrantIndex& index, const QCSObject& object) {
    const std::size_t fields = index.m_fields.size();
    if (fields > m_few.size()) {
      m_many.resize(fields);
      m_values = m_many;
    } else {
      m_values = std::span(m_few).first(fields);
    }
    for (const auto& [name, value] : object) {
      const auto found = index.m_fieldNumbers.find(name);
      if (found != index.m_fieldNumbers.end()) m_values[found->second] = value;
    }
  }
  BoundObject(const BoundObject&) = delete;
  BoundObject& operator=(const BoundObject&) = delete;

  // Null data: the object lacks the attribute. A text of an object never has null data.
  std::span<const std::string_view> Values() const { return m_values; }

 private:
  std::array<std::string_view, 16> m_few;
  std::vector<std::string_view> m_many;
  std::span<std::string_view> m_values;
};

GrantIndex::GrantIndex(std::vector<Grant> grants) : m_grants(std::move(grants)) {
  Builder(*this).Build();
}

std::span<const GrantIndex::Entry> GrantIndex::Bucket(std::uint32_t bucket) const {
  return std::span(m_entries).subspan(m_bucketStarts[bucket],
                                      m_bucketStarts[bucket + 1] - m_bucketStarts[bucket]);
}

bool GrantIndex::Fits(std::uint32_t term, const BoundObject& object) const {
  const std::uint32_t first = m_terms[term].firstMatching;
  const auto matchings =
      std::span(m_matchings).subspan(first, m_terms[term + 1].firstMatching - first);
  return std::all_of(matchings.begin(), matchings.end(), [&](const Matching& matching) {
    const std::string_view value = object.Values()[matching.field];
    return value.data() != nullptr && MatchesValue(matching.op, matching.value, value);
  });
}

std::uint32_t GrantIndex::BucketOf(std::uint64_t hash) const {
  return m_filter.MayHold(hash) ? m_table.Find(hash) : KeyTable::kNone;
}

template <class Look>
bool GrantIndex::LookUp(std::uint64_t hash, Look& look) const {
  const std::uint32_t bucket = BucketOf(hash);
  return bucket != KeyTable::kNone && look(Bucket(bucket));
}

template <class Look>
bool GrantIndex::LookUpValue(std::uint32_t field, std::string_view value, Look& look) const {
  const FieldKeys& keys = m_fields[field];
  if (keys.exact && LookUp(KeyHash::Of(field, KeyKind::Exact, value), look)) return true;

  KeyHash prefix(field, KeyKind::Prefix);
  for (const std::uint32_t length : keys.prefixes) {
    if (length > value.size()) break;
    if (LookUp(prefix.Prefix(value, length), look)) return true;
  }
  KeyHash suffix(field, KeyKind::Suffix);
  for (const std::uint32_t length : keys.suffixes) {
    if (length > value.size()) break;
    if (LookUp(suffix.Suffix(value, length), look)) return true;
  }
  // A piece may stand in the value many times over; its terms are tried once all the same.
  std::vector<std::uint32_t> buckets;
  for (std::size_t i = 0; i < kPieceLengths.size(); ++i) {
    if ((keys.pieces >> i & 1U) == 0) continue;
    for (std::size_t at = 0; at + kPieceLengths[i] <= value.size(); ++at) {
      const std::string_view piece = value.substr(at, kPieceLengths[i]);
      const std::uint32_t bucket = BucketOf(KeyHash::Of(field, KeyKind::Piece, piece));
      if (bucket != KeyTable::kNone) buckets.push_back(bucket);
    }
  }
  std::sort(buckets.begin(), buckets.end());
  buckets.erase(std::unique(buckets.begin(), buckets.end()), buckets.end());
  for (const std::uint32_t bucket : buckets) {
    if (look(Bucket(bucket))) return true;
  }
  return keys.presence != KeyTable::kNone && look(Bucket(keys.presence));
}

template <class Look>
bool GrantIndex::LookThrough(const BoundObject& object, Look look) const {
  if (look(Bucket(Builder::kAlways))) return true;
  const auto values = object.Values();
  for (std::uint32_t field = 0; field < values.size(); ++field) {
    if (values[field].data() != nullptr && LookUpValue(field, values[field], look)) return true;
  }
  return false;
}

int GrantIndex::HighestFitting(const QCSObject& object) const {
  const BoundObject bound(*this, object);
  int highest = kNoneFits;
  LookThrough(bound, [&](std::span<const Entry> entries) {
    for (const Entry& entry : entries) {
      if (entry.level <= highest) break;
      if (Fits(entry.term, bound)) {
        highest = entry.level;
        break;
      }
    }
    return highest == std::numeric_limits<std::uint8_t>::max();
  });
  return highest;
}

bool GrantIndex::AnyFitting(const QCSObject& object,
                            const std::function<bool(std::uint32_t)>& accept) const {
  const BoundObject bound(*this, object);
  return LookThrough(bound, [&](std::span<const Entry> entries) {
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
      return Fits(entry.term, bound) && accept(m_terms[entry.term].grant);
    });
  });
}

}  // namespace vq
