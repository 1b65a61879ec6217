#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "adapters/stage/scripted_effect_view.h"
#include "adapters/stage/scripted_system_glass.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"
#include "platform/screens.h"

namespace plemora {

/// What a stage window shows. Main thread.
class StageSurface : public PanelSurface {
 public:
  explicit StageSurface(MainQueue& queue) : queue_(queue) {}

  bool flipped = false;
  std::shared_ptr<ScriptedEffectView> effect;                     ///< null: none is shown
  std::shared_ptr<ScriptedSystemGlass> systemGlass;               ///< null: none is shown
  std::vector<std::shared_ptr<ScriptedEffectView>> addedEffects;  ///< from the bottom
  std::vector<HostedContent> contents;                            ///< from the bottom
  /// The undermost of them; null: none.
  std::shared_ptr<HostedView> content() const {
    return contents.empty() ? nullptr : contents.front().view;
  }
  std::optional<Rect> container;  ///< none: the whole window
  double containerRadius = 0;
  std::shared_ptr<Layer> layer;
  int layerUpdates = 0;  ///< calls of setLayer

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  std::shared_ptr<EffectView> addEffect(const EffectDescription& description) override;
  void setContainer(const Rect& frame, double cornerRadius) override;
  void setContent(std::shared_ptr<HostedView> view) override;
  void setContents(std::vector<HostedContent> views) override { contents = std::move(views); }
  void setLayer(std::shared_ptr<Layer> value) override;
  bool isFlipped() override { return flipped; }

 private:
  MainQueue& queue_;
  // Backgrounds live as long as the surface, since their owners may still tune them.
  std::vector<std::shared_ptr<EffectView>> effects_;
};

class StageWindows;

/// A window of the stage, which does at once what it is told and keeps a record of it. Main thread;
/// it may outlive its StageWindows.
class StageWindow : public PanelWindow {
 public:
  StageWindow(StageWindows& owner, const PanelWindowOptions& options,
              std::optional<TitledWindowOptions> titled = std::nullopt);
  ~StageWindow() override;

  PanelWindowOptions options;                       ///< as they are now
  const std::optional<TitledWindowOptions> titled;  ///< none: it is a panel
  const std::int64_t number;                        ///< never used again
  std::vector<WindowOrder> orders;                  ///< in order of their calls
  std::vector<Rect> frames;                         ///< every frame set, in order
  bool isKey = false;

  StageSurface& stageSurface() { return surface_; }
  /// When it came forward last, counted as the numbers are; 0: never.
  std::int64_t forwardOrder() const { return forwardOrder_; }
  /// The user presses into it: it comes forward among its level, and takes the keys if it can.
  void pressed();
  /// The user closes it.
  void close();

  /// In a window with a title bar: the button that closes it, and what it can be moved by; y down
  /// from the window's top left corner.
  static constexpr Rect closeButton{13, 13, 14, 14};
  static constexpr double titleBarHeight = 40;

  Rect frame() override { return frame_; }
  void setFrame(const Rect& frame) override;
  double alpha() override { return alpha_; }
  void setAlpha(double alpha) override { alpha_ = alpha; }
  void setLevel(int level) override { options.level = level; }
  int level() override { return options.level; }
  void setIgnoresMouseEvents(bool ignores) override { options.ignoresMouseEvents = ignores; }
  void order(WindowOrder order) override;
  bool isOnScreen() override { return isOnScreen_; }
  std::optional<int> screen() override;
  PanelSurface& surface() override { return surface_; }

 private:
  friend class StageWindows;

  StageWindows* owner_;  // null once it is gone
  StageSurface surface_;
  Rect frame_;
  double alpha_ = 1;
  bool isOnScreen_ = false;
  std::int64_t forwardOrder_ = 0;
};

/// The windows of the stage. Main thread; queue and screens outlive it.
class StageWindows : public Windows {
 public:
  StageWindows(MainQueue& queue, Screens& screens) : queue_(queue), screens_(screens) {}
  ~StageWindows() override;
  StageWindows(const StageWindows&) = delete;
  StageWindows& operator=(const StageWindows&) = delete;

  /// Those that exist, oldest first.
  const std::vector<StageWindow*>& windows() const { return windows_; }
  /// Those on screen, from back to front: by level, then in the order in which they came forward.
  std::vector<StageWindow*> visible() const;
  int made() const { return made_; }

  /// What counts the numbers of windows and the times that they come forward, for who has more
  /// windows than these.
  std::function<std::int64_t()> nextNumber = [last = std::int64_t{0}]() mutable { return ++last; };

  [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(const PanelWindowOptions& options) override;
  [[nodiscard]] std::unique_ptr<PanelWindow> makeTitled(
      const TitledWindowOptions& options) override;

 private:
  friend class StageWindow;

  std::unique_ptr<PanelWindow> keep(std::unique_ptr<StageWindow> window);
  void bringForward(StageWindow* window);

  MainQueue& queue_;
  Screens& screens_;
  std::vector<StageWindow*> windows_;
  std::vector<StageWindow*> stack_;  // back to front, levels aside
  int made_ = 0;
};

}  // namespace plemora
