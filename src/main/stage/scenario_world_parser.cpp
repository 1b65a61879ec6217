#include <set>
#include <utility>

#include "main/stage/scenario_values.h"

// What a scenario says about the world, and what the pointer aims at.

namespace plemora {

namespace {

constexpr double farthest = 20000;  // points

ScenarioScreen readScreen(const ScenarioPart& part) {
  part.allow({"width", "height", "x", "y", "scale"});
  ScenarioScreen screen;
  const auto length = [](const ScenarioPart& side) { return side.number(320, farthest); };
  const auto place = [](const ScenarioPart& origin) { return origin.number(-farthest, farthest); };
  part.read("width", screen.width, length);
  part.read("height", screen.height, length);
  part.read("x", screen.x, place);
  part.read("y", screen.y, place);
  part.read("scale", screen.scale, [](const ScenarioPart& scale) { return scale.number(1, 4); });
  return screen;
}

template <typename Item>
std::vector<Item> readList(const ScenarioPart& part, Item (*read)(const ScenarioPart&),
                           std::string Item::*name) {
  std::vector<Item> items;
  std::set<std::string> names;
  for (const ScenarioPart& entry : part.items()) {
    items.push_back(read(entry));
    if (!names.insert(items.back().*name).second) {
      entry.fail("there is another one called \"" + items.back().*name + "\"");
    }
  }
  return items;
}

ScenarioControlCenter readControlCenter(const ScenarioPart& part) {
  part.allow({"opens after", "edits after", "ignores edit button", "comes back after", "stays down",
              "tiles apart"});
  ScenarioControlCenter center;
  const auto delay = [](const ScenarioPart& seconds) { return seconds.number(0, 3600); };
  const auto flag = [](const ScenarioPart& value) { return value.flag(); };
  part.read("opens after", center.openDelay, delay);
  part.read("edits after", center.editDelay, delay);
  part.read("comes back after", center.relaunchDelay, delay);
  part.read("ignores edit button", center.ignoresEditButton, flag);
  part.read("stays down", center.staysDown, flag);
  part.read("tiles apart", center.tileGap,
            [](const ScenarioPart& points) { return points.number(0, 40); });
  return center;
}

// All that can be said at any time.
void readWorld(const ScenarioPart& part, ScenarioWorld& world) {
  part.read("screens", world.screens, [](const ScenarioPart& list) {
    std::vector<ScenarioScreen> screens;
    for (const ScenarioPart& screen : list.items()) {
      screens.push_back(readScreen(screen));
    }
    if (screens.size() > 8) {
      list.fail("may hold 8 screens at most");
    }
    return screens;
  });
  part.read("appearance", world.isDark, [](const ScenarioPart& text) {
    return text.oneOf<bool>({{"dark", true}, {"light", false}});
  });
  part.read("wallpaper", world.wallpaper, [](const ScenarioPart& text) { return text.text(); });
  part.read("trusted", world.isTrusted, [](const ScenarioPart& flag) { return flag.flag(); });
  part.read("consent", world.consent, [](const ScenarioPart& text) {
    return text.oneOf<ScenarioConsent>({{"granted", ScenarioConsent::granted},
                                        {"refused", ScenarioConsent::refused},
                                        {"undecided", ScenarioConsent::undecided}});
  });
  part.read("system", world.systemVersion, [](const ScenarioPart& text) { return text.text(); });
  part.read("build", world.build, [](const ScenarioPart& text) { return text.text(); });
  part.read("layout", world.layout, [](const ScenarioPart& text) {
    return text.oneOf<ScenarioLayout>({{"fresh", ScenarioLayout::fresh},
                                       {"replaced", ScenarioLayout::replaced},
                                       {"no sound", ScenarioLayout::noSound},
                                       {"unknown", ScenarioLayout::unknown},
                                       {"missing", ScenarioLayout::missing}});
  });
  part.read("control center", world.controlCenter, readControlCenter);
  part.read("forgets controls", world.forgetsControls,
            [](const ScenarioPart& flag) { return flag.flag(); });
  if (const auto defaults = part.find("defaults")) {
    defaults->requireObject();
    for (const auto& [key, value] : defaults->json().items()) {
      world.defaults[key] = readSetting(defaults->at(key));
    }
  }
}

}  // namespace

ScenarioSetting readSetting(const ScenarioPart& part) {
  if (part.json().is_null()) {
    return {};
  }
  if (part.json().is_boolean()) {
    return part.flag();
  }
  if (part.isText()) {
    return part.anyText();
  }
  part.fail("must be true, false, a text, or null for a setting that is not there");
}

std::string readProgram(const ScenarioPart& part) {
  return part.text();
}

Point readPoint(const ScenarioPart& part) {
  const auto numbers = part.items();
  if (numbers.size() != 2) {
    part.fail("must hold two numbers, x and y, with y down from the top of the main screen");
  }
  return {numbers[0].number(-farthest, farthest), numbers[1].number(-farthest, farthest)};
}

ScenarioTarget readTarget(const ScenarioPart& part) {
  using Kind = ScenarioTarget::Kind;
  ScenarioTarget target;
  if (part.isText()) {
    target.kind = part.oneOf<Kind>({{"status item", Kind::statusItem},
                                    {"Control Center item", Kind::controlCenterItem},
                                    {"edit button", Kind::editButton},
                                    {"module", Kind::module},
                                    {"slider of the module", Kind::moduleSlider},
                                    {"close button of System Settings", Kind::closeSettings},
                                    {"title bar of System Settings", Kind::settingsBar},
                                    {"close button of setup", Kind::closeSetup},
                                    {"title bar of setup", Kind::setupBar},
                                    {"desktop", Kind::desktop}});
    return target;
  }
  part.allow({"tile", "remove", "index", "gallery", "menu", "panel", "settings", "prompt", "dock",
              "player", "point"});
  const auto index = part.find("index");
  const std::size_t members = part.json().size() - (index ? 1 : 0);
  if (members != 1) {
    part.fail("must name one thing to aim at, not " + std::to_string(members));
  }
  if (const auto point = part.find("point")) {
    target.kind = Kind::point;
    target.point = readPoint(*point);
  }
  constexpr std::pair<std::string_view, Kind> kinds[] = {
      {"tile", Kind::tile},      {"remove", Kind::removeBadge}, {"gallery", Kind::galleryEntry},
      {"menu", Kind::menuEntry}, {"panel", Kind::panel},        {"settings", Kind::settings},
      {"prompt", Kind::prompt},  {"dock", Kind::dock},          {"player", Kind::player}};
  for (const auto& [name, kind] : kinds) {
    if (const auto found = part.find(name)) {
      target.kind = kind;
      target.name = found->text();
    }
  }
  if (index) {
    if (target.kind != Kind::tile && target.kind != Kind::removeBadge) {
      index->fail("belongs to a \"tile\" alone");
    }
    target.index = index->whole(0, 100);
  }
  return target;
}

ScenarioDevice readDevice(const ScenarioPart& part) {
  part.allow({"uid", "name", "transport", "volume", "muted"});
  ScenarioDevice device;
  device.uid = part.at("uid").text();
  device.name = device.uid;
  part.read("name", device.name, [](const ScenarioPart& name) { return name.text(); });
  part.read("transport", device.transport, [](const ScenarioPart& text) {
    const auto name = [](std::string_view word) { return std::pair(word, std::string(word)); };
    return text.oneOf<std::string>({name("built-in"), name("bluetooth"), name("usb"),
                                    name("displayport"), name("hdmi"), name("airplay"),
                                    name("thunderbolt")});
  });
  part.read("volume", device.volume, [](const ScenarioPart& volume) -> std::optional<double> {
    if (volume.json().is_null()) {
      return std::nullopt;
    }
    return volume.number(0, 1);
  });
  part.read("muted", device.isMuted, [](const ScenarioPart& flag) { return flag.flag(); });
  return device;
}

ScenarioPlayer readPlayer(const ScenarioPart& part) {
  ScenarioPlayer player;
  if (part.isText()) {
    player.name = part.text();
  } else {
    part.allow({"name", "loudness", "frequency"});
    player.name = part.at("name").text();
    part.read("loudness", player.loudness,
              [](const ScenarioPart& number) { return number.number(0, 1); });
    part.read("frequency", player.frequency,
              [](const ScenarioPart& number) { return number.number(20, 20000); });
  }
  if (player.name == scenarioProgram || player.name == scenarioControlCenter) {
    part.fail("\"" + player.name + "\" is no name for a player");
  }
  return player;
}

ScenarioWorld readStage(const ScenarioPart& part) {
  part.allow({"screens", "appearance", "wallpaper", "trusted", "consent", "system", "build",
              "layout", "control center", "forgets controls", "defaults", "devices", "players",
              "arguments"});
  ScenarioWorld world;
  readWorld(part, world);
  part.read("devices", world.devices, [](const ScenarioPart& list) {
    return readList<ScenarioDevice>(list, readDevice, &ScenarioDevice::uid);
  });
  part.read("players", world.players, [](const ScenarioPart& list) {
    return readList<ScenarioPlayer>(list, readPlayer, &ScenarioPlayer::name);
  });
  part.read("arguments", world.arguments, [](const ScenarioPart& list) { return list.texts(); });
  return world;
}

ScenarioWorld readChange(const ScenarioPart& part) {
  part.allow({"screens", "appearance", "wallpaper", "trusted", "consent", "system", "build",
              "layout", "control center", "forgets controls", "defaults"});
  if (part.json().empty()) {
    part.fail("changes nothing");
  }
  ScenarioWorld world;
  readWorld(part, world);
  return world;
}

}  // namespace plemora
