// The keys under which GrantIndex files its terms, and the hashing and the filter for them.
//
// A key says something that an object must have for the term to fit: an exact text, a prefix, a
// suffix or a short piece of one of its attributes, or just the attribute itself. Keys are told
// apart by a 64-bit hash alone. Two keys with one hash share a bucket, which costs a wasted look
// and never a wrong answer, since every term found is evaluated in full.
#ifndef VQ_SUPPORT_SELECTION_GRANTKEYS_H
#define VQ_SUPPORT_SELECTION_GRANTKEYS_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace vq {

enum class KeyKind : std::uint8_t { Exact, Prefix, Suffix, Piece, Presence };

// The lengths of the pieces that are filed: every window of these lengths of a value is looked up,
// so they are few, and eight bytes fit a register.
inline constexpr std::array<std::size_t, 4> kPieceLengths = {1, 2, 4, 8};

class KeyHash {
 public:
  static std::uint64_t Seed(std::uint32_t field, KeyKind kind, std::size_t length = 0) {
    return Mix((static_cast<std::uint64_t>(field) << 8U | static_cast<std::uint64_t>(kind)) +
               (static_cast<std::uint64_t>(length) << 48U) + kOdd);
  }

  // One byte more; Finish(Step(...)) of a prefix's bytes is the prefix's hash, so one pass over a
  // value gives the hashes of all its prefixes.
  static std::uint64_t Step(std::uint64_t state, char c) {
    return (std::rotl(state, 23) ^ static_cast<unsigned char>(c)) * kOdd;
  }
  static std::uint64_t Finish(std::uint64_t state) { return Mix(state); }

  static std::uint64_t Exact(std::uint32_t field, std::string_view value) {
    std::uint64_t state = Seed(field, KeyKind::Exact, 0) + value.size();
    while (value.size() >= 8) {
      state = (std::rotl(state, 23) ^ Load(value.data(), 8)) * kOdd;
      value.remove_prefix(8);
    }
    return Mix(state ^ Load(value.data(), value.size()));
  }

  static std::uint64_t Prefix(std::uint32_t field, std::string_view prefix) {
    std::uint64_t state = Seed(field, KeyKind::Prefix);
    for (const char c : prefix) state = Step(state, c);
    return Finish(state);
  }

  static std::uint64_t Suffix(std::uint32_t field, std::string_view suffix) {
    std::uint64_t state = Seed(field, KeyKind::Suffix);
    for (std::size_t i = suffix.size(); i > 0; --i) state = Step(state, suffix[i - 1]);
    return Finish(state);
  }

  // `seed` is Seed(field, KeyKind::Piece, length); `length` is one of kPieceLengths.
  static std::uint64_t Piece(std::uint64_t seed, const char* bytes, std::size_t length) {
    return Mix(seed ^ Load(bytes, length));
  }

 private:
  static constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;

  static std::uint64_t Load(const char* bytes, std::size_t length) {
    std::uint64_t word = 0;
    if (length > 0) std::memcpy(&word, bytes, length);
    return word;
  }
  static std::uint64_t Mix(std::uint64_t h) {
    h = (h ^ (h >> 32U)) * 0xD6E8FEB86659FD93U;
    h = (h ^ (h >> 32U)) * 0xD6E8FEB86659FD93U;
    return h ^ (h >> 32U);
  }
};

// A set of hashes that may say yes to a few it does not hold: two bits of one word for each. It is
// small enough to stay in the fast caches where the table of keys is not, and most lookups of an
// object's prefixes and pieces end here.
class KeyFilter {
 public:
  void Reset(std::size_t keys) { m_words.assign(std::bit_ceil(keys / 4 + 1), 0); }
  void Add(std::uint64_t hash) { m_words[Word(hash)] |= Bits(hash); }
  bool MayHold(std::uint64_t hash) const {
    return (m_words[Word(hash)] & Bits(hash)) == Bits(hash);
  }

 private:
  std::size_t Word(std::uint64_t hash) const { return (hash >> 12U) & (m_words.size() - 1); }
  static std::uint64_t Bits(std::uint64_t hash) {
    return std::uint64_t{1} << (hash & 63U) | std::uint64_t{1} << (hash >> 6U & 63U);
  }

  std::vector<std::uint64_t> m_words{0};
};

// Hash to bucket number, by open addressing at most half full.
class KeyTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFFU;

  void Reset(std::size_t keys) { m_cells.assign(std::bit_ceil(2 * keys + 2), Cell{0, kNone}); }

  // The bucket of the hash; `next` if the hash is new, which then belongs to it.
  std::uint32_t FindOrAdd(std::uint64_t hash, std::uint32_t next) {
    Cell& cell = m_cells[Place(hash)];
    if (cell.bucket == kNone) cell = {Tag(hash), next};
    return cell.bucket;
  }
  std::uint32_t Find(std::uint64_t hash) const { return m_cells[Place(hash)].bucket; }

 private:
  struct Cell {
    std::uint32_t tag;
    std::uint32_t bucket;
  };
  static std::uint32_t Tag(std::uint64_t hash) { return static_cast<std::uint32_t>(hash); }
  std::size_t Place(std::uint64_t hash) const {
    const std::size_t mask = m_cells.size() - 1;
    std::size_t at = (hash >> 32U) & mask;
    while (m_cells[at].bucket != kNone && m_cells[at].tag != Tag(hash)) at = (at + 1) & mask;
    return at;
  }

  std::vector<Cell> m_cells{Cell{0, kNone}};
};

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_GRANTKEYS_H
