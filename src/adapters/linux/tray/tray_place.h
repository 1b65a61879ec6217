#pragma once

#include <QPoint>
#include <QRect>
#include <optional>

#include "adapters/linux/tray/tray_icon.h"
#include "adapters/linux/tray/x11_link.h"

namespace plemora {

/// Where an item of the bus probably is: its host does not say, but a click tells where the pointer
/// was, and a panel's window how thick the panel is. Pixels of the desktop, y down. Main thread.
class TrayPlace {
 public:
  /// Null where there is no X server; else it must outlive this object.
  explicit TrayPlace(X11Link* x11) : x11_(x11) {}

  /// The item was clicked; where, as the host says.
  void clicked(QPoint reported);

  /// Of the last click, if what it was seen on is still there. Before the first click the end of
  /// the panel, where trays are. None when nothing at all is known.
  std::optional<QRect> frame();

  /// Whether the panel behind the item is dark or light; none when that cannot be seen.
  std::optional<TrayShade> shade();

  /// The square of the panel's thickness around the point, inside the panel.
  static QRect squareIn(const QRect& panel, QPoint point);

 private:
  using Panel = X11Link::Dock;
  std::optional<Panel> panelAt(QPoint point);
  /// One beyond whose end the point lies.
  std::optional<Panel> panelInLine(QPoint point);
  std::optional<Panel> anyPanel();

  X11Link* x11_;
  std::optional<QPoint> click_;
};

}  // namespace plemora
