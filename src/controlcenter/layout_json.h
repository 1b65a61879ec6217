#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// JSON of Control Center's layout. Keeps the order of members, and numbers digit by digit: one
/// that its value would not give back is held as its text, as a binary value.
using LayoutJson = nlohmann::ordered_json;
using LayoutDictionaries = std::vector<LayoutJson>;  ///< all of them objects

inline constexpr int deepestLayoutNesting = 512;

/// Throws nlohmann's exceptions when the text is no JSON, and std::length_error when it is nested
/// deeper than that.
LayoutJson parseLayoutJson(std::string_view text);

/// Without white space. Numbers that were parsed and not changed come out as they went in.
std::string layoutJsonText(const LayoutJson& value);

/// The member of an object; null when this is no object or has no such member.
const LayoutJson* layoutMember(const LayoutJson& value, const char* key);

/// An integer as JSON tells integers from other numbers (2 but not 2.0), if 64 bits hold it.
std::optional<std::int64_t> layoutInteger(const LayoutJson* value);

}  // namespace plemora
