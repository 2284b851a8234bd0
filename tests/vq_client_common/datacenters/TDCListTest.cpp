#include <vq_client_common/datacenters/TDCList.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "LogLines.h"

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

// A static object that uses the process's list while it is made, before the ordinary ones, and
// while it goes.
struct EarlyUser {
  EarlyUser() { DataCenters.Add(Make("EARLY")); }
  ~EarlyUser() {
    if (DataCenters.GetNumItems() != 1) std::abort();
  }
};
[[gnu::init_priority(300)]] const EarlyUser earlyUser;

TEST(TDCListTest, TheListOfTheProcessServesStaticObjects) {
  EXPECT_EQ(Names(DataCenters), "EARLY\n");
}

TEST(TDCListTest, AddRemoveAndUpdate) {
  TDCList list;
  EXPECT_EQ(list.GetNumItems(), 0U);
  EXPECT_EQ(list.GetFirstItem(), "");
  EXPECT_EQ(Names(list), "");
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
  out.SetName("changed");  // a copy
  EXPECT_TRUE(list.GetByName("B", out));

  list.Remove("unknown");
  list.Remove("AB");
  TDC added = Make("D");
  list.Update("A", added);
  list.Update("unknown", added);
  EXPECT_EQ(Names(list), "B\nD\nb\n");

  TDCList copy = list;
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
  EXPECT_EQ(list.GetAsStringListByVersion(names, kMainframe630), 1);
  EXPECT_THAT(names, ElementsAre());
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

  const char* const cases[][3] = {
      {"A", "A", nullptr},
      {"C", "D", nullptr},
      {"A", "B",
       "You cannot modify VELTRA-M type from z/OS [version 620] to z/OS [version 630.2]."},
      {"D", "A",
       "You cannot modify VELTRA-M type from Distributed [version 700.20] to z/OS [version 620]."},
      {"N", "A", "VELTRA-M 'N' version is unknown!"},
      {"A", "N", "VELTRA-M 'N' version is unknown!"},
      {"x", "y", "VELTRA-M 'x' version is unknown!"},
      {"A", "y", "VELTRA-M 'y' version is unknown!"}};
  for (const auto& [oldName, newName, refusal] : cases) {
    err = "before";
    EXPECT_EQ(list.CanReplace(oldName, newName, err), refusal == nullptr ? 1 : 0);
    EXPECT_EQ(err, refusal == nullptr ? "before" : refusal) << oldName << ' ' << newName;
  }
}

TEST(TDCListTest, TheWalkSkipsTheFirstRecord) {
  TDCList list;
  TDC out = Make("untouched");
  TDCList::Position position = list.GetFirstDCPosition();
  EXPECT_EQ(position, list.GetEndDCPosition());
  list.GetNextDC(position, out);  // The end stays the end.
  EXPECT_EQ(position, list.GetEndDCPosition());

  for (const char* const name : {"A", "B", "C"}) list.Add(Make(name));
  std::vector<std::string> seen;
  position = list.GetFirstDCPosition();
  EXPECT_EQ(position->first, "A");
  while (position != list.GetEndDCPosition()) {
    list.GetNextDC(position, out);
    seen.push_back(out.GetName());
  }
  EXPECT_THAT(seen, ElementsAre("B", "C", "C"));
}

TEST(TDCListTest, DraftsGoSaveTheFirst) {
  const std::pair<std::string, const char*> cases[] = {
      // a capital D is a draft
      {"", ""},          {"D", "A\n"},    {"DD", "A\n"},         {"-D", "A\n"},
      {"-D-", "A\nC\n"}, {"DDDD", "A\n"}, {"D-D-", "A\nB\nD\n"}, {"---", "A\nB\nC\n"}};
  for (const auto& [drafts, left] : cases) {
    TDCList list;
    for (char name = 'A'; const char mark : drafts) list.Add(Make({name++}, {}, mark == 'D'));
    LogLines log(6);
    list.RemoveDraftDataCenters();
    EXPECT_EQ(Names(list), left) << drafts;
    EXPECT_EQ(log.Take(), "6 TDC::UpdateFull: Enter\n");
  }
}

// The text that the call raises, as the plain character string that it must be.
template <typename Call>
std::string Raised(Call call) {
  try {
    call();
  } catch (const char* text) {
    return text;
  }
  return "nothing raised";
}

TEST(TDCListTest, SaveAndLoadAlwaysFail) {
  std::string directory = (std::filesystem::temp_directory_path() / "vq-dclist-XXXXXX").string();
  ASSERT_NE(mkdtemp(directory.data()), nullptr);
  const std::string file = directory + "/file";
  const std::string absent = directory + "/absent/file";
  std::ofstream(file) << "content";
  TDCList list;
  list.Add(Make("A"));
  LogLines log(6);

  EXPECT_EQ(Raised([&] { list.Save(absent); }), "Failed to save data centers file");
  EXPECT_EQ(Raised([&] { list.Save(file); }), "Failed to save data centers file");
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
  EXPECT_EQ(Names(list), "A\n");
  EXPECT_EQ(Raised([&] { list.Load(file); }), "not implemented");
  EXPECT_EQ(Names(list), "");
  list.Add(Make("A"));
  EXPECT_EQ(Raised([&] { list.Load(absent); }), "failed");
  EXPECT_EQ(Names(list), "");
  EXPECT_EQ(log.Take(),
            "6 TDCList::Save: Enter\n6 TDCList::Save: Enter\n"
            "6 TDCList::Load: Enter\n6 TDCList::Load: Enter\n");
  std::filesystem::remove_all(directory);
}

}  // namespace
