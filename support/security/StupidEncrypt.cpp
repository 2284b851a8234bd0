#include <support/security/StupidEncrypt.h>

namespace {

constexpr char kLineEnd = '\n';
constexpr unsigned kNumbers = 255;  // the byte values without the line end
constexpr unsigned kStates = 16;

// At most kNumbers, so that it can be taken away from any number plus kNumbers.
unsigned ShiftOf(unsigned state) {
  return 195 + 4 * state;
}

unsigned StateBehind(unsigned state, char hidden) {
  return (state + static_cast<unsigned char>(hidden) + 6) % kStates;
}

unsigned NumberOf(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte > 0x0A ? byte - 1U : byte;
}

char CharacterOf(unsigned number) {
  return static_cast<char>(static_cast<unsigned char>(number >= 0x0A ? number + 1U : number));
}

}  // namespace

void StupidEncrypt(const std::string& in, std::string& out) {
  if (&out != &in) out = in;
  unsigned state = 0;
  for (char& character : out) {
    if (character != kLineEnd) {
      character = CharacterOf((NumberOf(character) + ShiftOf(state)) % kNumbers);
    }
    state = StateBehind(state, character);
  }
}

void StupidDecrypt(const std::string& in, std::string& out) {
  if (&out != &in) out = in;
  unsigned state = 0;
  for (char& character : out) {
    const char hidden = character;
    if (hidden != kLineEnd) {
      character = CharacterOf((NumberOf(hidden) + kNumbers - ShiftOf(state)) % kNumbers);
    }
    state = StateBehind(state, hidden);
  }
}
