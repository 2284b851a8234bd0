#include <support/diagnostics/TDiag.h>

#include <string>

#include <gmock/gmock.h>

#include <tests/fixture/LogCapture.h>
#include <tests/fixture/TemporaryDirectory.h>

namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

TDiagRegister diagModule("TDiagTest");

class TDiagTest : public ::testing::Test {
 protected:
  ~TDiagTest() override {
    TDiag::Instance()->RemoveAllSinks();
    TDiag::Instance()->ClearModuleLevels();
    TDiag::Instance()->SetClassMask(TDiag::kAllClasses);
  }
  vq::test::LogCapture m_log{4};
};

TEST_F(TDiagTest, LinesUpToTheLevelAreWrittenAndNoOthersEvaluated) {
  for (int level = 2; level <= 6; ++level) VQ_LOG(diagModule, level) << "at " << level;
  EXPECT_THAT(m_log.Take(), ElementsAre("2 at 2", "3 at 3", "4 at 4"));
  int evaluated = 0;
  VQ_LOG(diagModule, 5) << ++evaluated;
  TDiag::Instance()->RemoveAllSinks();
  VQ_LOG(diagModule, 0) << ++evaluated;
  EXPECT_EQ(evaluated, 0);
}

TEST_F(TDiagTest, AScopeLogsItsEntryAndNamesItsLines) {
  TDiag::Instance()->SetMinimumDebugLevel(6);
  const TDiagFunc diag(diagModule, "Some::Function");
  VQ_LOG(diag, 2) << "flag " << true << ", number " << -7 << ", real " << 1.5 << '.';
  EXPECT_EQ(m_log.Text(),
            "6 Some::Function: Enter\n2 Some::Function: flag 1, number -7, real 1.5.\n");
}

TEST_F(TDiagTest, AModuleMayHaveALevelOfItsOwn) {
  TDiag::Instance()->ApplyLevels("1,TDiagTest=5,nonsense,Other=x,Another=0");
  const TDiagRegister other("Other");
  const TDiagRegister another("Another");
  EXPECT_TRUE(diagModule.IsActive(5) && !diagModule.IsActive(6));
  EXPECT_TRUE(other.IsActive(1) && !other.IsActive(2));
  EXPECT_TRUE(another.IsActive(0) && !another.IsActive(1));
}

TEST_F(TDiagTest, TheClassMaskSelects) {
  TDiag::Instance()->SetClassMask(0x800000);
  VQ_LOG_CLASS(diagModule, 1, 0x1) << "left out";
  VQ_LOG_CLASS(diagModule, 1, 0x800000) << "kept";
  VQ_LOG(diagModule, 1) << "in all classes";
  EXPECT_THAT(m_log.Take(), ElementsAre("1 kept", "1 in all classes"));
}

TEST_F(TDiagTest, ACallbackThatLogsIsNotCalledForThat) {
  EXPECT_EQ(TDiag::Instance()->AddCallbackSink(nullptr), 0U);
  int calls = 0;
  TDiag::Instance()->AddCallbackSink([&](const TDiagLine&) {
    ++calls;
    VQ_LOG(diagModule, 0) << "once more";
  });
  VQ_LOG(diagModule, 1) << "line";
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(m_log.Take(), ElementsAre("1 line"));
}

TEST_F(TDiagTest, AFileSinkKeepsForeignTextFromPassingForALineOrReachingATerminal) {
  const vq::test::TemporaryDirectory directory;
  ASSERT_NE(TDiag::Instance()->AddFileSink(directory / "log"), 0U);
  VQ_LOG(diagModule, 1) << "first\nL1 forged:\tsecond\r\x1b[2J\xc3\xa9";
  EXPECT_THAT(directory.Read("log"), MatchesRegex(".* L1 TDiagTest: first\n"
                                                  "    L1 forged:\tsecond.x0d.x1b.2J\xc3\xa9\n"));
  EXPECT_EQ(TDiag::Instance()->AddFileSink("/dev/null/not-a-directory/log"), 0U);
}

}  // namespace
