#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "platform/panel_window.h"

class QQuickWindow;

namespace plemora {

/// The window of one panel, as its kind of display shows it. Made when the panel is first shown.
/// Main thread.
class PanelHost {
 public:
  virtual ~PanelHost() = default;

  /// What the scene is put into. Visible to the toolkit or not, but always the target of the
  /// panel's input events.
  virtual QQuickWindow& window() = 0;

  /// Global points. Displays whose windows cannot place themselves take the size alone.
  virtual void setFrame(const Rect& frame) = 0;
  /// Shows it above other windows; again: raises it.
  virtual void show() = 0;
  /// Hides it, and gives the keys back if it has them.
  virtual void hide() = 0;
  virtual bool isShown() = 0;
  /// Makes it the window that keys go to, once it is shown.
  virtual void takeKeys() = 0;

  /// Whether pixels may be translucent and windows fade at this time.
  virtual bool isComposited() = 0;
  /// Whether the pointer goes through it to what is below.
  virtual void setIgnoresMouseEvents(bool ignores) = 0;

  /// 0...1, of the whole window; does something only where isComposited().
  virtual void setOpacity(double opacity) = 0;
};

using PanelHostFactory = std::function<std::unique_ptr<PanelHost>(const PanelWindowOptions&)>;

}  // namespace plemora
