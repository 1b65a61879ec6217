#pragma once

#include <memory>

#include "base/geometry.h"
#include "platform/panel_window.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// A translucent capsule over an icon of the menu bar that is not the program's, as the system
/// marks an icon whose menu is open. It takes no clicks. Main thread; windows and look outlive it.
class IconHighlight {
 public:
  IconHighlight(Windows& windows, const ControlCenterLook& look) : windows_(windows), look_(look) {}
  ~IconHighlight();
  IconHighlight(const IconHighlight&) = delete;
  IconHighlight& operator=(const IconHighlight&) = delete;

  /// Marks the icon that fills that frame (global, y up), and no other; at full alpha.
  void show(const Rect& icon);
  void hide();

  /// 0...1, of the whole mark; nothing happens while there is none.
  void setAlpha(double alpha);

 private:
  Windows& windows_;
  const ControlCenterLook& look_;
  std::unique_ptr<PanelWindow> window_;  // null: hidden
};

}  // namespace plemora
