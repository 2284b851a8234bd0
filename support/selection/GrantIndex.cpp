#include <support/selection/GrantIndex.h>

#include <algorithm>
#include <array>
#include <limits>

#include <support/selection/GrantIndexBuilder.h>

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

GrantIndex::GrantIndex(std::span<const Grant> grants) {
  Builder(*this).Build(grants);
}

std::span<const GrantIndex::Entry> GrantIndex::Bucket(std::uint32_t bucket) const {
  return std::span(m_entries).subspan(m_bucketStarts[bucket],
                                      m_bucketStarts[bucket + 1] - m_bucketStarts[bucket]);
}

bool GrantIndex::Fits(const Term& term, const BoundObject& object) const {
  const auto matchings = std::span(m_matchings).subspan(term.firstMatching, term.matchings);
  return std::all_of(matchings.begin(), matchings.end(), [&](const Matching& matching) {
    const std::string_view value = object.Values()[matching.field];
    return value.data() != nullptr && MatchesValue(matching.op, matching.value, value);
  });
}

template <class Look>
bool GrantIndex::LookUp(std::uint64_t hash, Look& look) const {
  if (!m_filter.MayHold(hash)) return false;
  const std::uint32_t bucket = m_table.Find(hash);
  return bucket != KeyTable::kNone && look(Bucket(bucket));
}

template <class Look>
bool GrantIndex::LookUpValue(std::uint32_t field, std::string_view value, Look& look) const {
  const FieldKeys& keys = m_fields[field];
  if (keys.exact && LookUp(KeyHash::Exact(field, value), look)) return true;

  const auto affixes = [&](const std::vector<bool>& lengths, KeyKind kind, auto byteAt) {
    std::uint64_t state = KeyHash::Seed(field, kind);
    for (std::size_t n = 1; n < lengths.size() && n <= value.size(); ++n) {
      state = KeyHash::Step(state, value[byteAt(n)]);
      if (lengths[n] && LookUp(KeyHash::Finish(state), look)) return true;
    }
    return false;
  };
  if (affixes(keys.prefixes, KeyKind::Prefix, [](std::size_t n) { return n - 1; })) return true;
  if (affixes(keys.suffixes, KeyKind::Suffix, [&](std::size_t n) { return value.size() - n; })) {
    return true;
  }

  for (std::size_t i = 0; i < kPieceLengths.size(); ++i) {
    if ((keys.pieces >> i & 1U) == 0) continue;
    const std::size_t length = kPieceLengths[i];
    const std::uint64_t seed = KeyHash::Seed(field, KeyKind::Piece, length);
    for (std::size_t at = 0; at + length <= value.size(); ++at) {
      if (LookUp(KeyHash::Piece(seed, value.data() + at, length), look)) return true;
    }
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
      if (Fits(m_terms[entry.term], bound)) {
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
      const Term& term = m_terms[entry.term];
      return Fits(term, bound) && accept(term.grant);
    });
  });
}

}  // namespace vq
