#include <algorithm>
#include <utility>

#include "main/stage/scenario_json.h"
#include "main/stage/scenario_scene.h"
#include "skin/module_geometry.h"

// Where things are that a scenario aims at.

namespace plemora {

namespace {

Point middleOf(const Rect& rect) {
  return {rect.midX(), rect.midY()};
}

[[noreturn]] void refuse(const std::string& what, const std::vector<std::string>& present) {
  const std::vector<std::string_view> names(present.begin(), present.end());
  throw ScenarioError(what + " is not to be seen; " +
                      (names.empty() ? "there is none" : "there is " + listOfNames(names)));
}

/// Index of the name among those that are there.
std::size_t indexOf(const std::string& name, const std::vector<std::string>& present,
                    const std::string& what) {
  const auto found = std::ranges::find(present, name);
  if (found == present.end()) {
    refuse(what + " \"" + name + "\"", present);
  }
  return static_cast<std::size_t>(found - present.begin());
}

const StageTile& tileOf(const ScenarioTarget& target, const std::vector<StageTile>& shown) {
  std::vector<std::string> names;
  int left = target.index;
  for (const StageTile& tile : shown) {
    names.push_back(nameOf(tile));
    if (names.back() == target.name && left-- == 0) {
      return tile;
    }
  }
  const std::string count =
      target.index > 0 ? "number " + std::to_string(target.index + 1) + " of " : "";
  refuse("the tile " + count + "\"" + target.name + "\"", names);
}

Rect tileFrame(const ScenarioTarget& target, const StageControlCenter& center, bool isBadge) {
  if (!center.isOpen()) {
    throw ScenarioError("Control Center is closed");
  }
  if (isBadge && !center.isEditing()) {
    throw ScenarioError("Control Center is not being edited");
  }
  std::vector<StageTile> tiles = center.shownTiles();
  // As somebody reads them.
  std::ranges::stable_sort(tiles, {},
                           [](const StageTile& tile) { return std::pair(tile.row, tile.column); });
  const Rect frame = center.panel().tile(tileOf(target, tiles));
  return isBadge ? StageControlPanel::removeBadge(frame) : frame;
}

Rect itemFrame(const std::shared_ptr<StageStatusItem>& item, const char* whose) {
  if (!item) {
    throw ScenarioError(std::string(whose) + " has no item in the menu bar");
  }
  return item->frame;
}

Rect menuEntryFrame(const std::string& title, const StageMenu& menu) {
  if (!menu.isOpen()) {
    throw ScenarioError("no menu is open");
  }
  return menu.itemFrame(indexOf(title, menu.titles(), "the menu entry"));
}

Rect settingsFrame(const ScenarioTarget& target, const StageSettings& settings) {
  if (!settings.isOpen()) {
    throw ScenarioError("System Settings is not open");
  }
  if (target.kind == ScenarioTarget::Kind::closeSettings) {
    return settings.closeButton();
  }
  if (target.kind == ScenarioTarget::Kind::settingsBar) {
    const Rect& frame = settings.frame();
    const double height = StageSettings::titleBarHeight;
    return {frame.x, frame.maxY() - height, frame.width, height};
  }
  std::vector<std::string> titles;
  for (const auto& row : settings.rows()) {
    titles.push_back(row.title);
  }
  return settings.rowFrame(indexOf(target.name, titles, "the row"));
}

/// Parts of the window's title bar.
Rect setupFrame(const ScenarioTarget& target, const StageWindows& windows) {
  for (StageWindow* window : windows.visible()) {
    if (window->titled) {
      const Rect frame = window->frame();
      const Rect part = target.kind == ScenarioTarget::Kind::closeSetup
                            ? StageWindow::closeButton
                            : Rect{0, 0, frame.width, StageWindow::titleBarHeight};
      return {frame.x + part.x, frame.maxY() - part.maxY(), part.width, part.height};
    }
  }
  throw ScenarioError("the setup window is closed");
}

Rect promptFrame(const std::string& name, const StagePrompt& prompt) {
  if (!prompt.isOpen()) {
    throw ScenarioError("nobody asks for consent");
  }
  // As a keyboard types it.
  std::string deny = prompt.denyTitle();
  if (const auto apostrophe = deny.find("’"); apostrophe != deny.npos) {
    deny.replace(apostrophe, std::string_view("’").size(), "'");
  }
  const std::size_t index = indexOf(name, {prompt.allowTitle(), deny}, "the button");
  return index == 0 ? prompt.allowButton() : prompt.denyButton();
}

Rect dockFrame(const std::string& name, const StageDock& dock) {
  std::vector<std::string> names;
  for (const RunningApplication& application : dock.icons()) {
    names.push_back(application.localizedName.value_or(""));
  }
  return dock.iconFrame(indexOf(name, names, "the Dock icon"));
}

Rect playerFrame(const std::string& name, StagePlayers& players) {
  std::vector<std::string> names;
  for (const StagePlayer& player : players.players()) {
    names.push_back(player.name);
  }
  indexOf(name, names, "the player");
  return StagePlayers::button(*players.find(StageWorld::playerID(name)));
}

Rect galleryFrame(const std::string& name, StageDesktop& desktop) {
  if (!desktop.controlCenter.isEditing()) {
    throw ScenarioError("Control Center is not being edited");
  }
  const std::size_t index = indexOf(name, desktop.controlCenter.gallery(), "the gallery entry");
  return StageControlPanel::galleryEntry(desktop.space.main(), index);
}

/// In the module that the program shows; y down from its top.
Point inModule(const ScenarioScene& scene, Point (*place)(const ModuleGeometry&)) {
  AppDelegate* delegate = scene.program.delegate();
  ControlCenterSkin* skin = delegate == nullptr ? nullptr : delegate->skin();
  if (skin == nullptr || !skin->isShowing()) {
    throw ScenarioError("the program shows no module");
  }
  const Rect& frame = skin->moduleFrame();
  const Point inside = place(
      ModuleGeometry::of(frame.width, skin->state.isWide.get(), skin->state.isHeadphones.get()));
  return {frame.minX() + inside.x, frame.maxY() - inside.y};
}

// Near the left edge, where nothing ever is, unless somebody moves it there.
Point emptyPlace(StageDesktop& desktop) {
  const Rect screen = desktop.space.main();
  for (double y = screen.midY(); y > screen.minY(); y -= 20) {
    const Point place{screen.minX() + 20, y};
    if (!desktop.windowServer.hit(place)) {
      return place;
    }
  }
  throw ScenarioError("windows cover the desktop");
}

}  // namespace

std::string nameOf(const StageTile& tile) {
  return tile.control ? tile.control->displayName : tile.module;
}

StageControl findControl(const std::string& name, const ScenarioScene& scene) {
  const auto controls = scene.controls ? scene.controls() : std::vector<StageControl>();
  std::vector<std::string> names;
  for (const StageControl& control : controls) {
    names.push_back(control.name);
  }
  return controls[indexOf(name, names, "the control")];
}

Point locate(const ScenarioTarget& target, const ScenarioScene& scene) {
  using Kind = ScenarioTarget::Kind;
  StageDesktop& desktop = scene.world.desktop;
  switch (target.kind) {
    case Kind::statusItem:
      return middleOf(itemFrame(desktop.menuBar.extra(""), "the program"));
    case Kind::controlCenterItem:
      return middleOf(
          itemFrame(desktop.menuBar.extra("com.apple.menuextra.controlcenter"), "Control Center"));
    case Kind::editButton:
      if (!desktop.controlCenter.isOpen()) {
        throw ScenarioError("Control Center is closed");
      }
      return middleOf(desktop.controlCenter.panel().editButton);
    case Kind::desktop:
      return emptyPlace(desktop);
    case Kind::module:
      return inModule(scene, [](const ModuleGeometry& module) {
        return Point{module.track.midX(), module.hitArea.minY() / 2};
      });
    case Kind::moduleSlider:
      return inModule(scene, [](const ModuleGeometry& module) { return middleOf(module.track); });
    case Kind::tile:
    case Kind::removeBadge:
      return middleOf(tileFrame(target, desktop.controlCenter, target.kind == Kind::removeBadge));
    case Kind::galleryEntry:
      return middleOf(galleryFrame(target.name, desktop));
    case Kind::menuEntry:
      return middleOf(menuEntryFrame(target.name, desktop.menuBar.menu()));
    case Kind::panel:
      return middleOf(findControl(target.name, scene).frame);
    case Kind::settings:
    case Kind::closeSettings:
    case Kind::settingsBar:
      return middleOf(settingsFrame(target, desktop.settings));
    case Kind::closeSetup:
    case Kind::setupBar:
      return middleOf(setupFrame(target, desktop.windows));
    case Kind::prompt:
      return middleOf(promptFrame(target.name, desktop.prompt));
    case Kind::dock:
      return middleOf(dockFrame(target.name, desktop.dock));
    case Kind::player:
      return middleOf(playerFrame(target.name, desktop.players));
    case Kind::point:
      return desktop.space.flipped(target.point);
  }
  return {};
}

}  // namespace plemora
