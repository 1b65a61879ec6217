#include <algorithm>
#include <cmath>
#include <utility>

#include "adapters/stage/desktop/stage_outputs.h"
#include "main/stage/scenario_json.h"
#include "main/stage/scenario_scene.h"

// Whether what a scenario expects is so.

namespace plemora {

namespace {

using Problem = std::optional<std::string>;

constexpr double levelSlack = 0.005;  // of 0...1
constexpr double placeSlack = 1;      // points

std::string listed(const std::vector<std::string>& names) {
  return names.empty() ? "nothing"
                       : listOfNames(std::vector<std::string_view>(names.begin(), names.end()));
}

std::string yesOrNo(bool value) {
  return value ? "true" : "false";
}

template <typename Value, typename Show>
Problem compare(const std::string& what, const std::optional<Value>& expected, const Value& actual,
                Show show) {
  if (!expected || *expected == actual) {
    return std::nullopt;
  }
  return what + " is " + show(actual) + ", not " + show(*expected);
}

Problem compareFlag(const std::string& what, std::optional<bool> expected, bool actual) {
  return compare(what, expected, actual, yesOrNo);
}

Problem compareText(const std::string& what, const std::optional<std::string>& expected,
                    const std::string& actual) {
  return compare(what, expected, actual,
                 [](const std::string& text) { return "\"" + text + "\""; });
}

Problem compareCount(const std::string& what, std::optional<int> expected, int actual) {
  return compare(what, expected, actual, [](int count) { return std::to_string(count); });
}

Problem compareLevel(const std::string& what, std::optional<double> expected, double actual) {
  if (!expected || std::abs(*expected - actual) <= levelSlack) {
    return std::nullopt;
  }
  return what + " is " + std::to_string(actual) + ", not " + std::to_string(*expected);
}

Problem compareSets(const std::string& what,
                    const std::optional<std::vector<std::string>>& expected,
                    std::vector<std::string> actual) {
  if (!expected) {
    return std::nullopt;
  }
  std::vector<std::string> wanted = *expected;
  std::ranges::sort(wanted);
  std::ranges::sort(actual);
  if (wanted == actual) {
    return std::nullopt;
  }
  return what + " are " + listed(actual) + ", not " + listed(wanted);
}

Problem compareContent(const std::string& what, const std::vector<std::string>& shows,
                       const std::vector<std::string>& lacks,
                       const std::vector<std::string>& actual) {
  for (const std::string& name : shows) {
    if (std::ranges::find(actual, name) == actual.end()) {
      return what + " does not show \"" + name + "\" but " + listed(actual);
    }
  }
  for (const std::string& name : lacks) {
    if (std::ranges::find(actual, name) != actual.end()) {
      return what + " shows \"" + name + "\"";
    }
  }
  return std::nullopt;
}

Problem firstOf(std::initializer_list<Problem> problems) {
  for (const Problem& problem : problems) {
    if (problem) {
      return problem;
    }
  }
  return std::nullopt;
}

bool isRunning(const std::string& name, const ScenarioScene& scene) {
  if (name == scenarioProgram) {
    return scene.program.isRunning();
  }
  if (name == scenarioControlCenter) {
    return scene.world.desktop.controlCenter.isRunning();
  }
  return scene.world.desktop.players.find(StageWorld::playerID(name)) != nullptr;
}

Problem checkUnder(PanelCondition::Under under, const Rect& panel, StageDesktop& desktop) {
  const bool isOurs = under == PanelCondition::Under::statusItem;
  const auto item = isOurs ? desktop.menuBar.extra("")
                           : desktop.menuBar.extra("com.apple.menuextra.controlcenter");
  const std::string whose = isOurs ? "the program" : "Control Center";
  if (!item) {
    return whose + " has no item in the menu bar";
  }
  if (std::abs(panel.midX() - item->frame.midX()) <= placeSlack) {
    return std::nullopt;
  }
  return "the panel hangs at " + std::to_string(panel.midX()) + ", not below the item of " + whose +
         " at " + std::to_string(item->frame.midX());
}

Problem checkPanel(const PanelCondition& expected, const ScenarioScene& scene) {
  AppDelegate* delegate = scene.program.delegate();
  StatusItemController* item = delegate == nullptr ? nullptr : delegate->statusItem();
  const bool isOpen = item != nullptr && item->isPanelVisible();
  if (auto problem = compareFlag("that the panel is open", expected.isOpen, isOpen)) {
    return problem;
  }
  if (!isOpen) {
    const bool asks = expected.under || !expected.shows.empty();
    return asks ? Problem("the panel is closed") : std::nullopt;
  }
  if (expected.under) {
    if (auto problem = checkUnder(*expected.under, item->panel().frame(), scene.world.desktop)) {
      return problem;
    }
  }
  std::vector<std::string> titles;
  for (const PanelRow& row : item->panelView().rows.get()) {
    titles.push_back(row.title);
  }
  return compareContent("the panel", expected.shows, expected.lacks, titles);
}

std::string detailState(const ScenarioScene& scene) {
  using Phase = ControlCenterDetail::Phase;
  AppDelegate* delegate = scene.program.delegate();
  ControlCenterDetail* detail = delegate == nullptr ? nullptr : delegate->detail();
  const auto phase = detail == nullptr || detail->prepared ? std::nullopt : detail->phase();
  if (!phase) {
    return "closed";
  }
  switch (*phase) {
    case Phase::expanding:
      return "growing";
    case Phase::collapsing:
      return "collapsing";
    case Phase::fading:
      return "fading";
    default:
      return "open";
  }
}

bool hasModule(const ScenarioScene& scene) {
  AppDelegate* delegate = scene.program.delegate();
  ControlCenterSkin* skin = delegate == nullptr ? nullptr : delegate->skin();
  return skin != nullptr && skin->isShowing();
}

std::string describe(const StageTile& tile) {
  return nameOf(tile) + " at " + std::to_string(tile.column) + ", " + std::to_string(tile.row) +
         " (" + std::string(tile.size.name) + ")";
}

Problem checkTiles(const std::vector<TileCondition>& expected,
                   const std::vector<StageTile>& tiles) {
  std::vector<std::string> shown;
  for (const StageTile& tile : tiles) {
    shown.push_back(describe(tile));
  }
  std::vector<bool> taken(tiles.size(), false);
  for (const TileCondition& wanted : expected) {
    bool isFound = false;
    for (std::size_t i = 0; i < tiles.size() && !isFound; ++i) {
      const StageTile& tile = tiles[i];
      isFound = !taken[i] && nameOf(tile) == wanted.name &&
                wanted.column.value_or(tile.column) == tile.column &&
                wanted.row.value_or(tile.row) == tile.row &&
                wanted.size.value_or(std::string(tile.size.name)) == tile.size.name;
      taken[i] = taken[i] || isFound;
    }
    if (!isFound) {
      return "Control Center does not show the tile \"" + wanted.name +
             "\" as it is expected, but " + listed(shown);
    }
  }
  // A name that is expected is expected just so often.
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    if (!taken[i] &&
        std::ranges::find(expected, nameOf(tiles[i]), &TileCondition::name) != expected.end()) {
      return "Control Center shows one tile too many, " + shown[i];
    }
  }
  return std::nullopt;
}

Problem checkControlCenter(const ControlCenterCondition& expected, StageDesktop& desktop) {
  const StageControlCenter& center = desktop.controlCenter;
  if (auto problem = firstOf(
          {compareFlag("that Control Center is open", expected.isOpen, center.isOpen()),
           compareFlag("that Control Center is edited", expected.isEditing, center.isEditing()),
           compareCount("the number of launches of Control Center", expected.launches,
                        center.launches()),
           compareFlag("that Control Center understands its layout", expected.understandsLayout,
                       center.layoutProblem().empty())})) {
    return problem;
  }
  if (!expected.tiles.empty() && !center.isRunning()) {
    return "Control Center does not run";
  }
  const std::vector<StageTile> tiles = center.shownTiles();
  std::vector<std::string> names;
  std::ranges::transform(tiles, std::back_inserter(names), nameOf);
  if (auto problem = compareContent("Control Center", {}, expected.lacks, names)) {
    return problem;
  }
  return checkTiles(expected.tiles, tiles);
}

Problem checkDefaults(const ScenarioConditions& conditions, UserDefaults& defaults) {
  for (const auto& [key, expected] : conditions.defaults) {
    const auto flag = defaults.boolean(key);
    const auto text = defaults.string(key);
    const std::string what = "the setting \"" + key + "\"";
    const std::string actual = text                 ? "\"" + *text + "\""
                               : flag               ? yesOrNo(*flag)
                               : defaults.data(key) ? "bytes"
                                                    : "absent";
    if (const bool* wanted = std::get_if<bool>(&expected)) {
      if (flag != *wanted) {
        return what + " is " + actual + ", not " + yesOrNo(*wanted);
      }
    } else if (const auto* word = std::get_if<std::string>(&expected)) {
      if (text != *word) {
        return what + " is " + actual + ", not \"" + *word + "\"";
      }
    } else if (actual != "absent") {
      return what + " is " + actual + ", not absent";
    }
  }
  return std::nullopt;
}

Problem checkPreferences(const ScenarioConditions& conditions, const ScenarioScene& scene) {
  const auto isAs = [&scene](const std::string& name) {
    const auto found = scene.remembered.find(name);
    if (found == scene.remembered.end()) {
      throw ScenarioError("nothing was remembered as \"" + name + "\"");
    }
    return found->second == scene.world.storedLayout();
  };
  if (conditions.preferencesAs && !isAs(*conditions.preferencesAs)) {
    return "Control Center's preferences are not those of \"" + *conditions.preferencesAs + "\"";
  }
  if (conditions.preferencesNotAs && isAs(*conditions.preferencesNotAs)) {
    return "Control Center's preferences are still those of \"" + *conditions.preferencesNotAs +
           "\"";
  }
  return std::nullopt;
}

Problem checkSound(const ScenarioConditions& conditions, const ScenarioScene& scene) {
  SimulatedHal& hal = scene.world.desktop.hal;
  std::vector<std::string> names;
  for (const AudioObjectID device : stageOutputs(hal)) {
    names.push_back(hal.device(device).name.value_or(""));
  }
  if (auto problem = compareSets("the devices", conditions.devices, names)) {
    return problem;
  }
  if (!conditions.defaultDevice) {
    return std::nullopt;
  }
  const AudioObjectID current = hal.defaultOutput();
  if (current == kAudioObjectUnknown) {
    return "there is no default device";
  }
  const SimulatedDevice device = hal.device(current);
  const DefaultDeviceCondition& expected = *conditions.defaultDevice;
  return firstOf({compareText("the default device", expected.uid, device.uid),
                  compareLevel("its volume", expected.volume, device.volume.value_or(-1)),
                  compareFlag("that it is muted", expected.isMuted, device.isMuted == true)});
}

Problem checkLevels(const ScenarioConditions& conditions, const ScenarioScene& scene) {
  AppDelegate* delegate = scene.program.delegate();
  for (const auto& [name, expected] : conditions.levels) {
    if (delegate == nullptr || delegate->statusItem() == nullptr) {
      return "the program does not run";
    }
    // The volume is the slider's: the mixer's own rows follow a slider only later.
    const PanelRows& rows = delegate->statusItem()->panelView().rows.get();
    const auto row = std::ranges::find_if(rows, [&wanted = name](const PanelRow& each) {
      return each.kind == PanelRowKind::app && each.title == wanted;
    });
    const auto& channels = delegate->model()->channels.get();
    const auto channel = std::ranges::find(channels, name, &AppChannel::name);
    if (row == rows.end() || channel == channels.end()) {
      return "the mixer does not know \"" + name + "\"";
    }
    const std::string whose = " of \"" + name + "\"";
    if (auto problem = firstOf({compareLevel("the volume" + whose, expected.volume, row->volume),
                                compareFlag("the mute" + whose, expected.isMuted, row->isMuted),
                                compareText("the output" + whose, expected.output,
                                            channel->outputUID.value_or(""))})) {
      return problem;
    }
  }
  return std::nullopt;
}

Problem checkMenu(const ScenarioConditions::Menu& expected, const StageMenu& menu) {
  if (auto problem = compareFlag("that a menu is open", expected.isOpen, menu.isOpen())) {
    return problem;
  }
  if (!menu.isOpen() && !expected.shows.empty()) {
    return "no menu is open";
  }
  return compareContent("the menu", expected.shows, expected.lacks,
                        menu.isOpen() ? menu.titles() : std::vector<std::string>());
}

Problem checkDesktop(const ScenarioConditions& conditions, StageDesktop& desktop) {
  std::vector<std::string> dock;
  for (const RunningApplication& application : desktop.dock.icons()) {
    dock.push_back(application.localizedName.value_or(""));
  }
  const StageSettings& settings = desktop.settings;
  return firstOf(
      {compareText("the pane of System Settings", conditions.settingsPane,
                   settings.isOpen() ? settings.title() : ""),
       compareSets("the icons of the Dock", conditions.dock, dock),
       compareSets("the URLs that were opened", conditions.urls, desktop.workspace.openedURLs)});
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

}  // namespace

std::optional<std::string> unmet(const ScenarioConditions& conditions, const ScenarioScene& scene) {
  StageDesktop& desktop = scene.world.desktop;
  for (const auto& [name, expected] : conditions.isRunning) {
    if (auto problem = compareFlag("that " + name + " runs", expected, isRunning(name, scene))) {
      return problem;
    }
  }
  if (conditions.panel) {
    if (auto problem = checkPanel(*conditions.panel, scene)) {
      return problem;
    }
  }
  if (auto problem = firstOf(
          {compareFlag("that the module is shown", conditions.hasModule, hasModule(scene)),
           compareText("the state of the detail panel", conditions.detail, detailState(scene))})) {
    return problem;
  }
  if (conditions.controlCenter) {
    if (auto problem = checkControlCenter(*conditions.controlCenter, desktop)) {
      return problem;
    }
  }
  if (auto problem = unmetOfSetup(conditions, scene)) {
    return problem;
  }
  if (conditions.menu) {
    if (auto problem = checkMenu(*conditions.menu, desktop.menuBar.menu())) {
      return problem;
    }
  }
  return firstOf(
      {checkDefaults(conditions, scene.world.defaults), checkPreferences(conditions, scene),
       compareFlag("that there is a backup", conditions.hasBackup, scene.world.hasBackup()),
       checkSound(conditions, scene), checkLevels(conditions, scene),
       checkDesktop(conditions, desktop),
       compareText("what the program has printed", conditions.printed,
                   joined(scene.program.printed())),
       compareCount("the number of reloads of the controls", conditions.reloads,
                    scene.world.controlReload.reloads)});
}

}  // namespace plemora
