#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "platform/hosted_view.h"
#include "views/quick_view.h"

class QQuickItem;

namespace plemora {

class PanelView;

/// The mixer panel as a Qt Quick item: draws what a PanelView decides and hands the user's gestures
/// to it. The QML engine is made when the item or its height is first asked for, and not before.
/// Main thread, after the QGuiApplication was made with the software renderer.
class PanelScene : public HostedView, public QuickView {
 public:
  /// The view outlives the scene.
  explicit PanelScene(PanelView& view);
  ~PanelScene() override;
  PanelScene(const PanelScene&) = delete;
  PanelScene& operator=(const PanelScene&) = delete;

  double fittingHeight() override;
  void setHeightHandler(std::function<void(double height)> handler) override;
  void setVisible(bool isVisible) override;

  QQuickItem* item() override;

  /// The height in points beyond which the content scrolls instead of growing; none while it is 0.
  void setMaximumHeight(double height);

  /// Where a place in the scene (points, y down) lies on the screens (global, y up). Needed for
  /// the list of AirPlay receivers to open at its row.
  void setScreenMapping(std::function<Rect(const Rect& inScene)> toScreen);

  /// Whether the engine has been made.
  bool isBuilt() const;

 private:
  class Parts;

  PanelView& view_;
  std::unique_ptr<Parts> parts_;
  std::function<void(double)> heightHandler_;
  std::function<Rect(const Rect&)> toScreen_;
  double maximumHeight_ = 0;
  bool isVisible_ = false;
};

}  // namespace plemora
