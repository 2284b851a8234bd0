// Table paths, the lengths of fields, and a server's error messages.
#include <vq_client_common/text/FieldLength.h>
#include <vq_client_common/text/TErrMsg.h>
#include <vq_client_common/text/TablePath.h>

#include <tests/fixture/UnitTest.h>

namespace {

using std::string_literals::operator""s;
using List = std::list<std::string>;

TEST(TablePathTest, Appends) {
  const auto joined = [](std::string name) {  // the path, the output before, and the name
    const std::string path = vq::test::Take(name, '|');
    std::string out = vq::test::Take(name, '|');
    EXPECT_TRUE(AppendToTablePath(path, name, out));
    return out;
  };
  vq::test::ExpectRows(joined, {"T1|old|T2 -> T1/T2", "T1/||T2 -> T1/T2", "T1|| -> T1/",
                                "|kept|T -> keptT", "a//||/b -> a///b"});
}

TEST(TablePathTest, Splits) {
  const auto parts = [](const std::string& path) {  // all, the left-most and the right-most
    List names = {"old", path};
    EXPECT_TRUE(SplitTablePath(names.back(), names));
    std::string all, left = path, rest = "old", front = "old", right = path;
    for (const std::string& name : names) all += "[" + name + "]";
    EXPECT_TRUE(SplitLeftMost(left, left, rest) && SplitRightMost(right, front, right));
    EXPECT_EQ(IsOuterMostTableName(path), path.find('/') == std::string::npos);
    return all + " " + left + "," + rest + " " + front + "," + right;
  };
  vq::test::ExpectRows(parts, {"T1/T2/T3 -> [T1][T2][T3] T1,T2/T3 T1/T2,T3", "T1 -> [T1] T1, T1,T1",
                               " ->  , ,", "/T1 -> [][T1] ,T1 ,T1", "T1/ -> [T1] T1, T1,",
                               "a//b -> [a][][b] a,/b a/,b", "a/b\0c -> [a][b\0c] a,b\0c a,b"s});
}

TEST(TablePathTest, BelongsByLength) {
  for (const char* second : {"CD", "CD/E"}) EXPECT_TRUE(DoesTableBelongToTable("AB", second));
  for (const char* second : {"AB", "AB/T", "T/AB", "CDE", "CD/", "CDE/F", "C/DE", "D", ""}) {
    EXPECT_FALSE(DoesTableBelongToTable("AB", second)) << second;
  }
  EXPECT_FALSE(DoesTableBelongToTable("", "/a"));
}

TEST(FieldLengthTest, EveryFieldHasItsLength) {
  const auto lengths = [](const std::function<int(QCSFieldName)>& length) {
    std::string text;
    for (int field = -1; field <= 32; ++field) {
      text += std::to_string(length(static_cast<QCSFieldName>(field))) + " ";
    }
    return text;
  };
  const std::string before = "0 64 255 64 64 32 64 255 6 4000 255 ";
  const std::string after = " 20 10 44 64 255 64 5 20 64 3 3 5 200 400 200 400 300 500 4000 20 0 ";
  EXPECT_EQ(lengths([](auto field) { return GetFieldLength(field, false); }),
            before + "10 50" + after);
  EXPECT_EQ(lengths([](auto field) { return GetFieldLength(field, true); }),
            before + "8 50" + after);
  EXPECT_EQ(lengths(GetFieldLength640), before + "30 4000" + after);
}

TEST(TErrMsgTest, PrintsAndResets) {
  TErrMsg message;
  EXPECT_STREQ(message.GetAsString(), "UNK [UNK]\t[00]\t1\t");
  EXPECT_TRUE(message.IsValidMessage() && !message.IsInternalErr());
  message.SetMemName("MEMBER");
  message.SetIndex(7);
  message.SetTRC(36);
  message.SetMsg("100%s full");
  message.SetConvertErr(true);
  message.SetConvertMsg("cannot convert");
  TErrMsg copy;
  copy = message;
  message.ResetMessage();
  EXPECT_STREQ(message.GetAsString(), "UNK [unk]\t[00]\t1\t");
  EXPECT_STREQ(copy.GetAsString(), "UNK [UNK]\t[07]\t36\t100%s full");
  EXPECT_TRUE(copy.IsInternalErr());
  for (const TErrMsg& one : {message, copy}) {
    EXPECT_STREQ(one.GetMemName(), "MEMBER");
    EXPECT_STREQ(one.GetConvertMsg(), "cannot convert");
    EXPECT_TRUE(one.IsConvertErr() && !one.IsValidMessage());
  }
  copy.SetConvertErr(false);
  EXPECT_FALSE(copy.IsValidMessage()) << "the code is 36";
  copy.SetIndex(-123);
  copy.SetMsg(BaseString(2000, 'x'));
  EXPECT_EQ(copy.GetAsString().Std(), "UNK [UNK]\t[-123]\t36\t" + std::string(979, 'x'));
}

TEST(TErrMsgsTest, RefusesBadIndex) {
  TErrMsgs messages;
  for (int i = 0; i < 2; ++i) messages.AddMsg(TErrMsg());
  const TErrMsgs& constant = messages;
  messages.GetMsg(1).SetTRC(36);
  constant.GetMsg(1).SetTRC(1);  // a copy
  EXPECT_TRUE(constant.GetMsgRef(1).IsInternalErr() && !constant.GetMsgRef(0).IsInternalErr());
  const auto kRaises = testing::ThrowsMessage<std::out_of_range>("invalid vector<T> subscript");
  EXPECT_THAT([&] { messages.GetMsg(2); }, kRaises);
  EXPECT_THAT([&] { constant.GetMsg(4000000000U); }, kRaises);
  messages.RemoveAll();
  EXPECT_EQ(messages.GetSize(), 0U);
}

}  // namespace
