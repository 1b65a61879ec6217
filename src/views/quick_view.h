#pragma once

class QQuickItem;

namespace plemora {

/// A hosted view that is drawn with Qt Quick, so that a window, or another scene, can put it among
/// its items. Main thread.
class QuickView {
 public:
  virtual ~QuickView() = default;

  /// The view's item; built at the first call. The view owns it and whoever shows
  /// it gives it a parent item and a height. Null only when the view could not be built.
  virtual QQuickItem* item() = 0;
};

}  // namespace plemora
