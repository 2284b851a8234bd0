#include <vq_client_common/text/TErrMsg.h>

#include <stdexcept>

#include <gmock/gmock.h>

namespace {

TEST(TErrMsgTest, JudgesByCodeAndConversion) {
  for (const int trc : {0, 1, 2, 36, 37}) {
    for (const bool convertErr : {false, true}) {
      TErrMsg message;
      message.SetTRC(trc);
      message.SetConvertErr(convertErr);
      EXPECT_EQ(message.IsValidMessage(), trc == 1 && !convertErr) << trc;
      EXPECT_EQ(message.IsInternalErr(), trc == 36) << trc;
    }
  }
}

TEST(TErrMsgTest, PrintsFiveColumnsAndResetsThreeFields) {
  TErrMsg message;
  EXPECT_STREQ(message.GetAsString(), "UNK [UNK]\t[00]\t1\t");
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
  for (const TErrMsg& one : {message, copy}) {
    EXPECT_STREQ(one.GetMemName(), "MEMBER");
    EXPECT_STREQ(one.GetConvertMsg(), "cannot convert");
    EXPECT_TRUE(one.IsConvertErr() && !one.IsValidMessage());
  }
  copy.SetIndex(-123);
  copy.SetMsg(BaseString(2000, 'x'));
  EXPECT_EQ(copy.GetAsString().Std(), "UNK [UNK]\t[-123]\t36\t" + std::string(979, 'x'));
}

TEST(TErrMsgsTest, HoldsMessagesInOrder) {
  TErrMsgs messages;
  TErrMsg message;
  for (int i = 0; i < 100; ++i) {
    message.SetIndex(i);
    messages.AddMsg(message);
  }
  const TErrMsgs& constant = messages;
  messages.GetMsg(7).SetTRC(36);
  constant.GetMsg(7).SetTRC(1);  // a copy
  EXPECT_TRUE(constant.GetMsgRef(7).IsInternalErr());
  EXPECT_EQ(constant.GetMsg(99).GetIndex(), 99);
  const auto kRaises = testing::ThrowsMessage<std::out_of_range>("invalid vector<T> subscript");
  EXPECT_THAT([&] { messages.GetMsg(100); }, kRaises);
  EXPECT_THAT([&] { constant.GetMsg(4000000000U); }, kRaises);
  EXPECT_THAT([&] { constant.GetMsgRef(100); }, kRaises);
  messages.RemoveAll();
  EXPECT_EQ(messages.GetSize(), 0U);
}

}  // namespace
