#include <support/security/StupidEncrypt.h>

namespace {

constexpr char kLineEnd = '\n';
constexpr unsigned kNumbers = 255;  // the byte values without the line end
constexpr unsigned kFirstState = 90;
constexpr unsigned kStep = 37;

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
  unsigned state = kFirstState;
  for (char& character : out) {
    if (character == kLineEnd) continue;
    const unsigned hidden = (NumberOf(character) + state) % kNumbers;
    character = CharacterOf(hidden);
    state = (hidden + kStep) % kNumbers;
  }
}

void StupidDecrypt(const std::string& in, std::string& out) {
  if (&out != &in) out = in;
  unsigned state = kFirstState;
  for (char& character : out) {
    if (character == kLineEnd) continue;
    const unsigned hidden = NumberOf(character);
    character = CharacterOf((hidden + kNumbers - state) % kNumbers);
    state = (hidden + kStep) % kNumbers;
  }
}
