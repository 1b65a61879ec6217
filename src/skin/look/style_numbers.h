#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace plemora {

// How the texts of styles and tunings are read, whatever the locale: each number has to be the
// whole text, without blanks. What is no number reads as none.

/// A decimal number such as "-1.5", "+.5" or "2e-3". Infinities and what lies beyond the range of
/// the type count as no number.
std::optional<double> parseDouble(std::string_view text);
std::optional<float> parseFloat(std::string_view text);

/// Decimal digits with an optional sign.
std::optional<int> parseInteger(std::string_view text);

/// The pieces between separators; those that are empty are left out.
std::vector<std::string_view> splitText(std::string_view text, char separator);

/// A piece cut at its first "=".
struct KeyAndValue {
  std::string_view key;
  std::optional<std::string_view> value;  ///< none when there is no "="
};
KeyAndValue splitPiece(std::string_view piece);

}  // namespace plemora
