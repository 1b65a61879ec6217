#include "onboarding/ripple_panel.h"

#include "platform/window_list.h"

namespace plemora {

namespace {

constexpr double fadeInTime = 0.25;  // seconds
constexpr double fadeOutTime = 0.2;

constexpr unsigned windowTransient = 0x8;  // of NSWindow.CollectionBehavior

PanelWindowOptions rippleOptions() {
  PanelWindowOptions options;
  options.identifier = "ripple";
  options.level = statusWindowLevel + 1;
  options.collectionBehavior = windowCanJoinAllSpaces | windowTransient;
  options.animationBehavior = 2;
  options.ignoresMouseEvents = true;
  options.canBecomeKey = false;
  return options;
}

}  // namespace

RipplePanel::RipplePanel(const OnboardingServices& services) : services_(services) {}

RipplePanel::~RipplePanel() {
  drop();
}

void RipplePanel::drop() {
  if (shown_) {
    shown_->panel->order(WindowOrder::out);
    shown_->view->setVisible(false);
    shown_.reset();
  }
}

bool RipplePanel::makeShown() {
  if (shown_) {
    return true;
  }
  const auto view = services_.contents.makeRipple ? services_.contents.makeRipple() : nullptr;
  if (!view) {
    return false;
  }
  const MenuBarServices& desktop = services_.menuBar;
  const std::shared_ptr<PanelWindow> panel = desktop.windows.makePanel(rippleOptions());
  panel->surface().clearBackground();
  panel->surface().setContent(view);
  panel->setAlpha(0);
  shown_.emplace(Shown{view, panel, WindowAnimation(panel, desktop.displayLinks, desktop.clock)});
  return true;
}

void RipplePanel::show(const Rect& around) {
  const bool wasShown = isShown();
  if (!makeShown()) {
    return;
  }
  const Rect frame{around.midX() - side / 2, around.midY() - side / 2, side, side};
  if (shown_->panel->frame() != frame) {
    shown_->panel->setFrame(frame);
  }
  if (wasShown) {
    return;
  }
  isHiding_ = false;
  shown_->view->setVisible(true);
  shown_->panel->order(WindowOrder::frontRegardless);
  shown_->animation.animateAlpha(1, fadeInTime);
}

void RipplePanel::hide() {
  if (!isShown()) {
    return;
  }
  isHiding_ = true;
  shown_->animation.animateAlpha(0, fadeOutTime, [this] {
    isHiding_ = false;
    drop();
  });
}

}  // namespace plemora
