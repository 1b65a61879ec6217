#pragma once

#include <string>

namespace plemora {

/// A picture named by where it is found; the views resolve it when they draw it, so that the
/// engine carries no pixels. Empty means "no picture".
struct Image {
  /// An absolute path of an image file, or a name in the icon theme of the desktop.
  std::string source;

  bool empty() const { return source.empty(); }
  bool operator==(const Image&) const = default;
};

}  // namespace plemora
