#include <vq_client_common/environment/CmdParser.h>

#include <sstream>

#include <tests/fixture/UnitTest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

struct Parser : CmdParser {
  explicit Parser(bool caseSensitive = false) : CmdParser(caseSensitive, true) {}
  using CmdParser::trim;

  // Arguments with a blank between them. They are destroyed when it returns, as a caller's may be.
  Parser& Parse(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> arguments{"program"};
    for (std::string word; std::getline(stream, word, ' ');) arguments.push_back(word);
    std::vector<char*> vector;
    for (std::string& argument : arguments) vector.push_back(argument.data());
    return Parse(static_cast<int>(vector.size()), vector.data());
  }
  Parser& Parse(int count, char** vector) {
    SetCmdLineArgs(count, vector);
    std::string unused = "unused";
    EXPECT_TRUE(parse(unused) && unused == "unused");
    return *this;
  }
  std::string Debug() const {
    CaptureStdout();
    debug();
    return GetCapturedStdout();
  }
};

TEST(CmdParserTest, Parses) {
  vq::test::ExpectRows(
      [](const std::string& line) { return Parser(false).Parse(line).Debug(); },
      {" -> ", "-u Al -p s /v -> P = s\nU = Al\n/V\n", "-x -5 -> 5 = \nX = \n", "-x /y -> X = /y\n",
       "a b c -> a = b\nc = \n", "-x 2 -x 1 -> X = 2\nX = 1\n", "/v /V -> /V\n/V\n",
       "/ - ->  = \n/\n", " V --x ->  = V\n-X = \n", "bare -\xe4 -> bare = \n\xe4 = \n"});
  EXPECT_EQ(Parser(true).Parse("-u Al /v -U b /V").Debug(), "U = b\nu = Al\n/v\n/V\n");
  EXPECT_EQ(Parser().Parse("-x 1 /v").Parse("-x 2 /v").Debug(), "X = 1\nX = 2\n/V\n/V\n");
}

TEST(CmdParserTest, StopsAtNull) {
  char name[] = "-x";
  char* vector[] = {name, name, nullptr, name};
  for (const int count : {-1, 0, 1}) EXPECT_EQ(Parser().Parse(count, vector).Debug(), "");
  EXPECT_EQ(Parser().Parse(4, nullptr).Debug(), "");
  EXPECT_EQ(Parser().Parse(4, vector).Debug(), "X = \n");
}

TEST(CmdParserTest, FindsByNameThenShortName) {
  Parser parser;
  parser.Parse("-l v -x 1 -X 2 -x 3 -empty -e short bare b");
  const auto found = [&](std::string shortName) {  // with short names and without
    const std::string name = vq::test::Take(shortName);
    parser.SetAcceptShortParams(true);
    const std::string value = parser.param(name, shortName);
    parser.SetAcceptShortParams(false);
    return value + "," + parser.param(name, shortName);
  };
  vq::test::ExpectRows(found, {"longname l -> v,", "x L -> 1,1", "EMPT E -> short,", "bare  -> ,",
                               "empty e -> ,"});  // there, and empty
  parser.SetCaseSensitive(true);
  EXPECT_EQ(parser.param("bare", "") + parser.param("x", ""), "b");
}

TEST(CmdParserTest, TestsSwitches) {
  Parser parser;
  parser.Parse("/v /long");
  EXPECT_FALSE(parser.is_switch_on("v") || parser.is_switch_on("LON"));
  EXPECT_TRUE(parser.is_switch_on('V') && parser.is_switch_on("LONG"));
}

TEST(CmdParserTest, DbgSetsTheLogLevel) {
  const std::tuple<const char*, int, int> cases[] = {
      {"-dbg 5", 5, 3}, {"-DBG abc", 0, 0}, {"-DBG", 3, 3}, {"DBG 99999999999", 6, 6}};
  for (const auto& [line, folded, caseKept] : cases) {
    for (const bool caseSensitive : {false, true}) {
      const vq::test::LogCapture log(3);
      Parser(caseSensitive).Parse(line);
      EXPECT_EQ(TDiag::Instance()->GetMinimumDebugLevel(), caseSensitive ? caseKept : folded);
    }
  }
}

TEST(CmdParserTest, LogsNoSecret) {
  vq::test::LogCapture log(5);
  Parser(false).Parse("-Password s -p s -Pass 1 /v").diag_print();
  EXPECT_THAT(log.Take(), ElementsAre("5 PASS = 1", "5 /V"));
  Parser(true).Parse("-Password s -p s -Pass 1 /v").diag_print();
  EXPECT_THAT(log.Take(), ElementsAre("5 Pass = 1", "5 Password = s", "5 p = s", "5 /v"));
}

TEST(CmdParserTest, ThereIsOne) {
  std::string empty;
  EXPECT_THAT([&empty] { Parser().trim(empty); },
              ::testing::ThrowsMessage<std::out_of_range>("invalid string position"));
  CmdParser* const parser = CmdParser::Get();
  EXPECT_TRUE(CmdParser::Get() == parser && CmdParser::m_pCmdParser == parser);
  CaptureStdout();
  delete parser;
  EXPECT_EQ(GetCapturedStdout(), "CmdParser destructor\n");
  EXPECT_EQ(CmdParser::m_pCmdParser, nullptr);
}

}  // namespace
