#include "base/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace plemora {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int8_t noDigit = -1;

constexpr std::array<std::int8_t, 256> digitValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(noDigit);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    values[static_cast<unsigned char>(digits[i])] = static_cast<std::int8_t>(i);
  }
  return values;
}();

}  // namespace

std::string encodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += i + k <= bytes.size() ? digits[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

std::optional<std::string> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) {
    return std::nullopt;
  }
  text.remove_suffix(text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0);
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 2);
  std::uint32_t held = 0;
  int bits = 0;
  for (const char character : text) {
    const std::int8_t digit = digitValues[static_cast<unsigned char>(character)];
    if (digit == noDigit) {
      return std::nullopt;
    }
    held = held << 6 | static_cast<std::uint32_t>(digit);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes += static_cast<char>(held >> bits & 0xff);
    }
  }
  return bytes;
}

}  // namespace plemora
