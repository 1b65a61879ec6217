#pragma once

#include <functional>
#include <memory>

#include "platform/hosted_view.h"
#include "views/quick_view.h"

namespace plemora {

class Appearance;
class ControlCenterLook;
struct SkinState;

/// The module as a Qt Quick item, as wide as whoever shows it makes it: draws a SkinState and takes
/// no input. The QML engine is made when the item is first asked for, and not before. Main thread,
/// once there is a QGuiApplication; windows that show it use the software renderer.
class ModuleScene : public HostedView, public QuickView {
 public:
  static constexpr double height = 64;  ///< points, of a row of Control Center

  /// All outlive the scene.
  ModuleScene(SkinState& state, const ControlCenterLook& look, Appearance& appearance);
  ~ModuleScene() override;
  ModuleScene(const ModuleScene&) = delete;
  ModuleScene& operator=(const ModuleScene&) = delete;

  double fittingHeight() override { return height; }
  /// Its height never changes.
  void setHeightHandler(std::function<void(double height)>) override {}
  /// It has neither animations nor timers, but would be painted again for every change.
  void setVisible(bool isVisible) override;

  QQuickItem* item() override;

 private:
  class Parts;

  SkinState& state_;
  const ControlCenterLook& look_;
  Appearance& appearance_;
  bool isVisible_ = true;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
