// Brings job fields into the server's form, and text of several lines there and back. Needs no
// server.
//
//   job_text

#include <iostream>
#include <stdexcept>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

constexpr unsigned int kLongestLine = 72;  // bytes that the server takes in one line

// The server's line buffer back as text. One that was cut off on its way must not end the program.
bool Read(const std::string& buffer, std::string& lines) {
  try {
    return ConvertBuffer2Lines(buffer, lines) == 1;
  } catch (const std::out_of_range&) {  // a line is shorter than it says
    return false;
  }
}

}  // namespace

int main() {
  // On the screen lines end in LF, in a job's text form in CR LF, in the line buffer in nothing:
  // each line has its length in front.
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
