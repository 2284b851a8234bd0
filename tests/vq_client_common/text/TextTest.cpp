#include <vq_client_common/text/TablePath.h>

#include <random>

#include <gtest/gtest.h>

namespace {

using List = std::list<std::string>;

TEST(TablePathTest, AppendJoinsWithOneSeparator) {
  // The path, the name, and the output before and after.
  const char* const kRows[][4] = {{"T1", "T2", "old", "T1/T2"},
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
  const std::tuple<std::string, List, List, List> kRows[] = {
      {"T1/T2/T3", {"T1", "T2", "T3"}, {"T1", "T2/T3"}, {"T1/T2", "T3"}},
      {"T1", {"T1"}, {"T1", ""}, {"T1", "T1"}},  // the two ends differ
      {"", {}, {"", ""}, {"", ""}},
      {"/T1", {"", "T1"}, {"", "T1"}, {"", "T1"}},
      {"T1/", {"T1"}, {"T1", ""}, {"T1", ""}},
      {"a//b", {"a", "", "b"}, {"a", "/b"}, {"a/", "b"}},
      {{"a/b\0c", 5}, {"a", {"b\0c", 3}}, {"a", {"b\0c", 3}}, {"a", "b"}}};
  for (const auto& [path, all, leftMost, rightMost] : kRows) {
    List names = {"old", path};
    EXPECT_TRUE(SplitTablePath(names.back(), names));
    EXPECT_EQ(names, all) << path;
    std::string left = path, right = "old";
    EXPECT_TRUE(SplitLeftMost(left, left, right));
    EXPECT_EQ((List{left, right}), leftMost) << path;
    right = path;
    EXPECT_TRUE(SplitRightMost(right, left, right));
    EXPECT_EQ((List{left, right}), rightMost) << path;
    EXPECT_EQ(IsOuterMostTableName(path), path.find('/') == std::string::npos);
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
