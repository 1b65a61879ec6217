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
  part.allow({"running", "panel", "module", "detail", "control center", "defaults", "preferences",
              "backup", "devices", "default device", "levels", "menu", "settings pane", "dock",
              "printed", "reloads", "urls"});
  if (part.json().empty()) {
    part.fail("expects nothing");
  }
  ScenarioConditions conditions;
  readMembers(part, "running", conditions.isRunning, readFlag);
  part.read("panel", conditions.panel, readPanel);
  part.read("module", conditions.hasModule, [](const ScenarioPart& text) {
    return text.oneOf<bool>({{"shown", true}, {"hidden", false}});
  });
  part.read("detail", conditions.detail, [](const ScenarioPart& text) {
    const auto state = [](std::size_t i) {
      return std::pair(scenarioDetailStates[i], std::string(scenarioDetailStates[i]));
    };
    return text.oneOf<std::string>({state(0), state(1), state(2), state(3), state(4)});
  });
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
