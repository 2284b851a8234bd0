// The array in which exported functions return lists of names.
//
//   ArrayWrap<std::string> names;
//   DataCenters.GetAsStringList(names);
//   for (const std::string& name : names) Show(name);
#ifndef VQ_CLIENT_COMMON_DATACENTERS_ARRAYWRAP_H
#define VQ_CLIENT_COMMON_DATACENTERS_ARRAYWRAP_H

#include <cstddef>
#include <utility>
#include <vector>

// An array that grows at its end. Indices begin at 0; references and iterators are valid until the
// next Append or Clear.
template <typename T>
class ArrayWrap {
 public:
  // The types of a standard container, for loops and algorithms.
  using value_type = T;
  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;

  // Removes every element.
  void Clear() { m_items.clear(); }

  // Appends an element. Returns its index.
  std::size_t Append(T item) {
    m_items.push_back(std::move(item));
    return m_items.size() - 1;
  }

  // The number of elements.
  std::size_t size() const { return m_items.size(); }

  // The element at `index`. Raises std::out_of_range for an index that is not below size().
  typename std::vector<T>::reference operator[](std::size_t index) { return m_items.at(index); }
  typename std::vector<T>::const_reference operator[](std::size_t index) const {
    return m_items.at(index);
  }

  // The elements in the order in which they were appended.
  iterator begin() { return m_items.begin(); }
  iterator end() { return m_items.end(); }
  const_iterator begin() const { return m_items.begin(); }
  const_iterator end() const { return m_items.end(); }

 private:
  std::vector<T> m_items;
};

#endif  // VQ_CLIENT_COMMON_DATACENTERS_ARRAYWRAP_H
