#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/geometry.h"
#include "platform/effect_view.h"
#include "platform/hosted_view.h"
#include "platform/layer.h"

namespace plemora {

/// Whether windows share spaces, and so on; the values are those of NSWindow.CollectionBehavior.
inline constexpr unsigned windowCanJoinAllSpaces = 0x1;
inline constexpr unsigned windowStationary = 0x10;
inline constexpr unsigned windowIgnoresCycle = 0x40;
inline constexpr unsigned windowFullScreenAuxiliary = 0x100;

/// NSPopUpMenuWindowLevel.
inline constexpr int popUpMenuWindowLevel = 101;

/// What a borderless panel is from the start. As NSPanel's properties of the same names.
struct PanelWindowOptions {
  std::string identifier;
  std::string title;  ///< for assistive technology and window lists
  int level = 0;
  unsigned collectionBehavior = 0;
  int animationBehavior = 0;  ///< 2: none
  bool isOpaque = false;
  bool hasShadow = false;
  bool isMovable = false;
  bool hidesOnDeactivate = false;
  bool isReleasedWhenClosed = false;
  bool ignoresMouseEvents = false;
  bool canBecomeKey = true;
  bool isDark = true;  ///< always in the dark appearance; otherwise the system's
};

enum class WindowOrder { front, frontRegardless, keyAndFront, out };

/// What a window shows, from the bottom: the background, the content, the layers. Main thread.
class PanelSurface {
 public:
  virtual ~PanelSurface() = default;

  /// Shows nothing behind the content.
  virtual void clearBackground() = 0;
  /// Shows the system's visual effect; whoever holds the result may tune it. It lives as long as
  /// the surface at least.
  virtual std::shared_ptr<EffectView> showEffect(const EffectDescription& description) = 0;
  /// Shows the system's own glass.
  virtual std::shared_ptr<SystemGlassView> showSystemGlass() = 0;

  /// The view fills the window. It is asked for nothing before the window is first laid out or
  /// shown.
  virtual void setContent(std::shared_ptr<HostedView> content) = 0;
  /// A layer of the window's size on top of everything; the surface shows it again whenever it is
  /// set. Null: none.
  virtual void setLayer(std::shared_ptr<Layer> layer) = 0;
  /// Whether the content view's y points down.
  virtual bool isFlipped() = 0;
};

/// A borderless window. Frames in points of the global space, y up. Main thread.
class PanelWindow {
 public:
  virtual ~PanelWindow() = default;

  virtual Rect frame() = 0;
  virtual void setFrame(const Rect& frame) = 0;
  virtual double alpha() = 0;  ///< 0...1
  virtual void setAlpha(double alpha) = 0;
  virtual void order(WindowOrder order) = 0;
  virtual bool isOnScreen() = 0;
  /// Screen::id of the screen that shows most of it; none while there is none.
  virtual std::optional<int> screen() = 0;
  virtual PanelSurface& surface() = 0;
};

class Windows {
 public:
  virtual ~Windows() = default;

  /// Never null; the window costs little until it is shown.
  [[nodiscard]] virtual std::unique_ptr<PanelWindow> makePanel(
      const PanelWindowOptions& options) = 0;
};

}  // namespace plemora
