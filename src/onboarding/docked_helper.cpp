#include "onboarding/docked_helper.h"

#include <array>
#include <cmath>
#include <utility>

#include "controlcenter/control_center_locator.h"
#include "menubar/layout_helpers.h"
#include "onboarding/dock_placement.h"
#include "onboarding/helper_page.h"
#include "onboarding/helper_panel.h"
#include "onboarding/ripple_panel.h"
#include "platform/clock.h"
#include "platform/file_drag.h"
#include "platform/system_info.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

using Kind = HelperState::Kind;

constexpr double usualHeight = 160;  // points, of content that does not know its own
constexpr double drop = 34;          // out of the button

// Seconds.
constexpr double fallbackTime = 3.0;
constexpr double controlCenterInterval = 0.1;
constexpr double retryTime = 1.5;  // in which the change is to be seen once edit mode was left

std::array<Published<bool>*, 7> flagsOf(HelperState& state) {
  return {&state.isDragging,        &state.awaitingApproval,     &state.succeeded,
          &state.settingsMissing,   &state.controlCenterEditing, &state.controlCenterOpen,
          &state.controlCenterRetry};
}

template <typename T>
void setIfChanged(Published<T>& published, const T& value) {
  if (published.get() != value) {
    published.set(value);
  }
}

}  // namespace

DockedHelper::DockedHelper(const OnboardingServices& services, RipplePanel& ripple)
    : services_(services), ripple_(ripple), tracker_(services) {
  tracker_.onChange = [this](const auto& frame) { settingsMoved(frame); };
  connectView();
}

DockedHelper::~DockedHelper() {
  stopFollowing();
}

void DockedHelper::connectView() {
  view_.onBack = [this] {
    if (onBack && !isLeaving_) {
      onBack();
    }
  };
  view_.onDone = [this] {
    if (onDone && !isLeaving_) {
      onDone();
    }
  };
  view_.onAskInstead = [this] {
    if (isPresented() && !isLeaving_) {
      state.awaitingApproval.set(true);
      if (onAskInstead) {
        onAskInstead();
      }
    }
  };
  view_.onDrag = [this] { dragIcon(); };

  const auto update = [this](const auto&) { updatePage(); };
  for (Published<bool>* flag : flagsOf(state)) {
    stateSubscriptions_.push_back(flag->subscribe(update));
  }
  stateSubscriptions_.push_back(state.kind.subscribe(update));
  stateSubscriptions_.push_back(state.placement.subscribe(update));
}

void DockedHelper::updatePage() {
  setIfChanged(view_.page, helperPage(state));
}

void DockedHelper::resetState(Kind kind) {
  for (Published<bool>* flag : flagsOf(state)) {
    setIfChanged(*flag, false);
  }
  setIfChanged(state.placement, HelperState::Placement::under);
  setIfChanged(state.kind, kind);
  updatePage();
}

const std::vector<Screen>& DockedHelper::screens() const {
  return services_.menuBar.screens.screens().get();
}

GlassPanel* DockedHelper::panel() const {
  return panel_ ? &panel_->window() : nullptr;
}

void DockedHelper::present(Kind from, const Rect& rect) {
  stopFollowing();
  isLeaving_ = false;
  isDocked_ = false;
  settings_.reset();
  editEnd_.reset();
  resetState(from);
  if (!panel_) {
    panel_ = HelperPanel::make(services_, view_, [this](double height) { heightChanged(height); });
  }
  if (!panel_) {
    return;
  }
  const bool isControlCenter = from == Kind::controlCenter;
  const double fitting = panel_->fittingHeight();
  height_ = fitting > 0 ? fitting : usualHeight;
  origin_ = {rect.midX() - DockPlacement::width / 2, rect.midY() - height_ / 2,
             DockPlacement::width, height_};
  trip_ = std::make_shared<int>();
  panel_->appear(origin_, isControlCenter ? popUpMenuWindowLevel : HelperPanel::floatingLevel);
  panel_->spring(origin_.offset(0, -(height_ / 2 + drop)), 1);
  if (isControlCenter) {
    startControlCenterTracking();
  } else {
    followSettings();
  }
}

void DockedHelper::followSettings() {
  tracker_.start();
  activationObserver_ =
      services_.menuBar.workspace.observeActivation([this](std::int32_t pid) { activated(pid); });
  fallbackWork_ = services_.menuBar.mainQueue.after(fallbackTime, [this] { standAlone(); });
}

void DockedHelper::stopFollowing() {
  tracker_.stop();
  if (controlCenterTimer_) {
    controlCenterTimer_.reset();
    ripple_.hide();
  }
  fallbackWork_.reset();
  success_.reset();
  activationObserver_ = {};
  trip_.reset();
}

void DockedHelper::activated(std::int32_t pid) {
  const auto application = services_.menuBar.workspace.runningApplication(pid);
  const bool isSettings =
      application && application->bundleID == SettingsWindowTracker::settingsBundleID;
  if (isSettings || pid == services_.ownPid) {
    panel_->window().orderFrontRegardless();
  } else {
    panel_->window().orderOut();
  }
}

/// System Settings has not come: the helper is to be seen all the same, out of the way of setup.
void DockedHelper::standAlone() {
  fallbackWork_.reset();
  state.settingsMissing.set(true);
  panel_->spring(DockPlacement::alone(origin_, height_, screens()), 1);
}

Rect DockedHelper::dockFrame(const Rect& under) {
  const DockPlacement found = DockPlacement::under(under, height_, screens());
  setIfChanged(state.placement, found.placement);
  return found.frame;
}

void DockedHelper::settingsMoved(const std::optional<Rect>& frame) {
  if (!panel_ || isLeaving_) {
    return;
  }
  if (!frame) {
    if (isDocked_) {
      panel_->fade(true);
    }
    return;
  }
  settings_ = frame;
  setIfChanged(state.settingsMissing, false);
  const Rect place = dockFrame(*frame);
  if (!isDocked_) {
    isDocked_ = true;
    fallbackWork_.reset();
    panel_->spring(place, 1);
    return;
  }
  panel_->retarget(place);
  panel_->fade(false);
}

void DockedHelper::heightChanged(double height) {
  if (!panel_ || isLeaving_ || !(height > 0) || std::abs(height - height_) < 0.5) {
    return;
  }
  height_ = height;
  Rect place = PinTop::frame(panel_->target(), height);
  if (settings_) {
    place = dockFrame(*settings_);
  } else if (state.settingsMissing.get()) {
    place = DockPlacement::alone(origin_, height, screens());
  }
  panel_->retarget(place);
}

void DockedHelper::startControlCenterTracking() {
  setIfChanged(state.controlCenterEditing, services_.locator.isEditing());
  controlCenterTimer_ =
      services_.menuBar.mainQueue.every(controlCenterInterval, [this] { updateControlCenter(); });
  updateControlCenter();
}

void DockedHelper::updateControlCenter() {
  if (!panel_ || isLeaving_) {
    return;
  }
  const auto [panel, isEditing] = services_.locator.glance();
  const double now = services_.menuBar.clock.mediaTime();
  if (isEditing) {
    editEnd_.reset();
    setIfChanged(state.controlCenterRetry, false);
  } else if (state.controlCenterEditing.get()) {
    editEnd_ = now;
  } else if (editEnd_ && now - *editEnd_ >= retryTime) {
    setIfChanged(state.controlCenterRetry, true);
  }
  setIfChanged(state.controlCenterEditing, isEditing);
  setIfChanged(state.controlCenterOpen, panel.has_value());

  if (panel || isEditing) {
    isDocked_ = true;
    const Rect frame = controlCenterFrame(panel, isEditing);
    if (frame != panel_->target()) {
      panel_->follow(frame);
    }
  }
  const bool hasToOpen = !panel && !isEditing && !state.succeeded.get();
  const auto icon = hasToOpen ? services_.locator.iconFrame() : std::nullopt;
  if (icon) {
    ripple_.show(*icon);
  } else {
    ripple_.hide();
  }
}

/// Edit mode needs the room beside the panel for what can be added.
Rect DockedHelper::controlCenterFrame(const std::optional<ControlCenterWindow>& panel,
                                      bool isEditing) const {
  if (screens().empty()) {
    return panel_->target();
  }
  if (isEditing || !panel) {
    return DockPlacement::alone(screens().front().frame, height_, screens());
  }
  const Rect& rect = panel->rect;
  const Rect global{rect.x, screens().front().frame.maxY() - rect.maxY(), rect.width, rect.height};
  return DockPlacement::besideControlCenter(global, height_, screens());
}

void DockedHelper::dragIcon() {
  if (!isPresented() || isLeaving_ || !takesDraggedIcon(state.kind.get()) ||
      state.isDragging.get() || state.succeeded.get()) {
    return;
  }
  // Before it begins, since it may end before begin() is back.
  state.isDragging.set(true);
  const bool hasBegun = services_.fileDrag.begin(
      services_.system.bundlePath(), [this, trip = std::weak_ptr<int>(trip_)](bool wasTaken) {
        if (!trip.expired()) {
          state.isDragging.set(false);
          setIfChanged(state.awaitingApproval, wasTaken || state.awaitingApproval.get());
        }
      });
  if (!hasBegun) {
    state.isDragging.set(false);
  }
}

void DockedHelper::succeed(std::function<void()> then) {
  if (success_) {
    return;
  }
  if (!panel_ || isLeaving_ || !panel_->isSeen()) {
    if (then) {
      then();
    }
    return;
  }
  state.succeeded.set(true);
  success_ = services_.menuBar.mainQueue.after(successTime, [this, then = std::move(then)] {
    // The action may end all of this.
    const Timer self = std::move(success_);
    if (then) {
      then();
    }
  });
}

void DockedHelper::leave(std::function<void()> completion) {
  if (isLeaving_) {
    return;
  }
  if (!panel_ || !panel_->isSeen()) {
    end(completion);
    return;
  }
  isLeaving_ = true;
  stopFollowing();
  panel_->vanish(origin_, [this, completion = std::move(completion)] { end(completion); });
}

void DockedHelper::end(const std::function<void()>& completion) {
  stopFollowing();
  isLeaving_ = false;
  isDocked_ = false;
  panel_.reset();
  if (completion) {
    completion();
  }
}

}  // namespace plemora
