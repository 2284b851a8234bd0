#include <vq_client_common/environment/CmdParser.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tests/support/diagnostics/LogLines.h>

namespace {

using ::testing::ElementsAre;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

class Parser : public CmdParser {
 public:
  explicit Parser(bool caseSensitive = false) : CmdParser(caseSensitive, true) {}
  using CmdParser::trim;

  // The strings are gone when it returns, as those of a caller may be.
  Parser& Parse(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "program");
    std::vector<char*> vector;
    for (std::string& argument : arguments) vector.push_back(argument.data());
    SetCmdLineArgs(static_cast<int>(vector.size()), vector.data());
    std::string unused = "unused";
    EXPECT_TRUE(parse(unused));
    EXPECT_EQ(unused, "unused");
    return *this;
  }

  std::string Debug() const {
    CaptureStdout();
    debug();
    return GetCapturedStdout();
  }
};

TEST(CmdParserTest, ArgumentsBecomeParametersAndSwitches) {
  const struct {
    std::vector<std::string> arguments;
    std::string folded;
    std::string caseKept;
  } cases[] = {
      {{}, "", ""},
      {{"-u", "Alice", "-p", "secret", "/v"},
       "P = secret\nU = Alice\n/V\n",
       "p = secret\nu = Alice\n/v\n"},
      {{"-x", "-5"}, "5 = \nX = \n", "5 = \nx = \n"},
      {{"-x", "/y"}, "X = /y\n", "x = /y\n"},
      {{"a", "b", "c"}, "a = b\nc = \n", "a = b\nc = \n"},
      {{"-x", "2", "-x", "1"}, "X = 2\nX = 1\n", "x = 2\nx = 1\n"},
      {{"/v", "/V", "/v"}, "/V\n/V\n/V\n", "/v\n/V\n/v\n"},
      {{"-"}, " = \n", " = \n"},
      {{"/"}, "/\n", "/\n"},
      {{""}, " = \n", " = \n"},
      {{"", "V"}, " = V\n", " = V\n"},
      {{"-x", ""}, "X = \n", "x = \n"},
      {{"--x", "1", "//y"}, "-X = 1\n//Y\n", "-x = 1\n//y\n"},
      {{"bare", "-x"}, "X = \nbare = \n", "bare = \nx = \n"},
      {{"-\xe4", "v"}, "\xe4 = v\n", "\xe4 = v\n"},
  };
  for (const auto& [arguments, folded, caseKept] : cases) {
    SCOPED_TRACE(::testing::PrintToString(arguments));
    EXPECT_EQ(Parser(false).Parse(arguments).Debug(), folded);
    EXPECT_EQ(Parser(true).Parse(arguments).Debug(), caseKept);
  }
}

TEST(CmdParserTest, AVectorThatEndsEarlyIsReadToItsEnd) {
  char name[] = "-x";
  char* vector[] = {name, name, nullptr, name};
  const struct {
    int count;
    char** vector;
    const char* parsed;
  } cases[] = {
      {-1, vector, ""}, {0, vector, ""}, {1, vector, ""}, {4, nullptr, ""}, {4, vector, "X = \n"}};
  for (const auto& expected : cases) {
    Parser parser;
    parser.SetCmdLineArgs(expected.count, expected.vector);
    std::string unused;
    parser.parse(unused);
    EXPECT_EQ(parser.Debug(), expected.parsed);
  }
}

TEST(CmdParserTest, ASecondParseAddsToTheFirst) {
  Parser parser;
  parser.Parse({"-x", "1", "/v"}).Parse({"-x", "2", "/v"});
  EXPECT_EQ(parser.Debug(), "X = 1\nX = 2\n/V\n/V\n");
  EXPECT_EQ(parser.params().size(), 2U);
}

TEST(CmdParserTest, AParameterIsFoundByItsNameAndThenByItsShortName) {
  Parser parser;
  parser.Parse({"-l", "v", "-x", "1", "-X", "2", "-empty", "-e", "short", "bare", "b"});
  const struct {
    const char* name;
    const char* shortName;
    const char* value;
    const char* longOnly;
  } cases[] = {
      {"LONGNAME", "L", "v", ""}, {"longname", "l", "v", ""}, {"x", "L", "1", "1"},
      {"empty", "e", "", ""},  // present with an empty value: the short name is not tried
      {"none", "", "", ""},       {"bare", "", "", ""},       {"EMPT", "E", "short", ""},
  };
  for (const auto& [name, shortName, value, longOnly] : cases) {
    parser.SetAcceptShortParams(true);
    EXPECT_EQ(parser.param(name, shortName), value) << name;
    parser.SetAcceptShortParams(false);
    EXPECT_EQ(parser.param(name, shortName), longOnly) << name;
  }
  parser.SetCaseSensitive(true);
  EXPECT_EQ(parser.param("bare", ""), "b");
  EXPECT_EQ(parser.param("x", ""), "") << "folded when it was parsed";
}

TEST(CmdParserTest, ASwitchIsAskedForAsItIsStored) {
  Parser parser;
  parser.Parse({"/v", "/long"});
  LogLines log(4);
  EXPECT_TRUE(parser.is_switch_on("V"));
  EXPECT_FALSE(parser.is_switch_on("v"));
  EXPECT_FALSE(parser.is_switch_on("LON"));
  EXPECT_TRUE(parser.is_switch_on('V'));
  EXPECT_THAT(log.Take(), ElementsAre("4 Testing V", "4 V turned on", "4 Testing v",
                                      "4 v turned off", "4 Testing LON", "4 LON turned off",
                                      "4 Testing: V", "4 Testing V", "4 V turned on"));
}

TEST(CmdParserTest, DBGSetsTheLevelOfTheLog) {
  const struct {
    std::vector<std::string> arguments;
    bool caseSensitive;
    int level;
  } cases[] = {
      {{"-DBG", "6"}, false, 6},
      {{"-dbg", "5"}, false, 5},
      {{"-DBG", "abc"}, false, 0},
      {{"-dbg", "6"}, true, 3},
      {{"-DBG", "6"}, true, 6},
      {{"-DBG"}, false, 3},
      {{}, false, 3},
      {{"DBG", "6"}, false, 6},
      {{"-DBG", "99999999999"}, false, 6},
  };
  for (const auto& [arguments, caseSensitive, level] : cases) {
    const LogLines log(3);
    Parser(caseSensitive).Parse(arguments);
    EXPECT_EQ(TDiag::Instance()->GetMinimumDebugLevel(), level)
        << ::testing::PrintToString(arguments);
  }
}

TEST(CmdParserTest, TheLogGetsEverythingButTheSecrets) {
  const std::vector<std::string> arguments = {"-Password", "s", "-p", "s", "-Pass", "1", "/v"};
  LogLines log(5);
  Parser(false).Parse(arguments).diag_print();
  EXPECT_THAT(log.Take(), ElementsAre("5 PASS = 1", "5 /V"));
  Parser(true).Parse(arguments).diag_print();
  EXPECT_THAT(log.Take(), ElementsAre("5 Pass = 1", "5 Password = s", "5 p = s", "5 /v"));
  TDiag::Instance()->SetMinimumDebugLevel(4);
  Parser(false).Parse(arguments).diag_print();
  EXPECT_THAT(log.Take(), ElementsAre());
}

TEST(CmdParserTest, AnEmptyTokenCannotBeTrimmed) {
  std::string token;
  EXPECT_THAT([&token] { Parser().trim(token); },
              ::testing::ThrowsMessage<std::out_of_range>("invalid string position"));
}

TEST(CmdParserTest, ThereIsOneAndItsEndIsTold) {
  CmdParser* const parser = CmdParser::Get();
  EXPECT_EQ(CmdParser::Get(), parser);
  EXPECT_EQ(CmdParser::m_pCmdParser, parser);
  CaptureStdout();
  delete parser;
  EXPECT_EQ(GetCapturedStdout(), "CmdParser destructor\n");
  EXPECT_EQ(CmdParser::m_pCmdParser, nullptr);
}

}  // namespace
