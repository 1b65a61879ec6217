#include <algorithm>
#include <utility>

#include "platform/clock.h"
#include "skin/control_center_skin.h"
#include "skin/module_geometry.h"
#include "skin/skin_overlay.h"

// What the pointer does to the module.

namespace plemora {

void ControlCenterSkin::installMonitors() {
  mouseMonitors_.clear();
  mouseMonitors_.push_back(services_.inputEvents.monitorGlobal(
      leftMouseDownMask | leftMouseUpMask | mouseMovedMask | leftMouseDraggedMask,
      [this](const InputEvent& event) { handle(event); }));
  mouseMonitors_.push_back(services_.inputEvents.monitorLocal(
      leftMouseUpMask | leftMouseDraggedMask, [this](const InputEvent& event) {
        handle(event);
        return false;
      }));
}

void ControlCenterSkin::handle(const InputEvent& event) {
  const Point pointer = services_.inputEvents.pointerLocation();
  switch (event.type) {
    case InputEventType::mouseMoved:
      updateHover(pointer);
      break;
    case InputEventType::leftMouseDragged:
      updateHover(pointer);
      if (drag_ == DragKind::slider) {
        setVolumeAt(inModule(pointer).x);
      }
      break;
    case InputEventType::leftMouseDown:
      if (moduleFrame_.contains(pointer)) {
        press(inModule(pointer));
      }
      break;
    case InputEventType::leftMouseUp:
      release();
      break;
    default:
      break;
  }
}

/// From the module's top left corner, y down.
Point ControlCenterSkin::inModule(const Point& location) const {
  return {location.x - moduleFrame_.minX(), moduleFrame_.maxY() - location.y};
}

ModuleGeometry ControlCenterSkin::geometry() const {
  return ModuleGeometry::of(moduleFrame_.width, state.isWide.get(), state.isHeadphones.get());
}

void ControlCenterSkin::press(const Point& place) {
  lastHandledPress_ = services_.clock.mediaTime();
  if (geometry().hitArea.contains(place)) {
    drag_ = DragKind::slider;
    state.isDragging.set(true);
    setVolumeAt(place.x);
    return;
  }
  drag_ = DragKind::detailPress;
  if (!isClosing_) {
    services_.inputEvents.postKey(escapeKeyCode);  // closes Control Center
  }
  if (onPrepareDetail) {
    onPrepareDetail(moduleFrame_);
  }
}

void ControlCenterSkin::release() {
  lastHandledPress_ = services_.clock.mediaTime();
  switch (std::exchange(drag_, DragKind::none)) {
    case DragKind::slider:
      state.isDragging.set(false);
      break;
    case DragKind::detailPress:
      if (onOpenDetail) {
        onOpenDetail(moduleFrame_);
      }
      break;
    case DragKind::none:
      break;
  }
}

void ControlCenterSkin::setVolumeAt(double x) {
  if (!state.hasVolume.get()) {
    return;
  }
  const float fraction = geometry().fractionAt(x);
  state.volume.set(fraction);
  outputs_.setVolume(fraction);
}

void ControlCenterSkin::updateHover(const Point& pointer) {
  if (!isShowing_) {
    return;
  }
  const bool isHovering = moduleFrame_.contains(pointer);
  const auto pill = isHovering ? pillAt(inModule(pointer).x) : std::nullopt;
  const bool isSame = state.isHovering.get() == isHovering && hoveredPill_ == pill;
  if (state.isHovering.get() != isHovering) {
    state.isHovering.set(isHovering);
  }
  hoveredPill_ = pill;
  if (isSame && overlay_->glowAgrees(isHovering)) {
    return;
  }
  if (isHovering) {
    // Between the tiles the whole module is lit.
    overlay_->lightUp(pill ? pillRects_[*pill]
                           : Rect{0, 0, moduleFrame_.width, moduleFrame_.height});
  } else {
    overlay_->dim();
  }
}

std::optional<std::size_t> ControlCenterSkin::pillAt(double x) const {
  const auto found = std::ranges::find_if(
      pillRects_, [x](const Rect& pill) { return pill.minX() <= x && x <= pill.maxX(); });
  return found == pillRects_.end()
             ? std::nullopt
             : std::optional(static_cast<std::size_t>(found - pillRects_.begin()));
}

}  // namespace plemora
