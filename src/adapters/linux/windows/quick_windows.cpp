#include "adapters/linux/windows/quick_windows.h"

#include <algorithm>
#include <utility>

#include "adapters/linux/windows/quick_surface.h"
#include "adapters/linux/windows/titled_host.h"

namespace plemora {

namespace {

class QuickPanel : public PanelWindow {
 public:
  QuickPanel(PanelWindowOptions options, MainQueue& queue, LinuxScreens& screens,
             BackdropSource& backdrop, PanelHostFactory makeHost)
      : options_(std::move(options)),
        screens_(screens),
        makeHost_(std::move(makeHost)),
        surface_(queue, backdrop, screens, options_.isDark) {}

  ~QuickPanel() override {
    order(WindowOrder::out);
    surface_.detach();
  }

  Rect frame() override { return frame_; }

  void setFrame(const Rect& frame) override {
    frame_ = frame;
    surface_.setFrame(frame);
    if (host_) {
      host_->setFrame(frame);
    }
  }

  double alpha() override { return alpha_; }

  void setAlpha(double alpha) override {
    alpha_ = std::clamp(alpha, 0.0, 1.0);
    showAlpha();
  }

  // All panels are above the windows of others; among each other the last one ordered is.
  void setLevel(int level) override { options_.level = level; }
  int level() override { return options_.level; }

  void setIgnoresMouseEvents(bool ignores) override {
    options_.ignoresMouseEvents = ignores;
    if (host_) {
      host_->setIgnoresMouseEvents(ignores);
    }
  }

  void order(WindowOrder order) override {
    if (order == WindowOrder::out) {
      if (isOnScreen()) {
        host_->hide();
        surface_.setOnScreen(false, isComposited_);
      }
      return;
    }
    if (!host_) {
      host_ = makeHost_(options_);
      host_->setFrame(frame_);
      surface_.attach(host_->window());
    }
    // What is behind has to be looked at before we stand in front of it, and the opacity set
    // before anything is seen.
    isComposited_ = host_->isComposited();
    surface_.setOnScreen(true, isComposited_);
    showAlpha();
    host_->show();
    if (order == WindowOrder::keyAndFront && options_.canBecomeKey) {
      surface_.focusContent();
      host_->takeKeys();
    }
  }

  /// Before it is first shown.
  void setHostFactory(PanelHostFactory makeHost) { makeHost_ = std::move(makeHost); }
  /// The desktop has put it elsewhere; its size is ours.
  void wasMoved(const Rect& frame) {
    frame_.x = frame.x;
    frame_.y = frame.maxY() - frame_.height;
  }

  bool isOnScreen() override { return host_ && host_->isShown(); }
  std::optional<int> screen() override { return screens_.screenShowing(frame_); }
  PanelSurface& surface() override { return surface_; }

 private:
  void showAlpha() {
    if (!host_) {
      return;
    }
    host_->setOpacity(isComposited_ ? alpha_ : 1);
    surface_.setOpacity(isComposited_ ? 1 : alpha_);
  }

  PanelWindowOptions options_;
  LinuxScreens& screens_;
  PanelHostFactory makeHost_;
  Rect frame_;
  double alpha_ = 1;
  bool isComposited_ = true;  ///< when it was last ordered in
  std::unique_ptr<PanelHost> host_;
  QuickSurface surface_;  // goes before its window
};

}  // namespace

QuickWindows::QuickWindows(MainQueue& queue, LinuxScreens& screens, BackdropSource& backdrop,
                           PanelHostFactory makeHost)
    : queue_(queue), screens_(screens), backdrop_(backdrop), makeHost_(std::move(makeHost)) {}

std::unique_ptr<PanelWindow> QuickWindows::makePanel(const PanelWindowOptions& options) {
  return std::make_unique<QuickPanel>(options, queue_, screens_, backdrop_, makeHost_);
}

std::unique_ptr<PanelWindow> QuickWindows::makeTitled(const TitledWindowOptions& options) {
  PanelWindowOptions plain;
  plain.identifier = options.identifier;
  plain.title = options.title;
  plain.isOpaque = true;
  plain.isDark = false;
  auto window =
      std::make_unique<QuickPanel>(plain, queue_, screens_, noBackdrop_, PanelHostFactory());
  window->setHostFactory([options, panel = window.get()](const PanelWindowOptions&) {
    return std::make_unique<TitledHost>(options,
                                        [panel](const Rect& frame) { panel->wasMoved(frame); });
  });
  return window;
}

}  // namespace plemora
