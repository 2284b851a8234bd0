#include <vq_client_common/text/TablePath.h>

#include <array>
#include <list>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using List = std::list<std::string>;

TEST(TablePathTest, AppendJoinsWithOneSeparator) {
  const std::array<const char*, 4> kRows[] = {// path, name, the output before and after
                                              {"T1", "T2", "old", "T1/T2"},
                                              {"T1/", "T2", "", "T1/T2"},
                                              {"T1", "", "", "T1/"},
                                              {"", "T", "kept", "keptT"},
                                              {"a//", "/b", "", "a///b"}};
  for (const auto& [path, name, before, after] : kRows) {
    std::string out = before;
    EXPECT_TRUE(AppendToTablePath(path, name, out));
    EXPECT_EQ(out, after);
  }
}

TEST(TablePathTest, PathsComeApart) {
  const struct {
    std::string path;
    List names, leftMost, rightMost;
  } kRows[] = {{"T1/T2/T3", {"T1", "T2", "T3"}, {"T1", "T2/T3"}, {"T1/T2", "T3"}},
               {"T1", {"T1"}, {"T1", ""}, {"T1", "T1"}},  // the two ends differ
               {"", {}, {"", ""}, {"", ""}},
               {"/T1", {"", "T1"}, {"", "T1"}, {"", "T1"}},
               {"T1/", {"T1"}, {"T1", ""}, {"T1", ""}},
               {"a//b", {"a", "", "b"}, {"a", "/b"}, {"a/", "b"}},
               {{"a/b\0c", 5}, {"a", {"b\0c", 3}}, {"a", {"b\0c", 3}}, {"a", "b"}}};
  for (const auto& row : kRows) {
    List names = {"old", row.path};
    EXPECT_TRUE(SplitTablePath(names.back(), names));
    EXPECT_EQ(names, row.names) << row.path;
    std::string left = row.path;
    std::string right = "old";
    EXPECT_TRUE(SplitLeftMost(left, left, right));
    EXPECT_EQ((List{left, right}), row.leftMost) << row.path;
    right = row.path;
    EXPECT_TRUE(SplitRightMost(right, left, right));
    EXPECT_EQ((List{left, right}), row.rightMost) << row.path;
    EXPECT_EQ(IsOuterMostTableName(row.path), row.path.find('/') == std::string::npos);
  }
}

TEST(TablePathTest, BelongingIsTheReverseOfItsName) {
  for (const char* second : {"CD", "CD/E"}) EXPECT_TRUE(DoesTableBelongToTable("AB", second));
  for (const char* second : {"AB", "AB/T", "T/AB", "CDE", "CD/", "CDE/F", "C/DE", "D", ""}) {
    EXPECT_FALSE(DoesTableBelongToTable("AB", second)) << second;
  }
  EXPECT_FALSE(DoesTableBelongToTable("", "/a"));
}

TEST(TablePathTest, SplitAndJoinAreInverse) {
  std::mt19937 random(5);
  List names;
  std::string path;
  for (int round = 0; round < 500; ++round) {
    names.emplace_back(1 + random() % 3, static_cast<char>('a' + random() % 26));
    AppendToTablePath(path, names.back(), path);
    List split;
    SplitTablePath(path, split);
    ASSERT_EQ(split, names);
  }
}

}  // namespace
