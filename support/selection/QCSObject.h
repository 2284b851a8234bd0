// An object as a selection sees it: named text attributes.
//
// A calendar, a table, a resource or a job is described to a selection (QCSSelectionDef.h) by the
// attributes that its criteria name:
//
//   QCSObject table;
//   table.SetAttribute("TABLE", "PAYROLL_DAILY");
//   table.SetAttribute("DATACENTER", "PROD");
//   const UserAuthorizations* user = UserAuthorizations::Get();
//   if (user->IsSchedTblAccessAllowed(table, UPDATE_ACCESS)) Show("PAYROLL_DAILY");
//
// Names are case sensitive. An attribute that was never set is missing, which differs from an
// attribute whose value is the empty string.
#ifndef VQ_SUPPORT_SELECTION_QCSOBJECT_H
#define VQ_SUPPORT_SELECTION_QCSOBJECT_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <support/Export.h>

class VQ_CLIENT_COMMON_API QCSObject {
 public:
  using Attribute = std::pair<std::string, std::string>;  // name, value
  // For a walk over the attributes.
  using const_iterator = std::vector<Attribute>::const_iterator;

  // Sets the attribute; a value that it had before is replaced.
  void SetAttribute(std::string name, std::string value);

  // Makes the attribute missing. Returns whether it was there.
  bool RemoveAttribute(std::string_view name);

  // The attribute's value, or null when it is missing. The object owns the string; any change of
  // the object invalidates it.
  const std::string* FindAttribute(std::string_view name) const;

  // All attributes in the order of their names.
  const_iterator begin() const { return m_attributes.begin(); }
  const_iterator end() const { return m_attributes.end(); }
  // How many attributes there are.
  std::size_t size() const { return m_attributes.size(); }

 private:
  std::vector<Attribute> m_attributes;  // sorted by name, names unique
};

#endif  // VQ_SUPPORT_SELECTION_QCSOBJECT_H
