#include "menubar/status_item_controller.h"

#include <cmath>
#include <functional>
#include <utility>

#include "platform/clock.h"
#include "platform/workspace.h"
#include "skin/look/control_center_look.h"

namespace plemora {

namespace {

constexpr const char* soundSettingsURL =
    "x-apple.systempreferences:com.apple.Sound-Settings.extension";

constexpr double openTime = 0.16;  // seconds
constexpr double closeTime = 0.12;
constexpr double heightTime = 0.18;
constexpr double openTravel = 4;  // points
constexpr double permissionInterval = 1.0;

/// Seconds for which a click belongs to what it has closed already.
constexpr double sameClickTime = 0.6;

PanelWindowOptions panelOptions() {
  PanelWindowOptions options;
  options.identifier = "mixer-panel";
  options.title = PanelView::title;
  options.level = popUpMenuWindowLevel;
  options.collectionBehavior =
      windowCanJoinAllSpaces | windowStationary | windowIgnoresCycle | windowFullScreenAuxiliary;
  options.animationBehavior = 2;
  return options;
}

}  // namespace

StatusItemController::StatusItemController(MixerModel& model, const MenuBarServices& services,
                                           MakeContent makeContent,
                                           ControlCenterHooks controlCenter)
    : model_(model),
      services_(services),
      controlCenter_(std::move(controlCenter)),
      panelView_(
          model, {services.defaults, services.clock, services.routePicker, services.mainQueue},
          [this] { setUpFromMenu(); },
          [this] {
            close();
            services_.workspace.openURL(soundSettingsURL);
          }),
      makeContent_(std::move(makeContent)) {
  statusItem_ =
      services_.statusBar.makeItem({.length = squareStatusItemLength,
                                    .behavior = 0,
                                    .actionMask = leftMouseDownMask | rightMouseDownMask,
                                    .accessibilityLabel = "Sound"},
                                   {.clicked = [this](StatusButtonEvent event) { clicked(event); },
                                    .scrolled = [this](int notches) { turnMaster(notches); },
                                    .menu = [this] { return menuItemsOfHost(); }});
  subscribe();
}

StatusItemController::~StatusItemController() = default;

void StatusItemController::subscribe() {
  OutputDevices& outputs = model_.outputs();
  const auto updates = [this, &outputs](const auto&) {
    updateIcon(outputs.volume.get(), outputs.isMuted.get());
  };
  cancellables_.push_back(outputs.volume.subscribe(updates));
  cancellables_.push_back(outputs.isMuted.subscribe(updates));
  cancellables_.push_back(visibility_.isVisible.subscribeToChanges(
      std::identity{}, [this](bool isVisible) { panelView_.setVisible(isVisible); }));
  cancellables_.push_back(services_.screens.observe([this](const auto&) {
    if (isPanelVisible()) {
      placement_ = place();
      shown_->content->setMaximumHeight(placement_.room);
      shown_->animation.animateFrame(placement_.frame, heightTime);
    }
  }));
  updateIcon(outputs.volume.get(), outputs.isMuted.get());
}

void StatusItemController::updateIcon(std::optional<float> volume, bool muted) {
  SymbolImage image;
  image.pointSize = 14;
  if (!muted && volume != 0.0f) {
    image.name = "speaker.wave.3.fill";
    image.variableValue = volume.value_or(1.0f);
    image.accessibilityDescription = "Sound";
  } else {
    image.name = "speaker.slash.fill";
    image.accessibilityDescription = "Sound muted";
  }
  if (image_ != image) {
    image_ = image;
    statusItem_->setImage(image);
  }
}

void StatusItemController::clicked(StatusButtonEvent event) {
  if (event == StatusButtonEvent::rightMouseDown) {
    showMenu();
    return;
  }
  if (event == StatusButtonEvent::middleMouseDown) {
    panelView_.toggleMasterMute();
    return;
  }
  // A tray reports a click when the button is let go, after the press was seen as one elsewhere.
  const auto closedOnIcon = std::exchange(closedOnIcon_, std::nullopt);
  if (closedOnIcon && services_.clock.mediaTime() - *closedOnIcon < sameClickTime) {
    return;
  }
  if (isPanelVisible()) {
    close();
  } else {
    open(Anchor::menuBar);
  }
}

void StatusItemController::turnMaster(int notches) {
  panelView_.setMasterVolume(panelView_.masterVolume() +
                             static_cast<float>(notches) * ControlSlider::step);
}

Rect StatusItemController::anchorRect() const {
  if (anchor_ == Anchor::controlCenter && controlCenter_.iconFrame) {
    if (const auto frame = controlCenter_.iconFrame()) {
      return *frame;
    }
  }
  if (const auto frame = iconFrame()) {
    return *frame;
  }
  // A tray that does not say where the item is: where trays mostly are.
  const Screen* screen = PanelPlacement::screen(services_.screens.screens().get(), {});
  return screen == nullptr ? Rect{}
                           : Rect{screen->visibleFrame.maxX(), screen->visibleFrame.maxY(), 0, 0};
}

PanelPlacement StatusItemController::place() const {
  const Rect anchor = anchorRect();
  const Screen* screen = PanelPlacement::screen(services_.screens.screens().get(), anchor);
  return PanelPlacement::place(anchor, screen, contentHeight_);
}

bool StatusItemController::makeShown() {
  if (shown_) {
    return true;
  }
  const auto content = makeContent_(panelView_);
  if (!content) {
    return false;
  }
  const auto panel = std::make_shared<GlassPanel>(services_.windows, panelOptions(), content,
                                                  visibility_, services_.mainQueue);
  panel->make(cornerRadius, GlassStyle(services_.look.style("detailStyle", builtInDetail)));
  panel->setRim(std::make_unique<RimLayer>(rimTop, rimRest), cornerRadius, rimZPosition);
  shown_.reset(
      new Shown{content, panel, VisibilityGate(visibility_, content),
                WindowAnimation(panel, services_.displayLinks, services_.clock),
                HeightReader(content, [this](double height) { contentHeightChanged(height); })});
  return true;
}

void StatusItemController::open(Anchor from) {
  model_.outputs().reload();
  model_.refreshPermission();
  if (!makeShown()) {
    return;
  }
  anchor_ = from;
  Shown& shown = *shown_;
  placement_ = place();
  visibility_.isVisible.set(true);
  shown.content->setMaximumHeight(placement_.room);
  if (const double height = shown.content->fittingHeight(); height > 0) {
    contentHeight_ = height;
  }
  placement_ = place();

  shown.animation.stop();
  const double travel = placement_.standsOnAnchor ? -openTravel : openTravel;
  shown.panel->setFrame(placement_.frame.offset(0, travel));
  shown.panel->setAlpha(0);
  shown.panel->makeKeyAndOrderFront();
  shown.animation.animateFrame(placement_.frame, openTime);
  shown.animation.animateAlpha(1, openTime);

  statusItem_->setHighlighted(true);
  installMonitors();
  permissionTimer_ =
      services_.mainQueue.every(permissionInterval, [this] { model_.refreshPermission(); });
}

void StatusItemController::close() {
  if (!isPanelVisible()) {
    return;
  }
  removeMonitors();
  permissionTimer_.reset();
  statusItem_->setHighlighted(false);
  shown_->animation.animateAlpha(0, closeTime, [this] {
    // Unless it was opened again meanwhile.
    if (shown_->panel->alpha() == 0) {
      shown_->panel->orderOut();
    }
  });
}

void StatusItemController::contentHeightChanged(double height) {
  if (!(height > 0) || std::abs(height - contentHeight_) < 0.5) {
    return;
  }
  contentHeight_ = height;
  if (!isPanelVisible()) {
    return;
  }
  // From where a movement that has not ended yet will end.
  const Rect old = shown_->animation.targetFrame().value_or(shown_->panel->frame());
  const double fitted = placement_.fitted(height);
  const Rect next = placement_.standsOnAnchor ? Rect{old.x, old.y, old.width, fitted}
                                              : PinTop::frame(old, fitted);
  shown_->animation.animateFrame(next, heightTime);
}

void StatusItemController::installMonitors() {
  removeMonitors();
  monitors_.push_back(services_.inputEvents.monitorGlobal(
      leftMouseDownMask | rightMouseDownMask,
      [this](const InputEvent& event) { clickedElsewhere(event); }));
  monitors_.push_back(
      services_.inputEvents.monitorLocal(keyDownMask, [this](const InputEvent& event) {
        if (event.keyCode != escapeKeyCode) {
          return false;
        }
        close();
        return true;
      }));
}

void StatusItemController::removeMonitors() {
  monitors_.clear();
}

void StatusItemController::clickedElsewhere(const InputEvent& event) {
  const double now = services_.clock.mediaTime();
  // The click that closes the list of AirPlay receivers is not meant for the panel.
  if (const auto picker = panelView_.lastPickerClosed(); picker && now - *picker < sameClickTime) {
    return;
  }
  const auto icon = iconFrame();
  if (event.type == InputEventType::leftMouseDown && icon && icon->contains(event.location)) {
    closedOnIcon_ = now;
  }
  close();
}

}  // namespace plemora
