#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "platform/hosted_view.h"
#include "views/quick_view.h"

namespace plemora {

class ControlCenterLook;
class PanelView;

/// The mixer panel as a Qt Quick item: draws what a PanelView decides and hands the user's gestures
/// to it. In an item that is lower than its content the rows scroll. The QML engine is made when
/// the item or its height is first asked for, and not before. Main thread, once there is a
/// QGuiApplication; windows that show it use the software renderer.
class PanelScene : public HostedView, public QuickView {
 public:
  /// Both outlive the scene.
  PanelScene(PanelView& view, const ControlCenterLook& look);
  ~PanelScene() override;
  PanelScene(const PanelScene&) = delete;
  PanelScene& operator=(const PanelScene&) = delete;

  double fittingHeight() override;
  void setHeightHandler(std::function<void(double height)> handler) override;
  void setVisible(bool isVisible) override;

  QQuickItem* item() override;

  /// Where a place in the item's window (points, y down) lies on the screens (global, y up). The
  /// list of AirPlay receivers opens there; without it the two are taken for the same.
  void setScreenMapping(std::function<Rect(const Rect& inWindow)> toScreen);

  /// Whether the engine has been made.
  bool isBuilt() const { return parts_ != nullptr; }

 private:
  class Parts;
  Parts& parts();

  PanelView& view_;
  const ControlCenterLook& look_;
  std::unique_ptr<Parts> parts_;
  std::function<void(double)> heightHandler_;
  std::function<Rect(const Rect&)> toScreen_;
  bool isVisible_ = false;
};

}  // namespace plemora
