#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"

namespace plemora {

/// Pixels from the screen: 32 bits each, 0xffRRGGBB, rows from the top, no padding. Empty when
/// nothing could be had.
struct BackdropImage {
  int width = 0;
  int height = 0;
  double scale = 1;  ///< pixels per point
  std::vector<unsigned int> pixels;

  bool isEmpty() const { return pixels.empty(); }
};

/// What lies behind one of our windows. Main thread.
class BackdropSource {
 public:
  enum class Kind {
    pixels,      ///< capture() gives what is behind
    compositor,  ///< the desktop blurs by itself what a translucent window covers
    none,        ///< neither: an opaque tint has to do
  };

  virtual ~BackdropSource() = default;

  virtual Kind kind() = 0;
  /// What is behind the given rectangle (global points, y up), without our own window.
  virtual BackdropImage capture(const Rect& rect) = 0;
  /// Called after what is behind may have changed, at most 30 times a second, while subscribed.
  [[nodiscard]] virtual Subscription observe(std::function<void()> changed) = 0;
};

}  // namespace plemora
