#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "main/stage/stage_content.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"

namespace plemora {

class GlassView;
class GlassWindow;

/// The windows of the stage with glass that can be seen: what the program gets instead of the
/// stage's own, which they stand before and which keep all that is not seen. GUI thread.
class GlassWindows : public Windows {
 public:
  /// Both outlive the windows and every panel.
  GlassWindows(Windows& inner, MainQueue& queue) : inner_(inner), queue_(queue) {}
  ~GlassWindows() override;
  GlassWindows(const GlassWindows&) = delete;
  GlassWindows& operator=(const GlassWindows&) = delete;

  [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(const PanelWindowOptions& options) override;
  [[nodiscard]] std::unique_ptr<PanelWindow> makeTitled(
      const TitledWindowOptions& options) override;

  /// The one that stands before that window of the stage; null: it was made elsewhere.
  GlassWindow* before(const PanelWindow* inner) const;

  std::vector<GlassWindow*> onScreen() const;

  /// Called when the glass or the content of one of them looks different than when last drawn.
  void setChangeHandler(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  friend class GlassWindow;

  std::unique_ptr<PanelWindow> keep(std::unique_ptr<GlassWindow> window);

  Windows& inner_;
  MainQueue& queue_;
  std::vector<GlassWindow*> windows_;
  std::function<void()> changed_;
};

/// One of them. It may outlive its GlassWindows.
class GlassWindow : public PanelWindow, private PanelSurface {
 public:
  GlassWindow(GlassWindows& owner, std::unique_ptr<PanelWindow> inner,
              const PanelWindowOptions& options);
  ~GlassWindow() override;

  const PanelWindowOptions& options() const { return options_; }
  /// It has a title bar, which the desktop draws over it, and round corners.
  bool isTitled = false;
  static constexpr double titledRadius = 12;
  GlassView& glass() { return *glass_; }
  /// A view in it, and where: in points of the window, y down.
  struct Content {
    std::shared_ptr<StageContent> view;
    Rect place;
    double alpha = 1;
  };
  /// From the bottom; those that cannot be drawn are left out.
  std::vector<Content> contents();
  /// What clips them; none: the window.
  const std::optional<RoundedRect>& container() const { return container_; }
  bool isStale() const;
  /// It has been drawn as it is now.
  void drawn() { isStale_ = false; }

  Rect frame() override { return inner_->frame(); }
  void setFrame(const Rect& frame) override;
  double alpha() override { return inner_->alpha(); }
  void setAlpha(double alpha) override { inner_->setAlpha(alpha); }
  void order(WindowOrder order) override;
  void setLevel(int level) override { inner_->setLevel(level); }
  int level() override { return inner_->level(); }
  void setIgnoresMouseEvents(bool ignores) override { inner_->setIgnoresMouseEvents(ignores); }
  bool isOnScreen() override { return inner_->isOnScreen(); }
  std::optional<int> screen() override { return inner_->screen(); }
  PanelSurface& surface() override { return *this; }

 private:
  friend class GlassWindows;

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  std::shared_ptr<EffectView> addEffect(const EffectDescription& description) override;
  void setContainer(const Rect& frame, double cornerRadius) override;
  void setContent(std::shared_ptr<HostedView> content) override;
  void setContents(std::vector<HostedContent> contents) override;
  void setLayer(std::shared_ptr<Layer> layer) override;
  bool isFlipped() override { return true; }

  Rect placeOf(const HostedContent& content);
  Rect frameOf(const HostedView& view);
  /// The window's keys go to the topmost content that takes input.
  void updateFocus();
  void change();

  GlassWindows* owner_;  // null once it is gone
  std::unique_ptr<PanelWindow> inner_;
  PanelWindowOptions options_;
  std::unique_ptr<GlassView> glass_;
  std::vector<HostedContent> contents_;
  std::optional<RoundedRect> container_;
  bool hasKeys_ = false;
  bool isStale_ = true;
};

}  // namespace plemora
