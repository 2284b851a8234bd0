// The keys under which GrantIndex files its terms, and the hashing and the filter for them.
//
// A key says something that an object must have for the term to fit: an exact text, a prefix, a
// suffix or a short piece of one of its attributes, or just the attribute itself. Keys are told
// apart by half of a 64-bit hash alone. Two keys that agree in it share a bucket, which costs a
// wasted look and never a wrong answer, since every term found is evaluated in full.
#ifndef VQ_SUPPORT_GRANTS_GRANTKEYS_H
#define VQ_SUPPORT_GRANTS_GRANTKEYS_H

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

// Hashes texts eight bytes at a time, from the front or from the back. What has been read of a text
// serves for all its prefixes (or suffixes): each of them takes one more step, whatever its length.
// Thread contract: a plain value.
class KeyHash {
 public:
  KeyHash(std::uint32_t field, KeyKind kind)
      : m_state((std::uint64_t{field} * 8U + static_cast<std::uint64_t>(kind) + 1U) * kOdd) {}

  // The hash of a whole text; of a suffix when the kind is Suffix.
  static std::uint64_t Of(std::uint32_t field, KeyKind kind, std::string_view text) {
    KeyHash hash(field, kind);
    return kind == KeyKind::Suffix ? hash.Suffix(text, text.size())
                                   : hash.Prefix(text, text.size());
  }

  // The hash of the text's first, or last, `length` bytes. For one object always the same text and
  // lengths that do not fall.
  std::uint64_t Prefix(std::string_view text, std::size_t length) {
    for (; m_read + kBlock <= length; m_read += kBlock) Step(Load8(text.data() + m_read));
    return Finish(text.data() + m_read, length);
  }
  std::uint64_t Suffix(std::string_view text, std::size_t length) {
    const char* end = text.data() + text.size();
    for (; m_read + kBlock <= length; m_read += kBlock) Step(Load8(end - m_read - kBlock));
    return Finish(end - length, length);
  }

 private:
  static constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
  static constexpr std::size_t kBlock = 8;

  void Step(std::uint64_t word) { m_state = (std::rotl(m_state, 23) ^ word) * kOdd; }
  std::uint64_t Finish(const char* rest, std::size_t length) const {
    return Mix((m_state + length) ^ LoadUpTo7(rest, length - m_read));
  }

  static std::uint64_t Load8(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }
  static std::uint64_t Load4(const char* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
  }
  static std::uint64_t Load1(const char* byte) { return static_cast<unsigned char>(*byte); }
  // Reads every byte; together with the length the result tells all texts apart.
  static std::uint64_t LoadUpTo7(const char* bytes, std::size_t count) {
    if (count >= 4) return Load4(bytes) << 32U | Load4(bytes + count - 4);
    if (count == 0) return 0;
    return Load1(bytes) << 16U | Load1(bytes + count / 2) << 8U | Load1(bytes + count - 1);
  }
  static std::uint64_t Mix(std::uint64_t h) {
    h = (h ^ (h >> 32U)) * 0xD6E8FEB86659FD93U;
    h = (h ^ (h >> 32U)) * 0xD6E8FEB86659FD93U;
    return h ^ (h >> 32U);
  }

  std::uint64_t m_state;
  std::size_t m_read = 0;
};

// A set of hashes that may say yes to a few it does not hold: two bits of one word for each. It is
// small enough to stay in the fast caches where the table of keys is not, and most lookups of an
// object's prefixes and pieces end here. Uses the upper half of the hashes, KeyTable the lower.
// Thread contract: like a standard container.
class KeyFilter {
 public:
  void Reset(std::size_t keys) { m_words.assign(std::bit_ceil(keys / 4 + 1), 0); }
  void Add(std::uint64_t hash) { m_words[Word(hash)] |= Bits(hash); }
  bool MayHold(std::uint64_t hash) const {
    return (m_words[Word(hash)] & Bits(hash)) == Bits(hash);
  }

 private:
  std::size_t Word(std::uint64_t hash) const { return (hash >> 44U) & (m_words.size() - 1); }
  static std::uint64_t Bits(std::uint64_t hash) {
    return std::uint64_t{1} << (hash >> 32U & 63U) | std::uint64_t{1} << (hash >> 38U & 63U);
  }

  std::vector<std::uint64_t> m_words{0};
};

// Numbers the keys as they come: hash to number, by open addressing at most half full. Thread
// contract: like a standard container.
class KeyTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFFU;

  void Reserve(std::size_t keys) { m_cells.assign(std::bit_ceil(2 * keys + 2), Cell{0, kNone}); }

  // The number of the hash; `next` if the hash is new, which then has that number.
  std::uint32_t FindOrAdd(std::uint64_t hash, std::uint32_t next) {
    const auto tag = static_cast<std::uint32_t>(hash);
    Cell& cell = m_cells[Place(tag)];
    if (cell.number != kNone) return cell.number;
    cell = {tag, next};
    if (2 * ++m_used > m_cells.size()) Grow();
    return next;
  }
  // The number of the hash, or kNone.
  std::uint32_t Find(std::uint64_t hash) const {
    return m_cells[Place(static_cast<std::uint32_t>(hash))].number;
  }

 private:
  struct Cell {
    std::uint32_t tag;
    std::uint32_t number;
  };
  std::size_t Place(std::uint32_t tag) const {
    const std::size_t mask = m_cells.size() - 1;
    std::size_t at = tag & mask;
    while (m_cells[at].number != kNone && m_cells[at].tag != tag) at = (at + 1) & mask;
    return at;
  }
  void Grow() {
    std::vector<Cell> cells(2 * m_cells.size(), Cell{0, kNone});
    cells.swap(m_cells);
    for (const Cell& cell : cells) {
      if (cell.number != kNone) m_cells[Place(cell.tag)] = cell;
    }
  }

  std::vector<Cell> m_cells{2, Cell{0, kNone}};
  std::size_t m_used = 0;
};

}  // namespace vq

#endif  // VQ_SUPPORT_GRANTS_GRANTKEYS_H
