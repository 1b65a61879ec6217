#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/geometry.h"
#include "platform/hosted_view.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"

namespace plemora {

class Appearance;
class ControlCenterLook;
class LinuxDesktop;
class PanelView;
struct SetupView;

/// What shows panels, on the desktop that the QGuiApplication runs on. Main thread.
class PanelParts {
 public:
  /// Where a place in the scene (points, y down) lies on the screens (global, y up).
  using ScreenMapping = std::function<Rect(const Rect& inScene)>;

  virtual ~PanelParts() = default;

  /// They outlive every panel.
  virtual Windows& windows() = 0;
  /// The view and the look outlive the scene.
  virtual std::shared_ptr<HostedView> makeScene(PanelView& view, const ControlCenterLook& look,
                                                ScreenMapping toScreen) = 0;
  /// Of setup, on a ground of its own. Both outlive it.
  virtual std::shared_ptr<HostedView> makeSetup(SetupView& view, Appearance& appearance) = 0;
};

/// All that draws scenes. It stands in a module of its own, which is loaded when the panel opens
/// for the first time: the libraries that it brings along are a fifth of what a program without it
/// takes.
class PanelModule {
 public:
  virtual ~PanelModule() = default;

  /// Both outlive the parts.
  virtual std::unique_ptr<PanelParts> makeParts(LinuxDesktop& desktop, MainQueue& queue) = 0;
};

/// Loads the module. Null when that fails; the problem says why.
PanelModule* loadPanelModule(std::string& problem);

}  // namespace plemora
