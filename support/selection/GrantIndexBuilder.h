// Builds a GrantIndex: reads the criteria, finds the keys that each term offers, files the term
// under the one that the fewest terms offer, and lays the buckets out one after the other.
//
// Used by GrantIndex alone.
#ifndef VQ_SUPPORT_SELECTION_GRANTINDEXBUILDER_H
#define VQ_SUPPORT_SELECTION_GRANTINDEXBUILDER_H

#include <cstdint>
#include <string_view>
#include <vector>

#include <support/selection/GrantIndex.h>
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
  // A key that a term may be filed under.
  struct Candidate {
    std::uint64_t hash;
    std::uint32_t bucket;
    std::uint32_t field;
    std::uint32_t length;
    KeyKind kind;
  };

  void CopyTexts();
  void Parse(std::uint32_t grant);
  std::uint32_t FieldNumber(const SelectionToken& field);
  std::string_view Unquoted(const SelectionToken& token);

  void CollectCandidates();
  void OfferKeys(const Matching& matching);
  void OfferPieces(std::uint32_t field, std::string_view middle);
  void Offer(KeyKind kind, std::uint32_t field, std::string_view text);

  void ChooseBuckets();
  void MarkInUse(const Candidate& key);
  void LayOutBuckets();

  GrantIndex& m_index;
  std::uint32_t m_grant = 0;
  std::string_view m_lastFieldName;  // grants tend to name one field over and over
  std::uint32_t m_lastField = 0;
  std::vector<Candidate> m_candidates;         // of all terms, one term's after the other's
  std::vector<std::uint32_t> m_candidateEnds;  // by term
  std::vector<std::uint32_t> m_offers;         // by bucket: how many terms might go there
  std::vector<std::uint32_t> m_chosen;         // by term: its bucket
};

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_GRANTINDEXBUILDER_H
