#include <support/grants/GrantIndex.h>

#include <algorithm>

#include <support/selection/SelectionMatching.h>

namespace vq {
namespace {

// Limits what a query costs: every part of a value with a length in use is looked up.
constexpr std::size_t kLongestPart = 8;
// A query looks up many texts that no grant has. Most of these look-ups end at an empty bucket.
constexpr float kTextsInBucket = 0.125F;
constexpr std::size_t kRefusedLines = 20;  // a list that is wrong throughout must not fill the log
constexpr std::size_t kExcerptBytes = 200;

std::size_t TextHash(std::string_view text) {
  return std::hash<std::string_view>()(text);
}

// The longest text between two wildcards.
std::string_view LongestPart(std::string_view pattern) {
  std::string_view longest;
  for (std::size_t start = 0; start < pattern.size();) {
    const std::string_view part =
        pattern.substr(start, pattern.find_first_of(kWildcards, start) - start);
    if (part.size() > longest.size()) longest = part;
    start += part.size() + 1;
  }
  return longest.substr(longest.size() - std::min(longest.size(), kLongestPart));
}

}  // namespace

bool GrantIndex::Add(std::string_view criteria, QCSAuthLevelEnum level, const TDiagFunc& diag) {
  const std::uint32_t grant = m_grants++;
  QCSSelectionDef definition;
  SelectionParseError error;
  if (!definition.Parse(criteria, error)) {
    if (++m_refused <= kRefusedLines) {
      VQ_LOG(diag, 1) << "A grant is left out, its criteria do not parse " << error.AsString()
                      << ". Criteria: " << criteria.substr(0, kExcerptBytes);
    } else if (m_refused == kRefusedLines + 1) {
      VQ_LOG(diag, 1) << "Further grants whose criteria do not parse are left out without a line";
    }
    return false;
  }
  for (const QCSSelectionDef::Term& matchings : definition.Terms()) {
    TermsFor(matchings).push_back({matchings, grant, level});
  }
  return true;
}

// What an object must have for the term to fit.
std::vector<GrantIndex::Key> GrantIndex::KeysOf(const QCSSelectionDef::Term& matchings) {
  std::vector<Key> keys;
  for (const SelectionMatching& matching : matchings) {
    const std::string_view value = matching.value;
    const bool isPattern = matching.op == SelectionOperator::Like;
    if (!isPattern && matching.op != SelectionOperator::Equal) continue;
    const std::size_t first = isPattern ? value.find_first_of(kWildcards) : value.npos;
    if (first == value.npos) {
      keys.push_back({matching.field, Begin, value});
      continue;
    }
    const std::size_t last = value.find_last_of(kWildcards);
    if (first > 0) keys.push_back({matching.field, Begin, value.substr(0, first)});
    if (last + 1 < value.size()) keys.push_back({matching.field, End, value.substr(last + 1)});
    const std::string_view part = LongestPart(value.substr(first, last - first));
    if (!part.empty()) keys.push_back({matching.field, Part, part});
  }
  return keys;
}

const GrantIndex::Terms* GrantIndex::Find(const Key& key) const {
  const auto field = m_fields.find(key.field);
  if (field == m_fields.end()) return nullptr;
  const auto& lengths = field->second.places[key.place];
  const auto texts = lengths.find(key.text.size());
  if (texts == lengths.end()) return nullptr;
  const auto terms = texts->second.find(TextHash(key.text));
  return terms == texts->second.end() ? nullptr : &terms->second;
}

// Where to file a term with these matchings.
GrantIndex::Terms& GrantIndex::TermsFor(const QCSSelectionDef::Term& matchings) {
  if (matchings.empty()) return m_always;
  const std::vector<Key> keys = KeysOf(matchings);
  if (keys.empty()) return m_fields[matchings.front().field].others;
  const Key& key = *std::ranges::min_element(keys, {}, [this](const Key& candidate) {
    const Terms* terms = Find(candidate);
    return terms == nullptr ? 0 : terms->size();
  });
  Field& field = m_fields[std::string(key.field)];
  TermsByText& texts = field.places[key.place][key.text.size()];
  texts.max_load_factor(kTextsInBucket);
  return texts[TextHash(key.text)];
}

// All terms that fit are among these.
std::vector<const GrantIndex::Terms*> GrantIndex::MayFit(const QCSObject& object) const {
  std::vector<const Terms*> found{&m_always};
  for (const auto& [name, text] : object) {
    const auto field = m_fields.find(name);
    if (field == m_fields.end()) continue;
    found.push_back(&field->second.others);
    const std::string_view value = text;
    for (std::size_t place = Begin; place < kPlaces; ++place) {
      for (const auto& [length, texts] : field->second.places[place]) {
        if (length > value.size()) break;
        const std::size_t last = value.size() - length;
        for (std::size_t at = place == End ? last : 0; at <= (place == Begin ? 0 : last); ++at) {
          const auto terms = texts.find(TextHash(value.substr(at, length)));
          if (terms != texts.end()) found.push_back(&terms->second);
        }
      }
    }
  }
  // A part that the value repeats is found each time.
  std::ranges::sort(found);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

bool GrantIndex::Fits(const Term& term, const QCSObject& object) {
  return std::ranges::all_of(term.matchings, [&](const SelectionMatching& matching) {
    const std::string* value = object.FindAttribute(matching.field);
    return value != nullptr && MatchesValue(matching.op, matching.value, *value);
  });
}

std::optional<QCSAuthLevelEnum> GrantIndex::HighestFitting(const QCSObject& object) const {
  std::optional<QCSAuthLevelEnum> highest;
  for (const Terms* terms : MayFit(object)) {
    for (const Term& term : *terms) {
      if ((!highest || term.level > *highest) && Fits(term, object)) highest = term.level;
    }
  }
  return highest;
}

bool GrantIndex::AnyFitting(const QCSObject& object,
                            const std::function<bool(std::uint32_t)>& accept) const {
  return std::ranges::any_of(MayFit(object), [&](const Terms* terms) {
    return std::ranges::any_of(
        *terms, [&](const Term& term) { return Fits(term, object) && accept(term.grant); });
  });
}

bool GrantsGiveLevel(const GrantIndex& user, const GrantIndex& groups, const QCSObject& object,
                     QCSAuthLevelEnum level) {
  std::optional<QCSAuthLevelEnum> given = user.HighestFitting(object);
  if (!given) given = groups.HighestFitting(object);
  return given.value_or(DEFAULT_ACCESS) >= level;
}

}  // namespace vq
