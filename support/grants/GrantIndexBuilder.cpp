#include <support/grants/GrantIndexBuilder.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
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
  FileTerms();
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
  const std::string_view criteria = m_index.m_grants[grant].criteria;
  const std::size_t terms = m_index.m_terms.size();
  const std::size_t matchings = m_index.m_matchings.size();
  m_grant = grant;
  if (ParseByHead(criteria)) return;
  SelectionParseError error;
  if (ParseSelection(criteria, *this, error)) {
    const bool isOneMatching =
        m_index.m_matchings.size() == matchings + 1 && m_index.m_terms.size() == terms + 1;
    if (isOneMatching) LearnHead(criteria);
    return;
  }
  m_index.m_terms.resize(terms);
  m_index.m_matchings.resize(matchings);
  m_index.m_refused.push_back({grant, std::move(error)});
}

// Most grants of a user say the same of different values. The steps of the parser up to the value's
// opening quote depend on nothing behind it, so they need not be taken again.
bool GrantIndex::Builder::ParseByHead(std::string_view criteria) {
  for (const Head& head : m_heads) {
    if (head.text.empty() || !criteria.starts_with(head.text)) continue;
    const std::string_view rest = criteria.substr(head.text.size());
    const std::size_t quote = rest.find('\'');
    if (quote == std::string_view::npos || quote + 1 != rest.size()) return false;
    BeginTerm();
    m_index.m_matchings.push_back({rest.substr(0, quote), head.field, head.op});
    return true;
  }
  return false;
}

// Called when the criteria are one term of one matching.
void GrantIndex::Builder::LearnHead(std::string_view criteria) {
  const Matching& matching = m_index.m_matchings.back();
  const std::string_view value = matching.value;
  const std::size_t headLength = criteria.size() - std::min(criteria.size(), value.size() + 1);
  if (value.data() != criteria.data() + headLength) return;  // brackets, or doubled quotes
  m_heads[m_nextHead] = {criteria.substr(0, headLength), matching.field, matching.op};
  m_nextHead = (m_nextHead + 1) % m_heads.size();
}

void GrantIndex::Builder::BeginTerm() {
  m_index.m_terms.push_back({static_cast<std::uint32_t>(m_index.m_matchings.size()), m_grant,
                             kAlways, m_index.m_grants[m_grant].level});
}

void GrantIndex::Builder::OnMatching(const SelectionToken& field, SelectionOperator op,
                                     const SelectionToken& value) {
  m_index.m_matchings.push_back({Unquoted(value), FieldNumber(field), op});
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

void GrantIndex::Builder::FileTerms() {
  m_index.m_table.Reserve(m_index.m_matchings.size());
  m_index.m_filter.Reset(m_index.m_terms.size());
  m_offers.reserve(m_index.m_matchings.size() + 1);
  m_offers.push_back(0);  // kAlways
  const auto terms = static_cast<std::uint32_t>(m_index.m_terms.size());
  m_index.m_terms.push_back(
      {static_cast<std::uint32_t>(m_index.m_matchings.size()), 0, kAlways, 0});

  for (std::uint32_t term = 0; term < terms; ++term) {
    const std::uint32_t first = m_index.m_terms[term].firstMatching;
    const std::uint32_t end = m_index.m_terms[term + 1].firstMatching;
    if (first == end) continue;  // stays in kAlways
    const std::size_t keys = m_keys.size();
    for (std::uint32_t i = first; i < end; ++i) OfferKeys(m_index.m_matchings[i]);
    if (m_keys.size() == keys) Offer(KeyKind::Presence, m_index.m_matchings[first].field, {});
    if (m_keys.size() == keys + 1) {
      FileUnder(m_keys.back(), term);
      m_keys.pop_back();
    } else {
      m_openTerms.push_back({term, m_keys.size()});
    }
  }

  auto first = m_keys.begin();
  for (const OpenTerm& open : m_openTerms) {
    const auto end = m_keys.begin() + static_cast<std::ptrdiff_t>(open.keysEnd);
    FileUnder(*std::min_element(first, end,
                                [this](const Key& a, const Key& b) {
                                  return m_offers[a.bucket] < m_offers[b.bucket];
                                }),
              open.term);
    first = end;
  }
}

void GrantIndex::Builder::OfferKeys(const Matching& matching) {
  const std::string_view value = matching.value;
  const std::uint32_t field = matching.field;
  const bool isPattern = matching.op == SelectionOperator::Like;
  if (!isPattern && matching.op != SelectionOperator::Equal) return;

  std::size_t headEnd = isPattern ? 0 : value.size();
  while (headEnd < value.size() && !IsWildcard(value[headEnd])) ++headEnd;
  if (headEnd == value.size()) {
    Offer(KeyKind::Exact, field, value);
    return;
  }
  std::size_t tailStart = value.size();
  while (!IsWildcard(value[tailStart - 1])) --tailStart;
  if (headEnd > 0) Offer(KeyKind::Prefix, field, value.substr(0, headEnd));
  if (tailStart < value.size()) Offer(KeyKind::Suffix, field, value.substr(tailStart));
  OfferPieces(field, value.substr(headEnd, tailStart - headEnd));
}

void GrantIndex::Builder::OfferPieces(std::uint32_t field, std::string_view middle) {
  std::string_view longest;
  for (auto at = middle.begin(); at != middle.end();) {
    const auto start = std::find_if_not(at, middle.end(), IsWildcard);
    at = std::find_if(start, middle.end(), IsWildcard);
    const std::string_view run(start, at);
    if (run.size() > longest.size()) longest = run;
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
  const std::uint64_t hash = KeyHash::Of(field, kind, text);
  const auto next = static_cast<std::uint32_t>(m_offers.size());
  const std::uint32_t bucket = m_index.m_table.FindOrAdd(hash, next);
  if (bucket == next) m_offers.push_back(0);
  ++m_offers[bucket];
  m_keys.push_back({hash, field, static_cast<std::uint32_t>(text.size()), bucket, kind});
}

void GrantIndex::Builder::FileUnder(const Key& key, std::uint32_t term) {
  m_index.m_terms[term].bucket = key.bucket;
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
  const auto terms = std::span(m_index.m_terms).first(m_index.m_terms.size() - 1);
  // Two counting sorts: the terms by level, highest first, and those by bucket.
  std::array<std::uint32_t, 257> levelStarts{};
  for (const Term& term : terms) ++levelStarts[256U - term.level];
  for (std::size_t i = 1; i < levelStarts.size(); ++i) levelStarts[i] += levelStarts[i - 1];
  std::vector<std::uint32_t> byLevel(terms.size());
  for (std::uint32_t term = 0; term < terms.size(); ++term) {
    byLevel[levelStarts[255U - terms[term].level]++] = term;
  }

  // Element b + 1 first counts bucket b - 1, then tells where bucket b's next entry goes, and in
  // the end where bucket b ends, which is where the next one starts.
  std::vector<std::uint32_t>& starts = m_index.m_bucketStarts;
  starts.assign(m_offers.size() + 2, 0);
  for (const Term& term : terms) ++starts[term.bucket + 2];
  for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
  m_index.m_entries.resize(terms.size());
  for (const std::uint32_t term : byLevel) {
    m_index.m_entries[starts[terms[term].bucket + 1]++] = {term, terms[term].level};
  }
  starts.pop_back();
}

}  // namespace vq
