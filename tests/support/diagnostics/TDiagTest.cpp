#include <support/diagnostics/TDiag.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TDiagRegister diagModule("TDiagTest");

class TDiagTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_sink = TDiag::Instance()->AddCallbackSink([this](const TDiagLine& line) {
      m_lines.push_back(std::to_string(line.level) + " " + std::string(line.scope) + " " +
                        std::string(line.text));
    });
  }
  void TearDown() override {
    TDiag::Instance()->RemoveAllSinks();
    TDiag::Instance()->SetMinimumDebugLevel(1);
    TDiag::Instance()->ClearModuleLevels();
    TDiag::Instance()->SetClassMask(TDiag::kAllClasses);
  }
  std::vector<std::string> m_lines;
  TDiag::SinkId m_sink = 0;
};

TEST_F(TDiagTest, LinesUpToTheLevelAreWrittenAndNoOthers) {
  TDiag::Instance()->SetMinimumDebugLevel(4);
  for (int level = 0; level <= 6; ++level) VQ_LOG(diagModule, level) << "at " << level;
  EXPECT_EQ(m_lines,
            (std::vector<std::string>{"0  at 0", "1  at 1", "2  at 2", "3  at 3", "4  at 4"}));
}

TEST_F(TDiagTest, AnInactiveLineEvaluatesNothing) {
  int evaluated = 0;
  VQ_LOG(diagModule, 5) << ++evaluated;
  TDiag::Instance()->RemoveSink(m_sink);
  VQ_LOG(diagModule, 0) << ++evaluated;
  EXPECT_EQ(evaluated, 0);
}

TEST_F(TDiagTest, AScopeLogsItsEntryAndNamesItsLines) {
  TDiag::Instance()->SetMinimumDebugLevel(6);
  {
    const TDiagFunc diag(diagModule, "Some::Function");
    VQ_LOG(diag, 2) << "flag " << true << ", number " << -7 << ", real " << 1.5 << '.';
  }
  EXPECT_EQ(m_lines, (std::vector<std::string>{"6 Some::Function Enter",
                                               "2 Some::Function flag 1, number -7, real 1.5."}));
}

TEST_F(TDiagTest, AModuleMayHaveALevelOfItsOwn) {
  TDiag::Instance()->ApplyLevels("0,TDiagTest=5,nonsense,Other=x,Another=3");
  EXPECT_TRUE(diagModule.IsActive(5));
  EXPECT_FALSE(diagModule.IsActive(6));
  const TDiagRegister other("Other");
  const TDiagRegister another("Another");
  EXPECT_FALSE(other.IsActive(1));
  EXPECT_TRUE(another.IsActive(3));
}

TEST_F(TDiagTest, TheClassMaskSelects) {
  TDiag::Instance()->SetClassMask(0x800000);
  VQ_LOG_CLASS(diagModule, 1, 0x1) << "left out";
  VQ_LOG_CLASS(diagModule, 1, 0x800000) << "kept";
  VQ_LOG(diagModule, 1) << "in all classes";
  EXPECT_EQ(m_lines, (std::vector<std::string>{"1  kept", "1  in all classes"}));
}

TEST_F(TDiagTest, AFileSinkKeepsForeignTextFromPassingForALine) {
  std::string directory = std::filesystem::temp_directory_path() / "vq-diag-XXXXXX";
  ASSERT_NE(mkdtemp(directory.data()), nullptr);
  const std::string path = directory + "/client.log";
  ASSERT_NE(TDiag::Instance()->AddFileSink(path), 0U);
  VQ_LOG(diagModule, 1) << "first\nL1 forged: second";
  TDiag::Instance()->RemoveAllSinks();

  std::ifstream file(path);
  std::string line;
  ASSERT_TRUE(std::getline(file, line));
  EXPECT_TRUE(line.ends_with(" L1 TDiagTest: first")) << line;
  ASSERT_TRUE(std::getline(file, line));
  EXPECT_EQ(line, "    L1 forged: second");
  std::filesystem::remove_all(directory);
}

TEST_F(TDiagTest, AFileThatDoesNotOpenIsReported) {
  EXPECT_EQ(TDiag::Instance()->AddFileSink("/dev/null/not-a-directory/client.log"), 0U);
}

}  // namespace
