#include "base/text.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cwchar>
#include <cwctype>
#include <optional>

namespace plemora {

namespace {

// Wide characters by the C library's locale; none when the bytes are no valid text in it.
std::optional<std::wstring> foldedWide(std::string_view text) {
  std::wstring wide;
  std::mbstate_t state{};
  while (!text.empty()) {
    wchar_t character = 0;
    const std::size_t used = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (used == 0 || used > text.size()) {
      return std::nullopt;
    }
    wide += static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
    text.remove_prefix(used);
  }
  return wide;
}

std::string foldedBytes(std::string_view text) {
  std::string folded(text);
  for (char& byte : folded) {
    if (byte >= 'A' && byte <= 'Z') {
      byte = static_cast<char>(byte - 'A' + 'a');
    }
  }
  return folded;
}

}  // namespace

std::string lowercased(std::string_view text) {
  const auto wide = foldedWide(text);
  if (!wide) {
    return foldedBytes(text);
  }
  std::string narrow;
  std::mbstate_t state{};
  for (const wchar_t character : *wide) {
    char bytes[16];
    const std::size_t count = std::wcrtomb(bytes, character, &state);
    if (count == static_cast<std::size_t>(-1)) {
      return foldedBytes(text);
    }
    narrow.append(bytes, count);
  }
  return narrow;
}

bool localizedCaseInsensitiveLess(std::string_view a, std::string_view b) {
  const auto wideA = foldedWide(a);
  const auto wideB = foldedWide(b);
  // Text that cannot be decoded sorts behind all that can, by its bytes: still a strict order.
  if (wideA && wideB) {
    return std::wcscoll(wideA->c_str(), wideB->c_str()) < 0;
  }
  if (wideA.has_value() != wideB.has_value()) {
    return wideA.has_value();
  }
  return foldedBytes(a) < foldedBytes(b);
}

std::string fixedPoint(double value) {
  std::array<char, 400> digits;  // the largest double has 309 before the point
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::fixed, 6)
                       .ptr;
  return {digits.data(), end};
}

}  // namespace plemora
