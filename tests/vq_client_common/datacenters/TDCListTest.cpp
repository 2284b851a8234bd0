#include <vq_client_common/datacenters/TDCList.h>

#include <cstdlib>
#include <filesystem>

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

// Two of the mainframe, two distributed ones that differ in the fix pack, and one of no type.
TDCList Mixed() {
  TDCList list;
  list.Add(Make("A", {VLT_TYPE_MAINFRAME, "620", ""}));
  list.Add(Make("B", {VLT_TYPE_MAINFRAME, "630", "2"}));
  list.Add(Make("C", {VLT_TYPE_DISTRIBUTED, "700", "10"}));
  list.Add(Make("D", {VLT_TYPE_DISTRIBUTED, "700", "20"}));
  list.Add(Make("N"));
  return list;
}

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
  list.Add(Make("B", {VLT_TYPE_MAINFRAME, "620", ""}));
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
  ArrayWrap<std::string> names;
  names.Append("before");
  EXPECT_EQ(Mixed().GetAsStringList(names), 1);
  EXPECT_THAT(names, ElementsAre("A", "B", "C", "D", "N"));
  TVltVersion flagged(VLT_TYPE_DISTRIBUTED, "700", "10");
  flagged.SetControlResourceForSMARTTablesOf700FP2MPM(true);  // The right operand's does not count.
  EXPECT_EQ(Mixed().GetAsStringListByVersion(names, flagged), 1);
  EXPECT_THAT(names, ElementsAre("C", "D"));
}

TEST(TDCListTest, IsValidAndCanReplaceTell) {
  TDCList list = Mixed();
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
  const TDCList list = Mixed();
  TDC out;
  std::string seen;
  TDCList::Position position = list.GetFirstDCPosition();
  while (position != list.GetEndDCPosition()) {
    list.GetNextDC(position, out);
    seen += out.GetName();
  }
  EXPECT_EQ(seen, "BCDNN");
  list.GetNextDC(position, out);  // The end stays the end.
  EXPECT_EQ(position, list.GetEndDCPosition());
}

TEST(TDCListTest, DraftsGoSaveTheFirst) {
  // A capital D is a draft.
  const std::string cases[][2] = {
      {"", ""}, {"D", "A\n"}, {"-DD", "A\n"}, {"DDDD", "A\n"}, {"D-D-", "A\nB\nD\n"}};
  for (const auto& [drafts, left] : cases) {
    TDCList list;
    for (char name = 'A'; const char mark : drafts) list.Add(Make({name++}, {}, mark == 'D'));
    vq::test::LogCapture log(6);
    list.RemoveDraftDataCenters();
    EXPECT_EQ(Names(list), left) << drafts;
    EXPECT_EQ(log.TakeText(), "6 TDC::UpdateFull: Enter\n");
  }
}

TEST(TDCListTest, SaveAndLoadAlwaysFail) {
  // What the call raises, as the plain character string that it must be, and what is left.
  const auto raised = [](void (TDCList::*call)(const std::string&), const std::string& file) {
    TDCList list = Mixed();
    try {
      (list.*call)(file);
    } catch (const char* text) {
      return text + (" " + std::to_string(list.GetNumItems()));
    }
    return std::string();
  };
  const vq::test::TemporaryDirectory directory;
  const std::string file = directory.Write("file", "content");
  const std::string absent = directory.Path() + "absent/file";
  vq::test::LogCapture log(6);
  EXPECT_EQ(raised(&TDCList::Load, file), "not implemented 0");
  EXPECT_EQ(raised(&TDCList::Load, absent), "failed 0");
  EXPECT_EQ(directory.Read("file"), "content");
  EXPECT_EQ(raised(&TDCList::Save, absent), "Failed to save data centers file 5");
  EXPECT_EQ(raised(&TDCList::Save, file), "Failed to save data centers file 5");
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
  const std::string load = "6 TDCList::Load: Enter\n", save = "6 TDCList::Save: Enter\n";
  EXPECT_EQ(log.TakeText(), load + load + save + save);
}

}  // namespace
