#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "platform/accessibility.h"

namespace plemora::accessibility {

// Reads of single attributes. Any thread but the real-time ones; each asks the other application.

/// The value of the attribute if it is a string.
std::optional<std::string> string(AccessibilityElement& element, const std::string& attribute);

/// "AXPosition" and "AXSize"; none unless they are a point and a size. Points, y down from the top
/// left corner of the main screen.
std::optional<Rect> frame(AccessibilityElement& element);

/// The elements that the attribute holds, none of them null; empty when it holds no list of them.
std::vector<AccessibilityElementPointer> elements(AccessibilityElement& element,
                                                  const std::string& attribute);

}  // namespace plemora::accessibility
