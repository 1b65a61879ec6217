#pragma once

#include <functional>
#include <memory>
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

  /// The one that stands before that window of the stage; null: it was made elsewhere.
  GlassWindow* before(const PanelWindow* inner) const;

  std::vector<GlassWindow*> onScreen() const;

  /// Called when the glass or the content of one of them looks different than when last drawn.
  void setChangeHandler(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  friend class GlassWindow;

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
  GlassView& glass() { return *glass_; }
  StageContent* content() { return content_.get(); }  ///< null: none, or it cannot be drawn
  bool isStale() const { return isStale_ || (content_ && content_->isStale()); }
  /// It has been drawn as it is now.
  void drawn() { isStale_ = false; }

  Rect frame() override { return inner_->frame(); }
  void setFrame(const Rect& frame) override { inner_->setFrame(frame); }
  double alpha() override { return inner_->alpha(); }
  void setAlpha(double alpha) override { inner_->setAlpha(alpha); }
  void order(WindowOrder order) override;
  bool isOnScreen() override { return inner_->isOnScreen(); }
  std::optional<int> screen() override { return inner_->screen(); }
  PanelSurface& surface() override { return *this; }

 private:
  friend class GlassWindows;

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  void setContent(std::shared_ptr<HostedView> content) override;
  void setLayer(std::shared_ptr<Layer> layer) override;
  bool isFlipped() override { return true; }

  void change();

  GlassWindows* owner_;  // null once it is gone
  std::unique_ptr<PanelWindow> inner_;
  PanelWindowOptions options_;
  std::unique_ptr<GlassView> glass_;
  std::shared_ptr<StageContent> content_;
  bool isStale_ = true;
};

}  // namespace plemora
