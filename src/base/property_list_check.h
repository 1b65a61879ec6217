#pragma once

#include <string_view>

namespace plemora {

/// Throws PropertyListError unless the bytes are a binary property list that libplist reads
/// without running out of stack or memory (its reader and its release go down recursively, and
/// follow every reference to a shared value anew) and keeps whole (it turns sets into arrays, ends
/// texts at a zero and drops numbers of more than 64 bits and texts that are no Unicode).
void checkBinaryPropertyList(std::string_view bytes);

/// The same for the XML form, whose text libplist takes as it comes.
void checkXMLPropertyList(std::string_view bytes);

/// Whether the bytes are UTF-8 without a zero in them.
bool isPropertyListText(std::string_view bytes);

}  // namespace plemora
