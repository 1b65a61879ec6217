#include "controlcenter/accessibility_helpers.h"

#include <variant>

namespace plemora::accessibility {

namespace {

template <typename T>
std::optional<T> read(AccessibilityElement& element, const std::string& attribute) {
  auto value = element.attribute(attribute);
  T* held = value ? std::get_if<T>(&*value) : nullptr;
  return held != nullptr ? std::optional(std::move(*held)) : std::nullopt;
}

}  // namespace

std::optional<std::string> string(AccessibilityElement& element, const std::string& attribute) {
  return read<std::string>(element, attribute);
}

std::optional<Rect> frame(AccessibilityElement& element) {
  const auto position = read<Point>(element, "AXPosition");
  const auto size = position ? read<Size>(element, "AXSize") : std::nullopt;
  if (!size) {
    return std::nullopt;
  }
  return Rect{position->x, position->y, size->width, size->height};
}

std::vector<AccessibilityElementPointer> elements(AccessibilityElement& element,
                                                  const std::string& attribute) {
  auto list = read<std::vector<AccessibilityElementPointer>>(element, attribute);
  if (!list) {
    return {};
  }
  std::erase(*list, nullptr);
  return *std::move(list);
}

}  // namespace plemora::accessibility
