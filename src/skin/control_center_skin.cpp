#include "skin/control_center_skin.h"

#include <algorithm>
#include <utility>

#include "platform/clock.h"
#include "platform/control_reload.h"
#include "platform/screens.h"
#include "platform/workspace.h"
#include "skin/look/control_center_look.h"
#include "skin/module_rect.h"
#include "skin/skin_overlay.h"
#include "skin/tile_finder.h"

namespace plemora {

namespace {

constexpr double housekeepingInterval = 1.0;  // seconds
constexpr int lastQuietTick = 91;

constexpr double scanInterval = 0.5;  // seconds, while tiles are known
constexpr double searchInterval = 0.05;

// Alphas of Control Center's panel.
constexpr double opaque = 0.999;
constexpr double gone = 0.01;

constexpr double fadeDelay = 0.05;  // seconds
constexpr double fadeDuration = 0.17;

constexpr const char* scanQueueLabel = "com.quorvane.mixer.skin-scan";

}  // namespace

ControlCenterSkin::ControlCenterSkin(const SkinServices& services, OutputDevices& outputs,
                                     MakeModuleView makeView)
    : services_(services),
      outputs_(outputs),
      makeView_(std::move(makeView)),
      scanQueue_(services.queues.makeQueue(scanQueueLabel)) {
  followOutputs();
}

ControlCenterSkin::~ControlCenterSkin() {
  scans_.request_stop();
}

void ControlCenterSkin::followOutputs() {
  const auto showVolume = [this](const std::optional<float>& volume) {
    state.hasVolume.set(volume.has_value());
    if (volume) {
      // Written so that what is no number counts as 0.
      state.volume.set(*volume > 0 ? std::min(*volume, 1.0F) : 0.0F);
    }
  };
  const auto showDevice = [this] {
    const auto device = outputs_.defaultDevice();
    state.isHeadphones.set(device && device->isHeadphones());
  };
  showVolume(outputs_.volume.get());
  showDevice();
  cancellables_.push_back(outputs_.volume.subscribe(showVolume));
  cancellables_.push_back(
      outputs_.defaultDeviceID.subscribe([showDevice](AudioObjectID) { showDevice(); }));
}

void ControlCenterSkin::start() {
  housekeeping_ = services_.mainQueue.every(housekeepingInterval, [this] { housekeep(); });
  housekeep();
}

void ControlCenterSkin::stop() {
  housekeeping_.reset();
  displayLink_.reset();
  observer_.reset();
  hide();
}

void ControlCenterSkin::housekeep() {
  if (!services_.accessibility.isTrusted()) {
    observer_.reset();
    return;
  }
  const auto pid = controlCenterPid();
  if (!pid) {
    return;
  }
  if (!observer_ || observedPID_ != *pid) {
    observe(*pid);
  }
  if (!displayLink_ && services_.locator.panelWindow()) {
    startTracking();
  }
}

std::optional<std::int32_t> ControlCenterSkin::controlCenterPid() const {
  for (const RunningApplication& application : services_.workspace.runningApplications()) {
    if (application.bundleID == ControlCenterLocator::domain) {
      return application.pid;
    }
  }
  return std::nullopt;
}

void ControlCenterSkin::observe(std::int32_t pid) {
  if (observedPID_ != pid) {
    // Another Control Center may have other tiles in the same place.
    forgetFrames();
  }
  observer_ = services_.accessibility.observe(
      pid, {"AXWindowCreated", "AXCreated", "AXFocusedWindowChanged"}, [this] { startTracking(); });
  if (observer_) {
    observedPID_ = pid;
  }
}

void ControlCenterSkin::startTracking() {
  quietTicks_ = 0;
  if (displayLink_) {
    return;
  }
  const auto& screens = services_.screens.screens().get();
  displayLink_ =
      services_.displayLinks.makeLink(screens.empty() ? 0 : screens.front().id, [this] { tick(); });
  tick();
}

void ControlCenterSkin::tick() {
  if (isSuppressed) {
    return;
  }
  if (drag_ != DragKind::none &&
      (services_.inputEvents.pressedMouseButtons() & leftMouseButton) == 0) {
    release();
    if (isSuppressed) {
      return;
    }
  }
  if (overlay_) {
    overlay_->animate();
  }
  if (drag_ == DragKind::none) {
    followControlCenter();
  }
  if (!isClosing_) {
    advanceFadeIn();
  }
}

void ControlCenterSkin::followControlCenter() {
  const auto [panel, isEditing] = services_.locator.glance();
  if (std::exchange(wasEditing_, isEditing) && !isEditing) {
    services_.controlReload.reloadAllControls();
  }
  if (panel && !isEditing && services_.accessibility.isTrusted()) {
    quietTicks_ = 0;
    if (!isFading(panel->alpha)) {
      scanIfDue();
      // A panel that is not to be seen yet may be closed before it ever is.
      if (isShowing_ || panel->alpha > 0) {
        follow(*panel);
      }
    }
    return;
  }
  if (isShowing_ || !tiles_.empty()) {
    hide();
    tiles_.clear();
  }
  showInstantly = false;
  if (isEditing) {
    // The user may leave the tiles elsewhere.
    forgetFrames();
  }
  panelAlpha_.reset();
  if (!panel) {
    isClosing_ = false;
    if (!isEditing && ++quietTicks_ >= lastQuietTick) {
      displayLink_.reset();
    }
  }
}

/// Goes along while Control Center fades out; whether it does.
bool ControlCenterSkin::isFading(double alpha) {
  // One that fades in is not closing, however faint it is, nor is one that stands still.
  const bool isFalling = panelAlpha_ && alpha < *panelAlpha_;
  panelAlpha_ = alpha;
  if (isClosing_ && alpha >= opaque) {
    isClosing_ = false;
    hide();
  }
  if (isShowing_ && alpha < opaque && isFalling) {
    isClosing_ = true;
  }
  if (!isClosing_) {
    return false;
  }
  if (alpha < gone) {
    hide();
  } else if (isShowing_) {
    overlay_->panel().setAlpha(alpha);
  }
  return true;
}

void ControlCenterSkin::scanIfDue() {
  const double interval = tiles_.empty() ? searchInterval : scanInterval;
  if (isScanning_ || services_.clock.mediaTime() - lastScan_ <= interval) {
    return;
  }
  isScanning_ = true;
  // Applications are for the main thread to ask about, their elements for the queue.
  scanQueue_->async([this, life = std::weak_ptr(life_), stop = scans_.get_token(),
                     pid = controlCenterPid(), &main = services_.mainQueue,
                     &accessibility = services_.accessibility] {
    std::vector<AccessibilityElementPointer> tiles;
    if (pid && !stop.stop_requested()) {
      tiles = findTiles(*accessibility.application(*pid), stop);
    }
    main.async([this, life, found = std::move(tiles)]() mutable {
      if (!life.expired()) {
        finishScan(std::move(found));
      }
    });
  });
}

void ControlCenterSkin::finishScan(std::vector<AccessibilityElementPointer> tiles) {
  isScanning_ = false;
  lastScan_ = services_.clock.mediaTime();
  tiles_ = std::move(tiles);
}

void ControlCenterSkin::follow(const ControlCenterWindow& panel) {
  const std::vector<Rect> frames = framesToUse(panel.rect);
  if (frames.empty()) {
    hide();
    return;
  }
  const Rect module = moduleRect(frames, services_.screens.screens().get().front().frame);
  show(module, isWideModule(module), pillsOf(frames, module), panel.layer);
}

/// Those of the tiles, or the last ones that were read while the panel was where it is. Empty when
/// there are none.
std::vector<Rect> ControlCenterSkin::framesToUse(const Rect& panel) {
  const auto frames = tileFrames(tiles_);
  if (frames && !frames->empty()) {
    cachedFrames_ = frames;
    cachedPanelWindow_ = panel;
    return *frames;
  }
  return cachedFrames_ && cachedPanelWindow_ == panel ? *cachedFrames_ : std::vector<Rect>();
}

void ControlCenterSkin::forgetFrames() {
  cachedFrames_.reset();
  cachedPanelWindow_.reset();
}

void ControlCenterSkin::show(const Rect& rect, bool isWide, const std::vector<Rect>& pills,
                             int panelLevel) {
  if (state.isWide.get() != isWide) {
    state.isWide.set(isWide);
  }
  const bool isOtherShape = moduleFrame_.size() != rect.size() || pillRects_ != pills;
  moduleFrame_ = rect;
  pillRects_ = pills;
  resolveStyle();
  const int level = SkinOverlay::levelAbove(panelLevel);
  const bool isNew = !overlay_;
  if (isNew) {
    overlay_ = std::make_unique<SkinOverlay>(services_, state, makeView_, GlassStyle(overlayStyle_),
                                             level);
  }
  overlay_->setFrame(rect);
  overlay_->updateSeam(rect.size(), isWide ? pills : std::vector<Rect>());
  PanelWindow& panel = overlay_->panel();
  if (isNew) {
    panel.setAlpha(0);
    panel.order(WindowOrder::frontRegardless);
  }
  if (panel.level() != level) {
    panel.setLevel(level);
    panel.order(WindowOrder::frontRegardless);
  }
  if (!isShowing_) {
    becomeVisible();
  }
  if ((isNew || isOtherShape) && state.isHovering.get()) {
    hoveredPill_.reset();  // the light was made for another shape
    updateHover(services_.inputEvents.pointerLocation());
  }
}

void ControlCenterSkin::resolveStyle() {
  std::string style = services_.look.style("skinStyle", builtInSkin);
  if (style == overlayStyle_) {
    return;
  }
  overlayStyle_ = std::move(style);
  if (overlay_) {
    overlay_->panel().order(WindowOrder::out);
    overlay_.reset();
    isShowing_ = false;
  }
}

void ControlCenterSkin::becomeVisible() {
  isShowing_ = true;
  overlay_->setViewVisible(true);
  overlay_->tuneSeamForAppearance();
  installMonitors();
  outputs_.reload();
  if (std::exchange(showInstantly, false)) {
    overlay_->panel().setAlpha(1);
  } else {
    fadeStart_ = services_.clock.mediaTime();
    overlay_->panel().setAlpha(0);
  }
  overlay_->panel().order(WindowOrder::frontRegardless);
}

void ControlCenterSkin::advanceFadeIn() {
  if (!fadeStart_) {
    return;
  }
  const double elapsed = services_.clock.mediaTime() - *fadeStart_ - fadeDelay;
  const double t = std::clamp(elapsed / fadeDuration, 0.0, 1.0);
  overlay_->panel().setAlpha(1 - (1 - t) * (1 - t));
  if (t >= 1) {
    fadeStart_.reset();
  }
}

void ControlCenterSkin::hide() {
  fadeStart_.reset();
  if (!isShowing_) {
    return;
  }
  isShowing_ = false;
  drag_ = DragKind::none;
  if (state.isDragging.get()) {
    state.isDragging.set(false);
  }
  mouseMonitors_.clear();
  if (state.isHovering.get()) {
    state.isHovering.set(false);
  }
  hoveredPill_.reset();
  overlay_->endGlow();
  overlay_->panel().setAlpha(0);
  overlay_->setViewVisible(false);
}

}  // namespace plemora
