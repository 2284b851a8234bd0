// The data centers that a client knows, by name.
//
//   TDC berlin;
//   DataCenters.Add(berlin);
//   std::string err;
//   if (DataCenters.IsValid("PARIS", err) == 0) Show(err);
//
//   // A walk: the first record through its position, the others through GetNextDC.
//   TDCList::Position position = DataCenters.GetFirstDCPosition();
//   const TDCList::Position end = DataCenters.GetEndDCPosition();
//   if (position != end) Show(position->second.GetName());
//   TDC dc;
//   for (;;) {
//     DataCenters.GetNextDC(position, dc);
//     if (position == end) break;
//     Show(dc.GetName());
//   }
#ifndef VQ_CLIENT_COMMON_DATACENTERS_TDCLIST_H
#define VQ_CLIENT_COMMON_DATACENTERS_TDCLIST_H

#include <cstdint>
#include <map>
#include <string>

#include <support/Export.h>
#include <vq_client_common/datacenters/ArrayWrap.h>
#include <vq_client_common/datacenters/TDC.h>
#include <vq_client_common/datacenters/TVltVersion.h>

// Holds copies, ordered by name as plain bytes, the shorter first when one name begins the other.
// A copy of the list copies all records. Adding, finding and removing take time that grows with the
// logarithm of the number of records.
//
// Thread contract: readers side by side, or one writer alone; there is no lock inside.
class VQ_CLIENT_COMMON_API TDCList {
 public:
  // A place in the list: first is the name, second the record. It lasts until its record is removed
  // or the list is assigned, loaded or destroyed; adding and updating other records leaves it.
  using Position = std::map<std::string, TDC>::const_iterator;

  // Stores a copy under the record's name, in place of a record of that name. Raises
  // std::length_error with "map/set<T> too long" when a new record has no room.
  void Add(const TDC& dc);
  // An unknown name is no fault.
  void Remove(const std::string& name);
  // Removes `oldName`, known or not, then adds `dc` under its own name.
  void Update(const std::string& oldName, TDC& dc);

  // True and a copy in `out`; or false, and `out` is not touched.
  bool GetByName(const std::string& name, TDC& out) const;
  // 1 when the name is known; 0 and a message in `err` otherwise.
  int IsValid(const std::string& name, std::string& err) const;
  // Whether the data center `newName` may take the place of `oldName`: 1 when both are known, have
  // a known type, and their versions are equal (the old one's operator==); 0 and a message in `err`
  // otherwise.
  int CanReplace(const std::string& oldName, const std::string& newName, std::string& err);

  // `out` becomes every name with "\n" behind it, in order.
  void GetChoiceList(std::string& out) const;
  // Replace what the array holds by the names in order, all of them or those whose version equals
  // `version` (the record's operator==). Return 1.
  int GetAsStringList(ArrayWrap<std::string>& names) const;
  int GetAsStringListByVersion(ArrayWrap<std::string>& names, const TVltVersion& version) const;
  // The first name in order; empty for an empty list.
  std::string GetFirstItem() const;
  // How many records there are.
  std::uint32_t GetNumItems() const;

  // The first record, or the end for an empty list; and the end.
  Position GetFirstDCPosition() const { return m_records.begin(); }
  Position GetEndDCPosition() const { return m_records.end(); }
  // Moves `position` on by one, unless it is the end, and only then copies the record that stands
  // there into `out`; at the end `out` stays. So this never gives the first record.
  void GetNextDC(Position& position, TDC& out) const;

  // Removes every record that is only in a draft, save the first record of the list, which stays
  // whatever it is.
  void RemoveDraftDataCenters();

  // There is no file format for data centers. Both raise a plain character string (catch it as
  // const char*), always:
  // Save creates or empties the file and raises "Failed to save data centers file";
  // Load empties the list and raises "failed" when the file does not open for reading, "not
  // implemented" when it does.
  void Save(const std::string& file);
  void Load(const std::string& file);
  // Does nothing.
  void Serialize(void* archive);

 private:
  std::map<std::string, TDC> m_records;
};

// The process's list: empty when the library has loaded, and neither read nor filled by it. It is
// made before, and goes after, every ordinary static object of the library.
extern VQ_CLIENT_COMMON_API TDCList DataCenters;

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TDCLIST_H
