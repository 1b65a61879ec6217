#pragma once

#include <cstdint>
#include <string>

namespace plemora {

/// A four-character code: four ASCII characters packed big-endian into one 32-bit word,
/// as the audio hardware layer names its properties, scopes, transports and statuses.
using FourCharCode = std::uint32_t;

/// Packs a literal of exactly four characters: fourCharCode("glob").
consteval FourCharCode fourCharCode(const char (&text)[5]) {
  FourCharCode code = 0;
  for (int i = 0; i < 4; ++i) {
    code = code << 8 | static_cast<unsigned char>(text[i]);
  }
  return code;
}

/// The code as text for logs and messages: its four characters in quotes when all of them are
/// printable, else the number in decimal.
inline std::string describeFourCharCode(FourCharCode code) {
  std::string text = "'";
  for (int shift = 24; shift >= 0; shift -= 8) {
    const char character = static_cast<char>(code >> shift & 0xff);
    if (character < 0x20 || character > 0x7e) {
      return std::to_string(static_cast<std::int32_t>(code));
    }
    text += character;
  }
  return text + "'";
}

}  // namespace plemora
