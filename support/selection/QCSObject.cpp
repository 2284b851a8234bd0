#include <support/selection/QCSObject.h>

#include <algorithm>

namespace {

template <class Attributes>
auto Place(Attributes& attributes, std::string_view name) {
  return std::ranges::lower_bound(attributes, name, {}, &QCSObject::Attribute::first);
}

}  // namespace

void QCSObject::SetAttribute(std::string name, std::string value) {
  const auto place = Place(m_attributes, name);
  if (place != m_attributes.end() && place->first == name) {
    place->second = std::move(value);
  } else {
    m_attributes.emplace(place, std::move(name), std::move(value));
  }
}

bool QCSObject::RemoveAttribute(std::string_view name) {
  const auto place = Place(m_attributes, name);
  if (place == m_attributes.end() || place->first != name) return false;
  m_attributes.erase(place);
  return true;
}

const std::string* QCSObject::FindAttribute(std::string_view name) const {
  const auto place = Place(m_attributes, name);
  return place != m_attributes.end() && place->first == name ? &place->second : nullptr;
}
