#include <vq_client_common/datacenters/TDCList.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

using testing::ElementsAre;

TDC Make(const std::string& name, const TVltVersion& version = {}, bool draft = false) {
  TDC dc;
  dc.SetName(name);
  dc.SetVersion(version);
  dc.SetOnlyInDraft(draft);
  return dc;
}

const TVltVersion kMainframe620(VLT_TYPE_MAINFRAME, "620", "");
const TVltVersion kMainframe630(VLT_TYPE_MAINFRAME, "630", "2");
const TVltVersion kDistributed700(VLT_TYPE_DISTRIBUTED, "700", "10");
const TVltVersion kDistributed700Fp20(VLT_TYPE_DISTRIBUTED, "700", "20");

std::string Names(const TDCList& list) {
  std::string names;
  list.GetChoiceList(names);
  return names;
}

// Uses the process's list while it is made, before the ordinary static objects, and while it goes.
struct EarlyUser {
  EarlyUser() { DataCenters.Add(Make("EARLY")); }
  ~EarlyUser() {
    if (Names(DataCenters) != "EARLY\n") std::abort();
  }
};
[[gnu::init_priority(300)]] const EarlyUser earlyUser;

TEST(TDCListTest, AddRemoveUpdateAndFind) {
  TDCList list;
  EXPECT_EQ(list.GetFirstItem() + Names(list), "");
  for (const char* const name : {"b", "B", "AB", "A"}) list.Add(Make(name));
  EXPECT_EQ(Names(list), "A\nAB\nB\nb\n");
  EXPECT_EQ(list.GetFirstItem(), "A");

  list.Add(Make("B", kMainframe620));
  EXPECT_EQ(list.GetNumItems(), 4U);
  TDC out = Make("untouched");
  EXPECT_FALSE(list.GetByName("C", out));
  EXPECT_EQ(out.GetName(), "untouched");
  EXPECT_TRUE(list.GetByName("B", out));
  EXPECT_EQ(out.GetVersion().Ver(), "620");

  list.Remove("unknown");
  list.Remove("AB");
  TDC added = Make("D");
  list.Update("A", added);
  list.Update("unknown", added);
  list.Update("B", const_cast<TDC&>(list.GetFirstDCPosition()->second));  // the list's own record
  const TDCList copy = list;
  list.Remove("D");
  EXPECT_EQ(Names(copy), "B\nD\nb\n");
}

TEST(TDCListTest, NamesAsArrays) {
  TDCList list;
  list.Add(Make("A", kDistributed700));
  list.Add(Make("B", kMainframe620));
  list.Add(Make("C", kDistributed700Fp20));
  ArrayWrap<std::string> names;
  names.Append("before");
  EXPECT_EQ(list.GetAsStringList(names), 1);
  EXPECT_THAT(names, ElementsAre("A", "B", "C"));
  TVltVersion flagged = kDistributed700;
  flagged.SetControlResourceForSMARTTablesOf700FP2MPM(true);  // The right operand's does not count.
  EXPECT_EQ(list.GetAsStringListByVersion(names, flagged), 1);
  EXPECT_THAT(names, ElementsAre("A", "C"));
}

TEST(TDCListTest, IsValidAndCanReplaceTell) {
  TDCList list;
  list.Add(Make("A", kMainframe620));
  list.Add(Make("B", kMainframe630));
  list.Add(Make("C", kDistributed700));
  list.Add(Make("D", kDistributed700Fp20));
  list.Add(Make("N"));
  std::string err = "before";
  EXPECT_EQ(list.IsValid("A", err), 1);
  EXPECT_EQ(err, "before");
  EXPECT_EQ(list.IsValid("BERLIN", err), 0);
  EXPECT_EQ(err, "Data-Center does not exist %s.BERLIN");

  const std::string modify = "You cannot modify VELTRA-M type from ";
  const std::string cases[][3] = {
      {"A", "A", "before"},
      {"C", "D", "before"},
      {"A", "B", modify + "z/OS [version 620] to z/OS [version 630.2]."},
      {"D", "A", modify + "Distributed [version 700.20] to z/OS [version 620]."},
      {"N", "x", "VELTRA-M 'N' version is unknown!"},
      {"A", "N", "VELTRA-M 'N' version is unknown!"},
      {"x", "A", "VELTRA-M 'x' version is unknown!"},
      {"A", "y", "VELTRA-M 'y' version is unknown!"}};
  for (const auto& [oldName, newName, expected] : cases) {
    err = "before";
    EXPECT_EQ(list.CanReplace(oldName, newName, err), expected == "before" ? 1 : 0);
    EXPECT_EQ(err, expected) << oldName << ' ' << newName;
  }
}

TEST(TDCListTest, TheWalkSkipsTheFirstRecord) {
  TDCList list;
  TDC out;
  TDCList::Position position = list.GetFirstDCPosition();
  list.GetNextDC(position, out);  // The end stays the end.
  EXPECT_EQ(position, list.GetEndDCPosition());

  for (const char* const name : {"A", "B", "C"}) list.Add(Make(name));
  std::vector<std::string> seen;
  for (position = list.GetFirstDCPosition(); position != list.GetEndDCPosition();) {
    list.GetNextDC(position, out);
    seen.push_back(out.GetName());
  }
  EXPECT_THAT(seen, ElementsAre("B", "C", "C"));
}

TEST(TDCListTest, DraftsGoSaveTheFirst) {
  const std::string cases[][2] = {// a capital D is a draft
                                  {"", ""},
                                  {"D", "A\n"},
                                  {"-DD", "A\n"},
                                  {"DDDD", "A\n"},
                                  {"D-D-", "A\nB\nD\n"}};
  for (const auto& [drafts, left] : cases) {
    TDCList list;
    for (char name = 'A'; const char mark : drafts) list.Add(Make({name++}, {}, mark == 'D'));
    vq::test::LogCapture log(6);
    list.RemoveDraftDataCenters();
    EXPECT_EQ(Names(list), left) << drafts;
    EXPECT_EQ(log.TakeText(), "6 TDC::UpdateFull: Enter\n");
  }
}

// What the call raises, as the plain character string that it must be, and what is left.
std::string Raised(void (TDCList::*call)(const std::string&), const std::string& file) {
  TDCList list;
  list.Add(Make("A"));
  try {
    (list.*call)(file);
  } catch (const char* text) {
    return text + (", left: " + Names(list));
  }
  return "nothing raised";
}

TEST(TDCListTest, SaveAndLoadAlwaysFail) {
  const vq::test::TemporaryDirectory directory;
  const std::string file = directory.Write("file", "content");
  const std::string absent = directory.Path() + "absent/file";
  vq::test::LogCapture log(6);
  EXPECT_EQ(Raised(&TDCList::Load, file), "not implemented, left: ");
  EXPECT_EQ(Raised(&TDCList::Load, absent), "failed, left: ");
  EXPECT_EQ(directory.Read("file"), "content");
  EXPECT_EQ(Raised(&TDCList::Save, absent), "Failed to save data centers file, left: A\n");
  EXPECT_EQ(Raised(&TDCList::Save, file), "Failed to save data centers file, left: A\n");
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
  EXPECT_EQ(log.TakeText(),
            "6 TDCList::Load: Enter\n6 TDCList::Load: Enter\n"
            "6 TDCList::Save: Enter\n6 TDCList::Save: Enter\n");
}

}  // namespace
