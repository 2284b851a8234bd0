#include <vq_client_common/text/TErrMsg.h>
#include <vq_client_common/text/TErrMsgs.h>

#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

TEST(TErrMsgTest, PrintsFiveColumns) {
  TErrMsg message;
  EXPECT_EQ(message.GetAsString().Std(), "UNK [UNK]\t[00]\t1\t");
  message.SetIndex(7);
  message.SetTRC(36);
  message.SetMsg("100%s full");
  EXPECT_EQ(message.GetAsString().Std(), "UNK [UNK]\t[07]\t36\t100%s full");
  message.SetIndex(-123);
  message.SetMsg(BaseString(2000, 'x'));
  EXPECT_EQ(message.GetAsString().Std().substr(0, 20), "UNK [UNK]\t[-123]\t36\t");
  EXPECT_EQ(message.GetAsString().GetLength(), 999U);
}

TEST(TErrMsgTest, JudgesByCodeAndConversion) {
  const struct {
    int trc;
    bool convertErr, valid, internal;
  } kRows[] = {{1, false, true, false}, {1, true, false, false},  {36, false, false, true},
               {36, true, false, true}, {0, false, false, false}, {2, false, false, false}};
  for (const auto& row : kRows) {
    TErrMsg message;
    message.SetTRC(row.trc);
    message.SetConvertErr(row.convertErr);
    EXPECT_EQ(message.IsValidMessage(), row.valid) << row.trc;
    EXPECT_EQ(message.IsInternalErr(), row.internal) << row.trc;
  }
}

TEST(TErrMsgTest, ResetKeepsTheConversionAndTheMember) {
  TErrMsg message;
  message.SetMemName("MEMBER");
  message.SetIndex(3);
  message.SetMsg("text");
  message.SetTRC(36);
  message.SetConvertErr(true);
  message.SetConvertMsg("cannot convert");
  message.ResetMessage();
  EXPECT_EQ(message.GetAsString().Std(), "UNK [unk]\t[00]\t1\t");
  EXPECT_FALSE(message.IsValidMessage());
  EXPECT_TRUE(message.IsConvertErr());

  TErrMsg assigned;
  assigned = message;
  for (const TErrMsg& copy : {TErrMsg(message), assigned}) {
    EXPECT_EQ(copy.GetMemName().Std(), "MEMBER");
    EXPECT_EQ(copy.GetConvertMsg().Std(), "cannot convert");
    EXPECT_EQ(copy.GetIndex(), 0);
    EXPECT_EQ(copy.GetTRC(), 1);
    EXPECT_TRUE(copy.IsConvertErr());
    EXPECT_EQ(copy.GetAsString().Std(), message.GetAsString().Std());
  }
}

TEST(TErrMsgsTest, HoldsMessagesInOrder) {
  TErrMsgs messages;
  for (int i = 0; i < 100; ++i) {
    TErrMsg message;
    message.SetIndex(i);
    messages.AddMsg(message);
  }
  const TErrMsgs& constant = messages;
  ASSERT_EQ(constant.GetSize(), 100U);
  messages.GetMsg(7).SetTRC(36);
  constant.GetMsg(7).SetTRC(1);  // a copy
  EXPECT_TRUE(constant.GetMsgRef(7).IsInternalErr());
  EXPECT_EQ(constant.GetMsg(99).GetIndex(), 99);
  for (const unsigned index : {100U, 4000000000U}) {
    for (int way = 0; way < 3; ++way) {
      try {
        if (way == 0) messages.GetMsg(index);
        if (way == 1) constant.GetMsg(index);
        if (way == 2) constant.GetMsgRef(index);
        ADD_FAILURE() << "nothing raised";
      } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
      }
    }
  }
  messages.RemoveAll();
  EXPECT_EQ(messages.GetSize(), 0U);
}

}  // namespace
