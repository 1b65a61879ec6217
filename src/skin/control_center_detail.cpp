#include "skin/control_center_detail.h"

#include <cmath>
#include <utility>

#include "controlcenter/control_center_locator.h"
#include "menubar/panel_placement.h"
#include "menubar/window_animation.h"
#include "platform/clock.h"
#include "platform/workspace.h"
#include "skin/detail_motion.h"
#include "skin/detail_placement.h"
#include "skin/skin_overlay.h"

namespace plemora {

namespace {

constexpr const char* soundSettingsURL =
    "x-apple.systempreferences:com.apple.Sound-Settings.extension";

constexpr int mainScreen = -1;
constexpr double sameClickTime = 0.6;  // seconds for which a click belongs to one before it
constexpr double longestWait = 0.6;    // seconds for Control Center to be back
constexpr double iconMargin = 2;       // points around the icon that still count as the icon

/// Above Control Center's own panel.
int levelOver(const ControlCenterLocator& locator) {
  const auto panel = locator.panelWindow();
  return panel ? SkinOverlay::levelAbove(panel->layer) : popUpMenuWindowLevel;
}

void call(const std::function<void()>& callback) {
  if (callback) {
    callback();
  }
}

}  // namespace

ControlCenterDetail::ControlCenterDetail(MixerModel& model, SkinState& skinState,
                                         DetailServices services)
    : model_(model),
      skinState_(skinState),
      services_(std::move(services)),
      panelView_(
          model,
          {services_.menuBar.defaults, services_.menuBar.clock, services_.menuBar.routePicker,
           services_.menuBar.mainQueue},
          [this] {
            dismiss();
            call(onSetUp);
          },
          [this] {
            dismiss();
            services_.menuBar.workspace.openURL(soundSettingsURL);
          }),
      iconHighlight_(services_.menuBar.windows, services_.menuBar.look),
      appearance_(services_.menuBar.look.observe([this](bool) { followAppearance(); })) {
  followAppearance();
}

ControlCenterDetail::~ControlCenterDetail() {
  clear();
}

void ControlCenterDetail::followAppearance() {
  const bool isDark = services_.menuBar.look.isDark();
  panelView_.isDark.set(isDark);
  if (panel_) {
    panel_->setDark(isDark);
  }
}

bool ControlCenterDetail::makeViews() {
  if (detailHost_) {
    return true;
  }
  detailHost_ = services_.makeContent(panelView_);
  if (!detailHost_) {
    return false;
  }
  heightReader_.emplace(detailHost_, [this](double height) { contentHeightChanged(height); });
  moduleHost_ = services_.makeModuleView(skinState_);
  return true;
}

void ControlCenterDetail::build(const Rect& moduleRect) {
  clear();
  if (!makeViews()) {
    return;
  }
  model_.refreshPermission();
  moduleFrame_ = moduleRect;
  detailHost_->setMaximumHeight(DetailPlacement::room(screen()));
  if (const double height = detailHost_->fittingHeight(); height > 0) {
    contentHeight_ = height;
  }
  panelFrame_ = DetailPlacement::panelFrame(moduleFrame_, screen(), contentHeight_);
  phase_ = Phase::expanding;
  panel_ = std::make_unique<DetailPanel>(services_.menuBar.windows, services_.menuBar.mainQueue,
                                         services_.menuBar.look, levelOver(services_.locator),
                                         moduleHost_, detailHost_);
  panel_->setFrames(moduleFrame_, panelFrame_);
  panel_->apply(moduleFrame_, DetailPanel::moduleRadius, 0);
  // Unseen as yet, so that it is drawn by the time the button is let go.
  panel_->window().order(WindowOrder::frontRegardless);
}

void ControlCenterDetail::present(const Rect& moduleRect) {
  if (!panel_ || moduleFrame_ != moduleRect) {
    tearDown();
    build(moduleRect);
  }
  if (!panel_) {
    return;
  }
  prepared = false;
  call(willPresent);
  if (const auto icon = services_.locator.iconFrame()) {
    iconHighlight_.show(*icon);
  }
  panelView_.setVisible(true);
  detailHost_->setVisible(true);
  moduleHost_->setVisible(true);
  PanelWindow& window = panel_->window();
  window.setIgnoresMouseEvents(false);
  window.setAlpha(1);
  panel_->apply(moduleRect, DetailPanel::moduleRadius, 0);
  window.order(WindowOrder::frontRegardless);
  start(Phase::expanding);
  fromRect_ = moduleRect;
  toRect_ = panelFrame_;
  fromRadius_ = DetailPanel::moduleRadius;
  toRadius_ = DetailPanel::panelRadius;
  installMonitors();
}

bool ControlCenterDetail::canClose() const {
  return panel_ && panel_->window().isOnScreen() && !prepared && phase_ != Phase::collapsing &&
         phase_ != Phase::fading;
}

void ControlCenterDetail::collapse() {
  if (!canClose()) {
    return;
  }
  monitors_.clear();
  start(Phase::collapsing);
  toRect_ = moduleFrame_;
  toRadius_ = DetailPanel::moduleRadius;
  waitingForControlCenter_ = true;
  panel_->window().order(WindowOrder::out);
}

void ControlCenterDetail::dismiss() {
  if (canClose()) {
    monitors_.clear();
    start(Phase::fading);
  }
}

void ControlCenterDetail::tearDown() {
  clear();
  call(onClosed);
}

/// Leaves nothing that runs or is to be seen; the views are kept.
void ControlCenterDetail::clear() {
  link_.reset();
  monitors_.clear();
  iconHighlight_.hide();
  waitingForControlCenter_ = false;
  prepared = false;
  if (!panel_) {
    return;
  }
  panel_->window().order(WindowOrder::out);
  panel_.reset();
  panelView_.setVisible(false);
  detailHost_->setVisible(false);
  moduleHost_->setVisible(false);
}

void ControlCenterDetail::contentHeightChanged(double height) {
  if (!panel_ || phase_ == Phase::collapsing || phase_ == Phase::fading || !(height > 0) ||
      std::abs(height - contentHeight_) < 0.5) {
    return;
  }
  contentHeight_ = height;
  panelFrame_ = DetailPlacement::resized(panelFrame_, screen(), height);
  panel_->setFrames(moduleFrame_, panelFrame_);
  // While it grows it goes on to where it was going, and from there to the new height.
  if (phase_ != Phase::expanding) {
    start(Phase::resizing);
    toRect_ = panelFrame_;
  }
}

void ControlCenterDetail::start(Phase phase) {
  phase_ = phase;
  phaseStart_ = now();
  fromRect_ = panel_->containerFrame();
  fromRadius_ = panel_->containerRadius();
  startLink();
}

void ControlCenterDetail::startLink() {
  if (!link_) {
    link_ = services_.menuBar.displayLinks.makeLink(panel_->window().screen().value_or(mainScreen),
                                                    [this] { tick(); });
  }
}

double ControlCenterDetail::now() const {
  return services_.menuBar.clock.mediaTime();
}

const Screen* ControlCenterDetail::screen() const {
  return PanelPlacement::screen(services_.menuBar.screens.screens().get(), moduleFrame_);
}

void ControlCenterDetail::installMonitors() {
  monitors_.clear();
  InputEvents& events = services_.menuBar.inputEvents;
  monitors_.push_back(events.monitorGlobal(leftMouseDownMask | rightMouseDownMask,
                                           [this](const InputEvent&) { clickedElsewhere(); }));
  monitors_.push_back(events.monitorLocal(keyDownMask, [this](const InputEvent& event) {
    if (event.keyCode != escapeKeyCode) {
      return false;
    }
    dismiss();
    return true;
  }));
}

/// Whether a click now is one that something else has taken: the press that opened the panel, or
/// one in the list of AirPlay receivers.
bool ControlCenterDetail::isHandledClick() const {
  const auto isRecent = [this](double time) { return now() - time < sameClickTime; };
  const auto picker = panelView_.lastPickerClosed();
  return panelView_.isPickerOpen() || (picker && isRecent(*picker)) ||
         isRecent(services_.lastHandledPress());
}

void ControlCenterDetail::clickedElsewhere() {
  if (isHandledClick()) {
    return;
  }
  const auto icon = services_.locator.iconFrame();
  if (icon && icon->inset(-iconMargin, -iconMargin)
                  .contains(services_.menuBar.inputEvents.pointerLocation())) {
    collapse();  // the click opens Control Center
  } else {
    dismiss();
  }
}

void ControlCenterDetail::tick() {
  const double elapsed = now() - phaseStart_;
  switch (phase_) {
    case Phase::expanding:
      expand(elapsed);
      break;
    case Phase::open:
      link_.reset();
      break;
    case Phase::collapsing:
      shrink(elapsed);
      break;
    case Phase::fading:
      fade(elapsed);
      break;
    case Phase::resizing:
      resize(elapsed);
      break;
  }
}

void ControlCenterDetail::expand(double elapsed) {
  const double p = DetailMotion::expanding(elapsed);
  if (p <= DetailMotion::arrival) {
    panel_->apply(WindowAnimation::mix(fromRect_, toRect_, p),
                  WindowAnimation::mix(fromRadius_, toRadius_, p), p);
    return;
  }
  settle();
  panel_->window().order(WindowOrder::keyAndFront);
  if (panelFrame_ != toRect_) {
    start(Phase::resizing);
    toRect_ = panelFrame_;
  }
}

void ControlCenterDetail::resize(double elapsed) {
  const double p = DetailMotion::resizing(elapsed);
  if (p <= DetailMotion::arrival) {
    panel_->apply(WindowAnimation::mix(fromRect_, toRect_, p), DetailPanel::panelRadius, 1);
    return;
  }
  settle();
  panel_->fitWindow();
}

void ControlCenterDetail::settle() {
  panel_->apply(toRect_, DetailPanel::panelRadius, 1);
  phase_ = Phase::open;
  link_.reset();
}

void ControlCenterDetail::shrink(double elapsed) {
  if (waitingForControlCenter_) {
    if (services_.locator.panelWindow() || elapsed >= longestWait) {
      beBackInControlCenter();
    }
    return;
  }
  const double p = DetailMotion::collapsing(elapsed);
  if (p <= DetailMotion::arrival) {
    panel_->apply(WindowAnimation::mix(fromRect_, toRect_, p),
                  WindowAnimation::mix(fromRadius_, toRadius_, p), -p);
    return;
  }
  panel_->apply(toRect_, toRadius_, -1);
  call(onCollapseFinished);
  tearDown();
}

void ControlCenterDetail::beBackInControlCenter() {
  waitingForControlCenter_ = false;
  iconHighlight_.hide();  // Control Center shows its own again
  PanelWindow& window = panel_->window();
  window.setLevel(levelOver(services_.locator));
  window.order(WindowOrder::front);
  start(Phase::collapsing);
}

void ControlCenterDetail::fade(double elapsed) {
  const double alpha = DetailMotion::fadingAlpha(elapsed);
  panel_->window().setAlpha(alpha);
  iconHighlight_.setAlpha(alpha);
  if (alpha <= 0) {
    tearDown();
  }
}

}  // namespace plemora
