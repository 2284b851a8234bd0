#include <support/security/StupidEncrypt.h>

namespace {

constexpr char kLineEnd = '\n';
constexpr unsigned kNumbers = 255;  // the byte values without the line end
constexpr unsigned kStates = 16;

unsigned NumberOf(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte > 0x0A ? byte - 1U : byte;
}

char CharacterOf(unsigned number) {
  return static_cast<char>(static_cast<unsigned char>(number >= 0x0A ? number + 1U : number));
}

void Shift(const std::string& in, std::string& out, bool hides) {
  out = in;
  unsigned state = 0;
  for (char& character : out) {
    const char former = character;
    const unsigned shift = 195 + 4 * state;  // at most kNumbers
    const unsigned number = NumberOf(former) + (hides ? shift : kNumbers - shift);
    if (former != kLineEnd) character = CharacterOf(number % kNumbers);
    state = (state + static_cast<unsigned char>(hides ? character : former) + 6) % kStates;
  }
}

}  // namespace

void StupidEncrypt(const std::string& in, std::string& out) {
  Shift(in, out, true);
}

void StupidDecrypt(const std::string& in, std::string& out) {
  Shift(in, out, false);
}
