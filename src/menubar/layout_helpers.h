#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "platform/hosted_view.h"

namespace plemora {

/// Keeps things at the top while a window grows or shrinks below them.
struct PinTop {
  /// The window's frame at another height, y up: the top edge stays.
  static Rect frame(const Rect& frame, double height);
  /// Where content of its own height lies in a window, in the window's space.
  static Rect content(const Size& window, double contentHeight, bool isFlipped);
};

/// Reports how high a view wants to be whenever that changes. Main thread.
class HeightReader {
 public:
  HeightReader(std::shared_ptr<HostedView> view, std::function<void(double height)> report);
  ~HeightReader();
  HeightReader(const HeightReader&) = delete;
  HeightReader& operator=(const HeightReader&) = delete;

 private:
  std::shared_ptr<HostedView> view_;
};

/// The click that reaches a window which is not the active one acts on the view at once, rather
/// than activating the window alone.
struct FirstMouseHostingView {
  static constexpr bool acceptsFirstMouse = true;
};

}  // namespace plemora
