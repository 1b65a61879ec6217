#include "skin/look/style_numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace plemora {

namespace {

template <typename Number>
std::optional<Number> parseWhole(std::string_view text) {
  // from_chars takes a minus but no plus.
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) {
      return std::nullopt;
    }
  }
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

template <typename Number>
std::optional<Number> parseFinite(std::string_view text) {
  const auto number = parseWhole<Number>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

}  // namespace

std::optional<double> parseDouble(std::string_view text) {
  return parseFinite<double>(text);
}

std::optional<float> parseFloat(std::string_view text) {
  return parseFinite<float>(text);
}

std::optional<int> parseInteger(std::string_view text) {
  return parseWhole<int>(text);
}

std::vector<std::string_view> splitText(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find(separator), text.size());
    if (length > 0) {
      pieces.push_back(text.substr(0, length));
    }
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return pieces;
}

KeyAndValue splitPiece(std::string_view piece) {
  const std::size_t equals = piece.find('=');
  if (equals == std::string_view::npos) {
    return {piece, std::nullopt};
  }
  return {piece.substr(0, equals), piece.substr(equals + 1)};
}

}  // namespace plemora
