// Builds a GrantIndex: reads the criteria, finds the keys that each term offers, files the term
// under the one that the fewest terms offer, and lays the buckets out one after the other.
//
// Used by GrantIndex alone.
#ifndef VQ_SUPPORT_GRANTS_GRANTINDEXBUILDER_H
#define VQ_SUPPORT_GRANTS_GRANTINDEXBUILDER_H

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include <support/grants/GrantIndex.h>
#include <support/selection/SelectionParser.h>

namespace vq {

// Thread contract: lives on the stack of GrantIndex's constructor.
class GrantIndex::Builder {
 public:
  static constexpr std::uint32_t kAlways = 0;  // the bucket of the terms without matchings

  explicit Builder(GrantIndex& index) : m_index(index) {}
  void Build();

  // The parser's sink.
  void BeginTerm();
  void OnMatching(const SelectionToken& field, SelectionOperator op, const SelectionToken& value);

 private:
  // Something that an object must have for the term to fit.
  struct Key {
    std::uint64_t hash;
    std::uint32_t field;
    std::uint32_t length;
    std::uint32_t bucket;
    KeyKind kind;
  };
  // A term that offers several keys; they stand in m_keys up to `keysEnd`.
  struct OpenTerm {
    std::uint32_t term;
    std::size_t keysEnd;
  };

  // What a criteria text says before its only value: `NAME LIKE '`. Another text that begins so
  // names the same field and operator.
  struct Head {
    std::string_view text;
    std::uint32_t field;
    SelectionOperator op;
  };

  void CopyTexts();
  void Parse(std::uint32_t grant);
  bool ParseByHead(std::string_view criteria);
  void LearnHead(std::string_view criteria);
  std::uint32_t FieldNumber(const SelectionToken& field);
  std::string_view Unquoted(const SelectionToken& token);

  void FileTerms();
  void OfferKeys(const Matching& matching);
  void OfferPieces(std::uint32_t field, std::string_view middle);
  void Offer(KeyKind kind, std::uint32_t field, std::string_view text);
  void FileUnder(const Key& key, std::uint32_t term);
  void LayOutBuckets();

  GrantIndex& m_index;
  std::uint32_t m_grant = 0;
  std::string_view m_lastFieldName;  // grants tend to name one field over and over
  std::uint32_t m_lastField = 0;
  std::array<Head, 4> m_heads{};  // texts are never empty where a head is known
  std::size_t m_nextHead = 0;
  std::vector<Key> m_keys;              // of the open terms, and of the one at hand
  std::vector<OpenTerm> m_openTerms;    // decided when all offers are known
  std::vector<std::uint32_t> m_offers;  // by bucket: how many terms might go there
};

}  // namespace vq

#endif  // VQ_SUPPORT_GRANTS_GRANTINDEXBUILDER_H
