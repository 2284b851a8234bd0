#include <vq_client_common/text/TablePath.h>

#include <cstddef>
#include <list>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using List = std::list<std::string>;

TEST(TablePathTest, AppendJoinsWithOneSeparator) {
  const struct {
    const char *path, *name, *before, *expected;
  } kRows[] = {
      {"T1", "T2", "", "T1/T2"},  {"T1/", "T2", "", "T1/T2"}, {"T1", "T2", "old", "T1/T2"},
      {"/", "T", "", "/T"},       {"T1", "", "", "T1/"},      {"", "T", "", "T"},
      {"", "T", "kept", "keptT"}, {"", "", "kept", "kept"},   {"a//", "/b", "", "a///b"},
  };
  for (const auto& row : kRows) {
    std::string out = row.before;
    EXPECT_TRUE(AppendToTablePath(row.path, row.name, out));
    EXPECT_EQ(out, row.expected) << row.path << ' ' << row.name;
  }
}

TEST(TablePathTest, SplitGivesTheNames) {
  const struct {
    const char* path;
    List expected;
  } kRows[] = {
      {"", {}},
      {"T1", {"T1"}},
      {"T1/T2/T3", {"T1", "T2", "T3"}},
      {"/T1", {"", "T1"}},
      {"T1/", {"T1"}},
      {"a//b", {"a", "", "b"}},
      {"/", {""}},
      {"//", {"", ""}},
  };
  for (const auto& row : kRows) {
    List out = {"old"};
    EXPECT_TRUE(SplitTablePath(row.path, out));
    EXPECT_EQ(out, row.expected) << row.path;
  }
}

TEST(TablePathTest, TheTwoEndsDifferWithoutASeparator) {
  const struct {
    std::string path, leftMost[2], rightMost[2];
  } kRows[] = {
      {"T1/T2/T3", {"T1", "T2/T3"}, {"T1/T2", "T3"}},
      {"T1", {"T1", ""}, {"T1", "T1"}},
      {"", {"", ""}, {"", ""}},
      {"/T1", {"", "T1"}, {"", "T1"}},
      {"T1/", {"T1", ""}, {"T1", ""}},
      {"a//b", {"a", "/b"}, {"a/", "b"}},
      {std::string("a/b\0c/d", 7), {"a", std::string("b\0c/d", 5)}, {"a", "b"}},
  };
  for (const auto& row : kRows) {
    std::string left = "old";
    std::string right = "old";
    EXPECT_TRUE(SplitLeftMost(row.path, left, right));
    EXPECT_EQ(left, row.leftMost[0]) << row.path;
    EXPECT_EQ(right, row.leftMost[1]) << row.path;
    EXPECT_TRUE(SplitRightMost(row.path, left, right));
    EXPECT_EQ(left, row.rightMost[0]) << row.path;
    EXPECT_EQ(right, row.rightMost[1]) << row.path;
  }
}

TEST(TablePathTest, AnOutputMayBeTheInput) {
  std::string path = "T1/T2/T3";
  std::string other;
  SplitRightMost(path, path, other);
  EXPECT_EQ(path, "T1/T2");
  SplitLeftMost(path, other, path);
  EXPECT_EQ(other, "T1");
  EXPECT_EQ(path, "T2");
  AppendToTablePath("T0", path, path);
  EXPECT_EQ(path, "T0/T2");
}

TEST(TablePathTest, OutermostHasNoSeparator) {
  EXPECT_TRUE(IsOuterMostTableName(""));
  EXPECT_TRUE(IsOuterMostTableName("T1"));
  EXPECT_FALSE(IsOuterMostTableName("T1/T2"));
  EXPECT_FALSE(IsOuterMostTableName("/"));
}

TEST(TablePathTest, BelongingIsTheReverseOfItsName) {
  const struct {
    const char *first, *second;
    bool expected;
  } kRows[] = {
      {"T1", "T1", false},    {"T1", "T1/T2", false}, {"T1", "T0/T1", false}, {"AB", "CD", true},
      {"AB", "CD/E", true},   {"AB", "CDE", false},   {"AB", "CD/", false},   {"AB", "CDEF", false},
      {"AB", "CDE/F", false}, {"ABC", "D", false},    {"", "", false},        {"", "/a", false},
      {"AB", "", false},      {"AB", "C/DE", false},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(DoesTableBelongToTable(row.first, row.second), row.expected)
        << row.first << ' ' << row.second;
  }
}

TEST(TablePathTest, SplitAndJoinAreInverse) {
  std::mt19937 random(5);
  for (int round = 0; round < 2000; ++round) {
    List names;
    std::string path;
    for (std::size_t i = 0, count = 1 + random() % 5; i < count; ++i) {
      names.emplace_back(1 + random() % 3, static_cast<char>('a' + random() % 26));
      const std::string before = path;
      AppendToTablePath(before, names.back(), path);
    }
    List split;
    SplitTablePath(path, split);
    ASSERT_EQ(split, names) << path;

    std::string left;
    std::string right;
    SplitRightMost(path, left, right);
    ASSERT_EQ(right, names.back());
    SplitLeftMost(path, left, right);
    ASSERT_EQ(left, names.front());
    ASSERT_EQ(IsOuterMostTableName(path), names.size() == 1);
  }
}

}  // namespace
