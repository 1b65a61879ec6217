#include <algorithm>
#include <iterator>
#include <utility>

#include "main/stage/scenario_values.h"

// What a scenario expects.

namespace plemora {

namespace {

bool readFlag(const ScenarioPart& part) {
  return part.flag();
}

std::string readText(const ScenarioPart& part) {
  return part.text();
}

std::vector<std::string> readTexts(const ScenarioPart& part) {
  return part.texts();
}

int readCount(const ScenarioPart& part) {
  return part.whole(0, 1000000);
}

double readLevel(const ScenarioPart& part) {
  return part.number(0, 1);
}

bool readOpen(const ScenarioPart& part) {
  return part.oneOf<bool>({{"open", true}, {"closed", false}});
}

PanelCondition readPanel(const ScenarioPart& part) {
  using Under = PanelCondition::Under;
  PanelCondition panel;
  if (part.isText()) {
    panel.isOpen = readOpen(part);
    return panel;
  }
  part.allow({"is", "under", "shows", "lacks"});
  part.read("is", panel.isOpen, readOpen);
  part.read("under", panel.under, [](const ScenarioPart& text) {
    return text.oneOf<Under>(
        {{"status item", Under::statusItem}, {"Control Center item", Under::controlCenter}});
  });
  part.read("shows", panel.shows, readTexts);
  part.read("lacks", panel.lacks, readTexts);
  return panel;
}

TileCondition readTile(const ScenarioPart& part) {
  TileCondition tile;
  if (part.isText()) {
    tile.name = part.text();
    return tile;
  }
  part.allow({"name", "column", "row", "size"});
  tile.name = part.at("name").text();
  part.read("column", tile.column, readCount);
  part.read("row", tile.row, readCount);
  part.read("size", tile.size, [](const ScenarioPart& text) {
    const auto name = [](std::string_view word) { return std::pair(word, std::string(word)); };
    return text.oneOf<std::string>(
        {name("square1x1"), name("rect2x1"), name("square2x2"), name("rect4x1")});
  });
  return tile;
}

ControlCenterCondition readControlCenter(const ScenarioPart& part) {
  ControlCenterCondition center;
  if (part.isText()) {
    center.isOpen = readOpen(part);
    return center;
  }
  part.allow({"is", "editing", "tiles", "lacks", "launches", "understands layout"});
  part.read("is", center.isOpen, readOpen);
  part.read("editing", center.isEditing, readFlag);
  part.read("tiles", center.tiles, [](const ScenarioPart& list) {
    std::vector<TileCondition> tiles;
    for (const ScenarioPart& tile : list.items()) {
      tiles.push_back(readTile(tile));
    }
    return tiles;
  });
  part.read("lacks", center.lacks, readTexts);
  part.read("launches", center.launches, readCount);
  part.read("understands layout", center.understandsLayout, readFlag);
  return center;
}

LevelCondition readLevelOf(const ScenarioPart& part) {
  part.allow({"volume", "muted", "output"});
  LevelCondition level;
  part.read("volume", level.volume, readLevel);
  part.read("muted", level.isMuted, readFlag);
  part.read("output", level.output, readText);
  return level;
}

DefaultDeviceCondition readDefaultDevice(const ScenarioPart& part) {
  DefaultDeviceCondition device;
  if (part.isText()) {
    device.uid = part.text();
    return device;
  }
  part.allow({"uid", "volume", "muted"});
  part.read("uid", device.uid, readText);
  part.read("volume", device.volume, readLevel);
  part.read("muted", device.isMuted, readFlag);
  return device;
}

ScenarioConditions::Menu readMenu(const ScenarioPart& part) {
  ScenarioConditions::Menu menu;
  if (part.isText()) {
    menu.isOpen = readOpen(part);
    return menu;
  }
  part.allow({"is", "shows", "lacks"});
  part.read("is", menu.isOpen, readOpen);
  part.read("shows", menu.shows, readTexts);
  part.read("lacks", menu.lacks, readTexts);
  return menu;
}

template <std::size_t count>
std::string readWord(const ScenarioPart& part, const std::string_view (&words)[count]) {
  const std::string text = part.text();
  if (std::ranges::find(words, text) == std::end(words)) {
    part.fail("is " + listOfNames(std::vector<std::string_view>(words, words + count)) +
              ", not \"" + text + "\"");
  }
  return text;
}

SetupCondition readSetup(const ScenarioPart& part) {
  SetupCondition setup;
  if (part.isText()) {
    setup.isOpen = readOpen(part);
    return setup;
  }
  part.allow({"is", "audio", "accessibility", "control center", "sound icon"});
  part.read("is", setup.isOpen, readOpen);
  for (const std::string_view step : scenarioSetupSteps) {
    if (const auto state = part.find(step)) {
      setup.steps[std::string(step)] = readWord(*state, scenarioStepStates);
    }
  }
  return setup;
}

bool readShown(const ScenarioPart& part) {
  return part.oneOf<bool>({{"shown", true}, {"hidden", false}});
}

HelperCondition readHelper(const ScenarioPart& part) {
  HelperCondition helper;
  if (part.isText()) {
    helper.isShown = readShown(part);
    return helper;
  }
  part.allow({"is", "stands"});
  part.read("is", helper.isShown, readShown);
  part.read("stands", helper.stands,
            [](const ScenarioPart& text) { return readWord(text, scenarioHelperPlaces); });
  return helper;
}

template <typename Value, typename Read>
void readMembers(const ScenarioPart& part, std::string_view name,
                 std::map<std::string, Value>& values, Read read) {
  const auto members = part.find(name);
  if (!members) {
    return;
  }
  members->requireObject();
  for (const auto& [key, value] : members->json().items()) {
    values[key] = read(members->at(key));
  }
}

}  // namespace

ScenarioConditions readConditions(const ScenarioPart& part) {
  part.allow({"running",       "panel",   "module",  "detail",         "control center", "defaults",
              "preferences",   "backup",  "devices", "default device", "levels",         "menu",
              "settings pane", "dock",    "printed", "reloads",        "urls",           "setup",
              "helper",        "pointer", "front"});
  if (part.json().empty()) {
    part.fail("expects nothing");
  }
  ScenarioConditions conditions;
  readMembers(part, "running", conditions.isRunning, readFlag);
  part.read("panel", conditions.panel, readPanel);
  part.read("module", conditions.hasModule, readShown);
  part.read("detail", conditions.detail,
            [](const ScenarioPart& text) { return readWord(text, scenarioDetailStates); });
  part.read("setup", conditions.setup, readSetup);
  part.read("helper", conditions.helper, readHelper);
  part.read("pointer", conditions.hasPointer, readShown);
  part.read("front", conditions.front, [](const ScenarioPart& text) { return text.anyText(); });
  part.read("control center", conditions.controlCenter, readControlCenter);
  readMembers(part, "defaults", conditions.defaults, readSetting);
  if (const auto preferences = part.find("preferences")) {
    preferences->allow({"as", "not as"});
    preferences->read("as", conditions.preferencesAs, readText);
    preferences->read("not as", conditions.preferencesNotAs, readText);
  }
  part.read("backup", conditions.hasBackup, readFlag);
  part.read("devices", conditions.devices, readTexts);
  part.read("default device", conditions.defaultDevice, readDefaultDevice);
  readMembers(part, "levels", conditions.levels, readLevelOf);
  part.read("menu", conditions.menu, readMenu);
  part.read("settings pane", conditions.settingsPane,
            [](const ScenarioPart& text) { return text.anyText(); });
  part.read("dock", conditions.dock, readTexts);
  part.read("printed", conditions.printed, [](const ScenarioPart& text) { return text.anyText(); });
  part.read("reloads", conditions.reloads, readCount);
  part.read("urls", conditions.urls, readTexts);
  return conditions;
}

}  // namespace plemora
