#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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

/// What an ordinary window with a title bar and a button that closes it is from the start. As
/// NSWindow's properties of the same names. It can be moved by its background, and keeps its size.
struct TitledWindowOptions {
  std::string identifier;
  std::string title;
  /// The content reaches below the title bar, of which nothing but the buttons is to be seen.
  bool hasFullSizeContentView = true;
  bool titlebarAppearsTransparent = true;
  bool isTitleHidden = true;
  bool isMovableByWindowBackground = true;
  /// The user closes the window, which then goes off the screen and stays as it is.
  std::function<void()> windowWillClose{};
};

enum class WindowOrder { front, frontRegardless, keyAndFront, out };

/// One of several views in a window.
struct HostedContent {
  std::shared_ptr<HostedView> view;
  Rect frame;  ///< points of the container, y down; empty: all of it
  double alpha = 1;

  /// A view that is more than half faded lets pointer and keys through to those below.
  bool takesInput() const { return view && alpha > 0.5; }
  /// Where in the window it is, for a container there.
  Rect placeIn(const Rect& container) const {
    return frame.isEmpty() ? container : frame.offset(container.x, container.y);
  }

  bool operator==(const HostedContent&) const = default;
};

/// What a window shows, from the bottom: the background, effects on it, a layer, the content. Main
/// thread.
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

  /// Shows another effect, of what is below it in the window, over the background and the effects
  /// added before. It goes with the background: clearBackground() and another background end it.
  virtual std::shared_ptr<EffectView> addEffect(const EffectDescription& description) = 0;

  /// Where in the window background, effects, layer and content are: a part of it with round,
  /// continuous corners, which clips the content. Points, y down from the window's top left corner.
  /// At first they fill the window, each with its own corners.
  virtual void setContainer(const Rect& frame, double cornerRadius) = 0;

  /// The view fills the container. It is asked for nothing before the window is first laid out or
  /// shown.
  virtual void setContent(std::shared_ptr<HostedView> content) = 0;
  /// Several views from the bottom, each at its place, instead of one. Setting them again moves and
  /// fades those that are shown already.
  virtual void setContents(std::vector<HostedContent> contents) = 0;
  /// A layer of the container's size over the glass, below the content; the surface shows it again
  /// whenever it is set. Null: none.
  virtual void setLayer(std::shared_ptr<Layer> layer) = 0;
  /// Whether the content view's y points down.
  virtual bool isFlipped() = 0;
};

/// A window. Frames in points of the global space, y up; those of a window with a title bar are of
/// its content. Main thread.
class PanelWindow {
 public:
  virtual ~PanelWindow() = default;

  virtual Rect frame() = 0;
  virtual void setFrame(const Rect& frame) = 0;
  virtual double alpha() = 0;  ///< 0...1
  virtual void setAlpha(double alpha) = 0;
  /// At first that of the options. A window that changes it keeps its place among those of its new
  /// level only when it is ordered again.
  virtual void setLevel(int level) = 0;
  virtual int level() = 0;
  virtual void setIgnoresMouseEvents(bool ignores) = 0;
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
  /// The same; only the desktop's own effects and one content are to be seen in it.
  [[nodiscard]] virtual std::unique_ptr<PanelWindow> makeTitled(
      const TitledWindowOptions& options) = 0;
};

}  // namespace plemora
