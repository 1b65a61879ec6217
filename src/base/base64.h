#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace plemora {

/// The bytes as base64 (RFC 4648) with padding and without line breaks.
std::string encodeBase64(std::string_view bytes);

/// None unless the text is base64 throughout: padded, nothing before, between or behind. Bits that
/// the last digit has too many are passed over.
std::optional<std::string> decodeBase64(std::string_view text);

}  // namespace plemora
