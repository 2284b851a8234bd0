// Lists of data centers, and the containers of this folder.
#include <vq_client_common/datacenters/TDCList.h>
#include <vq_client_common/datacenters/TString2Enum.h>

#include <climits>

#include <tests/fixture/UnitTest.h>

namespace {

using namespace std::string_literals;
using std::string;
using testing::ElementsAre;

TDC Make(const string& name, const TVltVersion& version = {}, bool draft = false) {
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

string Names(const TDCList& list) {
  string names;
  list.GetChoiceList(names);
  return names;
}

// Uses the process's list in a constructor and a destructor of a static object.
struct EarlyUser {
  EarlyUser() { DataCenters.Add(Make("EARLY")); }
  ~EarlyUser() {
    if (Names(DataCenters) != "EARLY\n") std::abort();
  }
};
[[gnu::init_priority(300)]] const EarlyUser earlyUser;

TEST(TDCListTest, AddsRemovesUpdatesAndFinds) {
  TDCList list;
  EXPECT_EQ(list.GetFirstItem() + Names(list), "");
  for (const char* const name : {"b", "B", "AB", "A"}) list.Add(Make(name));
  EXPECT_EQ(list.GetFirstItem() + Names(list), "AA\nAB\nB\nb\n");
  list.Add(Make("B", {VLT_TYPE_MAINFRAME, "620", ""}));
  EXPECT_EQ(list.GetNumItems(), 4U);
  TDC out = Make("untouched");
  EXPECT_FALSE(list.GetByName("C", out));
  EXPECT_EQ(out.GetName(), "untouched");
  EXPECT_TRUE(list.GetByName("B", out));
  EXPECT_EQ(out.GetVersion().Ver(), "620");
  for (const char* const name : {"unknown", "AB"}) list.Remove(name);
  TDC added = Make("D");
  for (const char* const name : {"A", "unknown"}) list.Update(name, added);
  list.Update("B", const_cast<TDC&>(list.GetFirstDCPosition()->second));  // the list's own record
  EXPECT_EQ(Names(list), "B\nD\nb\n");
}

TEST(TDCListTest, GivesNames) {
  ArrayWrap<string> names;
  names.Append("before");
  EXPECT_EQ(Mixed().GetAsStringList(names), 1);
  EXPECT_THAT(names, ElementsAre("A", "B", "C", "D", "N"));
  TVltVersion flagged(VLT_TYPE_DISTRIBUTED, "700", "10");
  flagged.SetControlResourceForSMARTTablesOf700FP2MPM(true);  // The right operand's does not count.
  EXPECT_EQ(Mixed().GetAsStringListByVersion(names, flagged), 1);
  EXPECT_THAT(names, ElementsAre("C", "D"));
}

TEST(TDCListTest, GivesReasons) {
  string err = "before";
  EXPECT_EQ(Mixed().IsValid("A", err), 1);
  EXPECT_EQ(err, "before");
  EXPECT_EQ(Mixed().IsValid("BERLIN", err), 0);
  EXPECT_EQ(err, "Data-Center does not exist %s.BERLIN");
  const auto replace = [](string newName) {
    const string oldName = vq::test::Take(newName);
    string why = "yes";
    const int result = Mixed().CanReplace(oldName, newName, why);
    EXPECT_EQ(result, why == "yes" ? 1 : 0);
    return why;
  };
  const string modify = "You cannot modify VELTRA-M type from ";
  vq::test::ExpectRows(
      replace,
      {"A A -> yes", "C D -> yes",
       "A B -> " + modify + "z/OS [version 620] to z/OS [version 630.2].",
       "D A -> " + modify + "Distributed [version 700.20] to z/OS [version 620].",
       "N x -> VELTRA-M 'N' version is unknown!", "A N -> VELTRA-M 'N' version is unknown!",
       "x A -> VELTRA-M 'x' version is unknown!", "A y -> VELTRA-M 'y' version is unknown!"});
}

TEST(TDCListTest, WalkSkipsFirstRecord) {
  const TDCList list = Mixed();
  TDC out;
  string seen;
  TDCList::Position position = list.GetFirstDCPosition();
  while (position != list.GetEndDCPosition()) {
    list.GetNextDC(position, out);
    seen += out.GetName();
  }
  EXPECT_EQ(seen, "BCDNN");
  list.GetNextDC(position, out);  // The end stays the end.
  EXPECT_EQ(position, list.GetEndDCPosition());
}

TEST(TDCListTest, RemovesDraftsButTheFirst) {
  const auto left = [](const string& drafts) {  // A capital D is a draft.
    TDCList list;
    for (char name = 'A'; const char mark : drafts) list.Add(Make({name++}, {}, mark == 'D'));
    list.RemoveDraftDataCenters();
    return Names(list);
  };
  vq::test::ExpectRows(left,
                       {" -> ", "D -> A\n", "-DD -> A\n", "DDDD -> A\n", "D-D- -> A\nB\nD\n"});
}

TEST(TDCListTest, RefusesFiles) {
  const vq::test::TemporaryDirectory directory;
  const string file = directory.Write("file", "content"), absent = directory / "absent/file";
  // What the call raises, as the plain character string that it must be, and what is left.
  const auto raised = [](void (TDCList::*call)(const string&), const string& path) {
    TDCList list = Mixed();
    try {
      (list.*call)(path);
    } catch (const char* text) {
      return text + (" " + std::to_string(list.GetNumItems()));
    }
    return string();
  };
  EXPECT_EQ(raised(&TDCList::Load, file), "not implemented 0");
  EXPECT_EQ(raised(&TDCList::Load, absent), "failed 0");
  EXPECT_EQ(directory.Read("file"), "content");
  EXPECT_EQ(raised(&TDCList::Save, absent), "Failed to save data centers file 5");
  EXPECT_EQ(raised(&TDCList::Save, file), "Failed to save data centers file 5");
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
}

TEST(TString2EnumTest, RegistersAndCopies) {
  TString2Enum registry;
  EXPECT_EQ(registry.enum_register("RED", 3) + registry.enum_register("RED", 4), 2);
  EXPECT_EQ(registry.enum_register("RED", -1), 0);
  EXPECT_EQ(registry.enum_register("A\0B"s, INT_MIN), 1);
  const TString2Enum copy = registry;
  registry.enum_register("RED", 5);
  EXPECT_EQ(copy.enum_lookup("RED"), 4);
  EXPECT_EQ(copy.enum_lookup("red"), -1);
  EXPECT_EQ(copy.enum_lookup("A\0C"s), INT_MIN);  // Names count up to their first zero byte.
}

TEST(ArrayWrapTest, RefusesBadIndex) {
  ArrayWrap<string> array;
  array.Append("a");
  EXPECT_EQ(array.Append("b"), 1U);
  EXPECT_EQ(array[1], "b");
  EXPECT_THROW(array[2], std::out_of_range);
}

}  // namespace
