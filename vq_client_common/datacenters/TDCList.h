// A list of data centers by name, and the list of the process.
//
//   TDC berlin;
//   berlin.SetName("BERLIN");
//   DataCenters.Add(berlin);
//   std::string err;
//   if (DataCenters.IsValid("PARIS", err) == 0) Show(err);
//
//   auto position = DataCenters.GetFirstDCPosition();
//   for (; position != DataCenters.GetEndDCPosition(); ++position) {
//     Show(position->second.GetName());
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

// Data centers in the order of their names, which are compared byte by byte. The list has copies of
// the records.
class VQ_CLIENT_COMMON_API TDCList {
 public:
  // A position in the list: `first` is the name, `second` the record. It is valid until its record
  // is removed, or the list is assigned, loaded or destroyed.
  using Position = std::map<std::string, TDC>::const_iterator;

  // Stores a copy under the record's name, and replaces a record of that name. Raises
  // std::length_error with "map/set<T> too long" when the list is full.
  void Add(const TDC& dc);
  // Removes a record; does nothing for an unknown name.
  void Remove(const std::string& name);
  // Removes `oldName`, if it exists, then adds `dc` under its own name.
  void Update(const std::string& oldName, TDC& dc);

  // Copies a record to `out`. False, with `out` unchanged, for an unknown name.
  bool GetByName(const std::string& name, TDC& out) const;
  // 1 for a known name; 0, with a message for the user in `err`, otherwise.
  int IsValid(const std::string& name, std::string& err) const;
  // Whether the data center `newName` may replace `oldName`: 1 when both are known, have a known
  // type, and have equal versions (the old one's operator==); 0, with a message for the user in
  // `err`, otherwise.
  int CanReplace(const std::string& oldName, const std::string& newName, std::string& err);

  // Sets `out` to all names, each with "\n" after it.
  void GetChoiceList(std::string& out) const;
  // Set `names` to all names, or to those of the records whose version equals `version` (the
  // record's operator==). Return 1.
  int GetAsStringList(ArrayWrap<std::string>& names) const;
  int GetAsStringListByVersion(ArrayWrap<std::string>& names, const TVltVersion& version) const;
  // The first name; empty for an empty list.
  std::string GetFirstItem() const;
  // The number of records.
  std::uint32_t GetNumItems() const;

  // The position of the first record, and the position after the last one.
  Position GetFirstDCPosition() const { return m_records.begin(); }
  Position GetEndDCPosition() const { return m_records.end(); }
  // Moves `position` to the next record, unless it is at the end, and copies that record to `out`;
  // `out` is unchanged at the end. So this never copies the first record: use `position` for it.
  void GetNextDC(Position& position, TDC& out) const;

  // Removes the records that are only in a draft, but never the first record of the list.
  void RemoveDraftDataCenters();

  // There is no file format for data centers, and both always fail: they throw a const char*.
  // Save creates or empties the file and throws "Failed to save data centers file". Load empties
  // the list and throws "failed" when the file does not open, "not implemented" when it does.
  void Save(const std::string& file);
  void Load(const std::string& file);
  // Does nothing.
  void Serialize(void* archive);

 private:
  std::map<std::string, TDC> m_records;
};

// The list of the process, for client programs: the library neither fills it nor reads it. It
// exists before and after all ordinary static objects of the library.
extern VQ_CLIENT_COMMON_API TDCList DataCenters;

#endif  // VQ_CLIENT_COMMON_DATACENTERS_TDCLIST_H
