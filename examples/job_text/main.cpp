// Converts job fields to the server's form, and text of several lines in both directions. Needs no
// server.
//
//   job_text

#include <iostream>
#include <stdexcept>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

constexpr unsigned int kLongestLine = 72;  // bytes in one line of the server's buffer

// Converts the server's line buffer to text. An incomplete buffer must not end the program.
bool Read(const std::string& buffer, std::string& lines) {
  try {
    return ConvertBuffer2Lines(buffer, lines) == 1;
  } catch (const std::out_of_range&) {  // a line is shorter than it says
    return false;
  }
}

}  // namespace

int main() {
  // On the screen, lines end in LF; in the text form of a job, in CR LF. In the line buffer, the
  // length comes before each line.
  const std::string screen = "copy the ledger\n\nthen send it";
  std::string text;
  std::string buffer;
  ConvertUnixToWindows(screen, text);
  ConvertLines2Buffer(text, buffer, kLongestLine);
  std::cout << buffer << '\n';

  std::string lines;
  if (!Read(buffer, lines)) return 1;
  std::string back;
  ConvertWindowsToUnix(lines, back);
  std::cout << (back == screen ? "there and back" : "changed on the way") << '\n';

  buffer.resize(buffer.size() - 3);
  std::cout << (Read(buffer, lines) ? "whole" : "cut off") << '\n';

  // Single fields.
  std::string field;
  FormatExecTime("+5%", field);
  std::cout << field << '\n';
  FormatInterval("10h", field);
  std::cout << field << '\n';
  FormatShiftNum("3", field);
  std::cout << field << '\n';

  // A path of tables, from the outermost to the innermost.
  std::string outer;
  std::string rest;
  SplitLeftMost("PAYROLL/DAILY/EUROPE", outer, rest);
  std::cout << outer << " holds " << rest << '\n';
  return 0;
}
