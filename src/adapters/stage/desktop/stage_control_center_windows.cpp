#include <algorithm>
#include <utility>

#include "adapters/stage/desktop/stage_control_center.h"
#include "adapters/stage/desktop/stage_menu_bar.h"
#include "platform/input_events.h"

namespace plemora {

namespace {

constexpr const char* domain = StageControlCenter::bundleID;
constexpr double standardIconPosition = 182;  // points from the right edge of the screen
constexpr double clockPosition = 8;
constexpr double clockWidth = 150;

double iconPosition(Preferences& preferences) {
  for (const char* key :
       {"NSStatusItem Preferred Position BentoBox-0", "NSStatusItem Preferred Position BentoBox"}) {
    const auto value = preferences.appValue(key, domain);
    if (const auto* real = value ? std::get_if<double>(&*value) : nullptr) {
      return *real;
    }
    if (const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr) {
      return static_cast<double>(*integer);
    }
  }
  return standardIconPosition;
}

bool isIconVisible(Preferences& preferences, const char* name) {
  const auto value = preferences.appValue("NSStatusItem VisibleCC " + std::string(name), domain);
  const auto* visible = value ? std::get_if<bool>(&*value) : nullptr;
  return visible == nullptr || *visible;
}

}  // namespace

void StageControlCenter::followIconPreferences() {
  if (!isRunning()) {
    return;
  }
  Preferences& preferences = services_.preferences;
  preferences.appSynchronize(domain);
  extras_.clear();
  const auto add = [this](StageStatusItem item) {
    item.pid = pid_;
    item.ownerName = processName;
    extras_.push_back(services_.menuBar.addExtra(std::move(item)));
  };
  add({.identifier = "com.apple.menuextra.clock",
       .label = "Clock",
       .width = clockWidth,
       .preferredPosition = clockPosition});
  add({.identifier = "com.apple.menuextra.controlcenter",
       .label = "Control Center",
       .image = SymbolImage{"switch.2", {}, 14, "Control Center"},
       .preferredPosition = iconPosition(preferences),
       .clicked = [this](StatusButtonEvent) { toggle(); }});
  if (isIconVisible(preferences, "Sound")) {
    add({.identifier = "com.apple.menuextra.sound",
         .label = "Sound",
         .image = SymbolImage{"speaker.wave.3.fill", {}, 14, "Sound"}});
  }
  add({.identifier = "com.apple.menuextra.wifi",
       .label = "Wi-Fi",
       .image = SymbolImage{"wifi", {}, 14, "Wi-Fi"}});
  add({.identifier = "com.apple.menuextra.battery",
       .label = "Battery",
       .image = SymbolImage{"battery.100", {}, 14, "Battery"}});
  highlightIcon(isOpen());
}

void StageControlCenter::appendWindows(std::vector<StageWindowRecord>& windows) {
  if (!isOnScreen()) {
    return;
  }
  StageWindowRecord window{.number = panelNumber_,
                           .order = order_,
                           .ownerPid = pid_,
                           .ownerName = processName,
                           .level = windowLevel,
                           .alpha = alpha()};
  const StageControlPanel place = panel();
  window.kind = StageWindowKind::controlCenter;
  window.frame = place.window;
  window.solid = place.panel;
  windows.push_back(window);
  if (!isEditing_) {
    return;
  }
  while (editNumbers_.size() < screens().size()) {
    editNumbers_.push_back(services_.numbers.next());
  }
  for (std::size_t index = 0; index < screens().size(); ++index) {
    window.kind = StageWindowKind::controlCenterEditing;
    window.number = editNumbers_[index];
    window.order = order_ - 1;  // behind the panel
    window.frame = window.solid = screens()[index].frame;
    windows.push_back(window);
  }
}

const StageTile* StageControlCenter::tileAt(const Point& location) const {
  const StageControlPanel place = panel();
  const auto found = std::ranges::find_if(
      grid_.tiles(), [&](const StageTile& tile) { return place.tile(tile).contains(location); });
  return found == grid_.tiles().end() ? nullptr : &*found;
}

void StageControlCenter::pointer(const StageWindowRecord& window, const StagePointerEvent& event) {
  if (!isOpen() || event.button != StageButton::left) {
    return;
  }
  switch (event.phase) {
    case StagePointerEvent::Phase::pressed:
      pressed(window, event.location);
      break;
    case StagePointerEvent::Phase::dragged:
      if (held_.part == Held::Part::slider) {
        slide(event.location);
      } else if (held_.part == Held::Part::tile && isEditing_) {
        dragged_ = {held_.id, {event.location.x - held_.grip.x, event.location.y - held_.grip.y}};
      }
      break;
    case StagePointerEvent::Phase::released:
      released(event.location);
      break;
    default:
      break;
  }
}

void StageControlCenter::pressed(const StageWindowRecord& window, const Point& location) {
  held_ = {};
  const StageControlPanel place = panel();
  if (window.kind == StageWindowKind::controlCenterEditing) {
    for (std::size_t index = 0; index < gallery().size(); ++index) {
      if (StageControlPanel::galleryEntry(space_.main(), index).contains(location)) {
        addGalleryEntry(index);
        return;
      }
    }
    return;
  }
  if (place.editButton.contains(location)) {
    pressEditButton();
    return;
  }
  if (isEditing_) {
    // Badges stick out of their tiles.
    for (const StageTile& tile : grid_.tiles()) {
      if (StageControlPanel::removeBadge(place.tile(tile)).contains(location)) {
        removeTile(std::string(tile.id));
        return;
      }
    }
  }
  const StageTile* tile = tileAt(location);
  if (tile == nullptr) {
    return;
  }
  const Rect frame = place.tile(*tile);
  held_ = {Held::Part::tile, tile->id, {location.x - frame.minX(), location.y - frame.maxY()}};
  if (!isEditing_ && hasSlider(*tile) && slider(*tile).contains(location)) {
    held_.part = Held::Part::slider;
    slide(location);
  }
}

void StageControlCenter::slide(const Point& location) {
  if (const StageTile* tile = grid_.tile(held_.id)) {
    const Rect track = slider(*tile);
    setSlider(held_.id, (location.x - track.minX()) / track.width);
  }
}

void StageControlCenter::released(const Point& location) {
  const Held held = std::exchange(held_, {});
  const auto dragged = std::exchange(dragged_, std::nullopt);
  if (dragged) {
    const auto [column, row] = panel().cellAt(dragged->second);
    moveTile(dragged->first, column, row);
    return;
  }
  const StageTile* tile = tileAt(location);
  if (held.part == Held::Part::tile && tile != nullptr && tile->id == held.id) {
    pressTile(held.id);
  }
}

bool StageControlCenter::pressedElsewhere(const StageWindowRecord* hit) {
  // A press on its icon closes it by itself.
  const auto isIcon = [&](const std::shared_ptr<StageStatusItem>& extra) {
    return hit != nullptr && extra->clicked && extra->number == hit->number;
  };
  if (std::ranges::none_of(extras_, isIcon)) {
    close();
  }
  return false;
}

void StageControlCenter::key(const StageKeyEvent& event) {
  if (!event.isDown || event.keyCode != escapeKeyCode) {
    return;
  }
  if (isEditing_) {
    setEditing(false);
  } else {
    close();
  }
}

}  // namespace plemora
