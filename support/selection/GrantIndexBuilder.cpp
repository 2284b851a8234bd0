#include <support/selection/GrantIndexBuilder.h>

#include <algorithm>
#include <array>
#include <utility>

#include <support/selection/Wildcard.h>

namespace vq {

// Terms, matchings and buckets are numbered by 32 bits: the shortest term takes four bytes of text,
// so more than 2^32 of them would need 16 GB of criteria, beyond what a message can carry.

void GrantIndex::Builder::Build() {
  const std::size_t grants = m_index.m_grants.size();
  CopyTexts();
  m_index.m_terms.reserve(grants + grants / 8);
  m_index.m_matchings.reserve(grants + grants / 4);
  for (std::uint32_t grant = 0; grant < grants; ++grant) Parse(grant);
  CollectCandidates();
  ChooseBuckets();
  LayOutBuckets();
}

void GrantIndex::Builder::CopyTexts() {
  std::size_t length = 0;
  for (const Grant& grant : m_index.m_grants) length += grant.criteria.size();
  std::string& text = m_index.m_text;
  text.reserve(length);  // the views rely on the text staying where it is
  for (Grant& grant : m_index.m_grants) {
    const char* start = text.data() + text.size();
    text += grant.criteria;
    grant.criteria = {start, grant.criteria.size()};
  }
}

void GrantIndex::Builder::Parse(std::uint32_t grant) {
  const std::size_t terms = m_index.m_terms.size();
  const std::size_t matchings = m_index.m_matchings.size();
  m_grant = grant;
  SelectionParseError error;
  if (ParseSelection(m_index.m_grants[grant].criteria, *this, error)) return;
  m_index.m_terms.resize(terms);
  m_index.m_matchings.resize(matchings);
  m_index.m_refused.push_back({grant, std::move(error)});
}

void GrantIndex::Builder::BeginTerm() {
  m_index.m_terms.push_back({static_cast<std::uint32_t>(m_index.m_matchings.size()), 0, m_grant,
                             m_index.m_grants[m_grant].level});
}

void GrantIndex::Builder::OnMatching(const SelectionToken& field, SelectionOperator op,
                                     const SelectionToken& value) {
  m_index.m_matchings.push_back({Unquoted(value), FieldNumber(field), op});
  ++m_index.m_terms.back().matchings;
}

std::string_view GrantIndex::Builder::Unquoted(const SelectionToken& token) {
  return token.doubled ? std::string_view(m_index.m_unquoted.emplace_back(token.Text()))
                       : token.raw;
}

std::uint32_t GrantIndex::Builder::FieldNumber(const SelectionToken& field) {
  if (field.raw == m_lastFieldName && !field.doubled && m_lastFieldName.data() != nullptr) {
    return m_lastField;
  }
  const std::string_view name = Unquoted(field);
  const auto next = static_cast<std::uint32_t>(m_index.m_fields.size());
  const auto [place, isNew] = m_index.m_fieldNumbers.try_emplace(name, next);
  if (isNew) m_index.m_fields.emplace_back();
  m_lastFieldName = name;
  m_lastField = place->second;
  return m_lastField;
}

void GrantIndex::Builder::CollectCandidates() {
  const std::size_t expected = m_index.m_matchings.size() + m_index.m_matchings.size() / 8;
  m_candidates.reserve(expected);
  m_candidateEnds.reserve(m_index.m_terms.size());
  for (const Term& term : m_index.m_terms) {
    const std::size_t first = m_candidates.size();
    for (std::uint32_t i = 0; i < term.matchings; ++i) {
      OfferKeys(m_index.m_matchings[term.firstMatching + i]);
    }
    if (m_candidates.size() == first && term.matchings > 0) {
      const std::uint32_t field = m_index.m_matchings[term.firstMatching].field;
      Offer(KeyKind::Presence, field, {});
    }
    m_candidateEnds.push_back(static_cast<std::uint32_t>(m_candidates.size()));
  }
}

void GrantIndex::Builder::OfferKeys(const Matching& matching) {
  const std::string_view value = matching.value;
  const std::uint32_t field = matching.field;
  const std::size_t firstWildcard = matching.op == SelectionOperator::Like
                                        ? value.find_first_of(kWildcards)
                                        : std::string_view::npos;
  if (firstWildcard == std::string_view::npos) {
    if (matching.op == SelectionOperator::Equal || matching.op == SelectionOperator::Like) {
      Offer(KeyKind::Exact, field, value);
    }
    return;
  }
  const std::size_t lastWildcard = value.find_last_of(kWildcards);
  if (const auto head = value.substr(0, firstWildcard); !head.empty()) {
    Offer(KeyKind::Prefix, field, head);
  }
  if (const auto tail = value.substr(lastWildcard + 1); !tail.empty()) {
    Offer(KeyKind::Suffix, field, tail);
  }
  OfferPieces(field, value.substr(firstWildcard, lastWildcard - firstWildcard));
}

void GrantIndex::Builder::OfferPieces(std::uint32_t field, std::string_view middle) {
  std::string_view longest;
  while (!middle.empty()) {
    const std::size_t start = std::min(middle.find_first_not_of(kWildcards), middle.size());
    middle.remove_prefix(start);
    const std::string_view run = middle.substr(0, middle.find_first_of(kWildcards));
    if (run.size() > longest.size()) longest = run;
    middle.remove_prefix(run.size());
  }
  if (longest.empty()) return;
  const std::size_t length = *std::find_if(kPieceLengths.rbegin(), kPieceLengths.rend(),
                                           [&](std::size_t n) { return n <= longest.size(); });
  Offer(KeyKind::Piece, field, longest.substr(0, length));
  if (length < longest.size()) {
    Offer(KeyKind::Piece, field, longest.substr(longest.size() - length));
  }
}

void GrantIndex::Builder::Offer(KeyKind kind, std::uint32_t field, std::string_view text) {
  m_candidates.push_back({KeyHash::Of(field, kind, text), KeyTable::kNone, field,
                          static_cast<std::uint32_t>(text.size()), kind});
}

void GrantIndex::Builder::ChooseBuckets() {
  m_index.m_table.Reset(m_candidates.size());
  m_index.m_filter.Reset(m_index.m_terms.size());
  m_offers.reserve(m_candidates.size() + 1);
  m_offers.push_back(0);  // kAlways
  for (Candidate& candidate : m_candidates) {
    const auto next = static_cast<std::uint32_t>(m_offers.size());
    candidate.bucket = m_index.m_table.FindOrAdd(candidate.hash, next);
    if (candidate.bucket == next) m_offers.push_back(0);
    ++m_offers[candidate.bucket];
  }

  m_chosen.reserve(m_index.m_terms.size());
  std::uint32_t first = 0;
  for (const std::uint32_t end : m_candidateEnds) {
    if (first == end) {
      m_chosen.push_back(kAlways);
      continue;
    }
    const auto rarest = std::min_element(m_candidates.begin() + first, m_candidates.begin() + end,
                                         [this](const Candidate& a, const Candidate& b) {
                                           return m_offers[a.bucket] < m_offers[b.bucket];
                                         });
    m_chosen.push_back(rarest->bucket);
    MarkInUse(*rarest);
    first = end;
  }
}

void GrantIndex::Builder::MarkInUse(const Candidate& key) {
  FieldKeys& keys = m_index.m_fields[key.field];
  // Distinct lengths are few: a thousand of them need half a megabyte of text, so inserting in
  // order stays linear in the text.
  const auto mark = [&key](std::vector<std::uint32_t>& lengths) {
    const auto place = std::lower_bound(lengths.begin(), lengths.end(), key.length);
    if (place == lengths.end() || *place != key.length) lengths.insert(place, key.length);
  };
  switch (key.kind) {
    case KeyKind::Exact:
      keys.exact = true;
      break;
    case KeyKind::Prefix:
      mark(keys.prefixes);
      break;
    case KeyKind::Suffix:
      mark(keys.suffixes);
      break;
    case KeyKind::Piece: {
      const auto place = std::find(kPieceLengths.begin(), kPieceLengths.end(), key.length);
      keys.pieces |= static_cast<std::uint8_t>(1U << (place - kPieceLengths.begin()));
      break;
    }
    case KeyKind::Presence:
      keys.presence = key.bucket;
      return;  // reached by the field, not by the table
  }
  m_index.m_filter.Add(key.hash);
}

void GrantIndex::Builder::LayOutBuckets() {
  const std::vector<Term>& terms = m_index.m_terms;
  // Two counting sorts: the terms by level, highest first, and those by bucket.
  std::array<std::uint32_t, 257> levelStarts{};
  for (const Term& term : terms) ++levelStarts[256U - term.level];
  for (std::size_t i = 1; i < levelStarts.size(); ++i) levelStarts[i] += levelStarts[i - 1];
  std::vector<std::uint32_t> byLevel(terms.size());
  for (std::uint32_t term = 0; term < terms.size(); ++term) {
    byLevel[levelStarts[255U - terms[term].level]++] = term;
  }

  // Element b + 1 first counts bucket b, then tells where its next entry goes, and in the end where
  // it ends, which is where the next bucket starts.
  std::vector<std::uint32_t>& starts = m_index.m_bucketStarts;
  starts.assign(m_offers.size() + 2, 0);
  for (const std::uint32_t bucket : m_chosen) ++starts[bucket + 2];
  for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
  m_index.m_entries.resize(terms.size());
  for (const std::uint32_t term : byLevel) {
    m_index.m_entries[starts[m_chosen[term] + 1]++] = {term, terms[term].level};
  }
  starts.pop_back();
}

}  // namespace vq
