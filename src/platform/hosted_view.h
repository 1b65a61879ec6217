#pragma once

#include <functional>

namespace plemora {

/// A view that fills a panel, with its own size across. Main thread.
class HostedView {
 public:
  virtual ~HostedView() = default;

  /// Builds what is not built yet, lays out, and says how high the view wants to be, in points; 0
  /// when it does not know.
  virtual double fittingHeight() = 0;

  /// How wide it wants to be, in points; 0: as wide as its window makes it.
  virtual double fittingWidth() { return 0; }

  /// Called, later in the same turn of the main loop or in the next, whenever that height has
  /// changed.
  virtual void setHeightHandler(std::function<void(double height)> handler) = 0;

  /// The most that a window can give it, in points; a view that wants more scrolls. 0: any height.
  virtual void setMaximumHeight(double /*height*/) {}

  /// While it is false the view runs no animation and no timer.
  virtual void setVisible(bool isVisible) = 0;
};

}  // namespace plemora
