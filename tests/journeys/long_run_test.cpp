#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "adapters/stage/desktop/stage_tile_grid.h"
#include "controlcenter/control_center_layout.h"
#include "journeys/journey.h"

namespace plemora {
namespace {

Scenario scenarioOf(const std::string& stage) {
  return parseScenario(R"({"about": "a", "stage": )" + stage + R"(, "steps": [{"wait": 1}]})",
                       "long.json");
}

/// What Control Center shows where, in any order: identifiers are new with every replacement.
std::vector<std::string> tilesOf(StageWorld& world) {
  std::vector<std::string> tiles;
  for (const StageTile& tile : world.desktop.controlCenter.grid().tiles()) {
    tiles.push_back((tile.control ? tile.control->displayName : tile.module) + " " +
                    std::to_string(tile.column) + " " + std::to_string(tile.row) + " " +
                    std::string(tile.size.name));
  }
  std::ranges::sort(tiles);
  return tiles;
}

TEST(LongRun, QuitAndStartedTenTimesTheLayoutIsTheSameAndNothingGrows) {
  Journey journey(scenarioOf(
      R"j({"layout": "replaced", "defaults": {"soundReplaced": true,
           "controlsPrimedForSystem": "Version 26.4 (Build 25E246)"}})j"));
  std::vector<std::string> replaced;
  std::vector<std::string> restored;
  std::size_t bytes = 0;
  for (int round = 0; round < 10; ++round) {
    journey.program.start();
    journey.advance(5);
    const auto with = tilesOf(journey.world);
    journey.program.quit();
    journey.advance(3);
    const auto without = tilesOf(journey.world);
    if (round == 0) {
      replaced = with;
      restored = without;
    }
    EXPECT_EQ(with, replaced) << round;
    EXPECT_EQ(without, restored) << round;
    // From the second round on: the first one began as setup had left it.
    if (round == 1) {
      bytes = journey.world.storedLayout().size();
    } else if (round > 1) {
      EXPECT_EQ(journey.world.storedLayout().size(), bytes) << round;
    }
  }
  EXPECT_THAT(replaced, testing::Contains(testing::StartsWith("Plemora")).Times(2));
  EXPECT_THAT(restored, testing::Contains(testing::StartsWith("Sound")).Times(1));
}

/// A day in the life of the program: what users, devices and Control Center do in no order.
class Day {
 public:
  explicit Day(unsigned seed)
      : random_(seed),
        journey_(scenarioOf(R"({"layout": "replaced", "players": ["Music", "Podcasts", "Calls"],
            "defaults": {"soundReplaced": true}})")) {
    journey_.program.start();
    journey_.advance(15);
    rest();
  }

  void act() {
    ++acts_;
    StageDesktop& desktop = journey_.world.desktop;
    switch (below(14)) {
      case 0:
      case 1:
      case 2:
        click(statusItem());
        break;
      case 3:
      case 4:
        pressControl();
        break;
      case 5:
        click(controlCenterItem());
        break;
      case 6:
        pressTile();
        break;
      case 7:
        desktop.key(escapeKeyCode);
        break;
      case 8:
        click({static_cast<double>(below(1440)), static_cast<double>(below(880))});
        break;
      case 9:
        device("dock", "Dock");
        break;
      case 10:
        device("pods", "AirPods Pro");
        break;
      case 11:
        player();
        break;
      case 12:
        if (below(6) == 0) {
          desktop.controlCenter.kill();
        } else {
          desktop.accessibility.setTrusted(below(3) != 0);
        }
        break;
      case 13:
        desktop.appearance.setDark(below(2) == 0);
        break;
    }
    journey_.advance(0.05 * below(12));
  }

  /// Puts everything to rest and counts what is left.
  std::vector<int> rest() {
    StageDesktop& desktop = journey_.world.desktop;
    desktop.accessibility.setTrusted(true);
    desktop.settings.close();
    for (const char* uid : {"dock", "pods"}) {
      desktop.pull(uid);
    }
    for (const char* name : {"Music", "Podcasts", "Calls", "Radio", "Games"}) {
      desktop.players.stop(StageWorld::playerID(name));
    }
    desktop.appearance.setDark(true);
    for (int i = 0; i < 3; ++i) {
      desktop.key(escapeKeyCode);
      click({720, 300});
      journey_.advance(2);
    }
    idle(700);  // no app that was silent for so long is listed any more
    return {static_cast<int>(desktop.windows.windows().size()),
            static_cast<int>(desktop.windows.visible().size()),
            desktop.mainQueue.pendingTimers(),
            desktop.hal.liveListeners(),
            desktop.hal.liveProcs(),
            desktop.input.globalMonitors(),
            desktop.input.localMonitors(),
            desktop.accessibility.observers()};
  }

  /// Nobody looks, so time passes in long strides.
  void idle(double seconds) {
    for (double left = seconds; left > 0; left -= 1) {
      journey_.world.desktop.mainQueue.advance(std::min(left, 1.0));
      journey_.world.desktop.settle();
    }
  }

  Journey& journey() { return journey_; }
  int acts() const { return acts_; }

 private:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

  void click(const Point& place) { journey_.world.desktop.click(place); }

  Point itemOf(const std::string& id) {
    const auto item = journey_.world.desktop.menuBar.extra(id);
    return item ? Point{item->frame.midX(), item->frame.midY()} : Point{10, 10};
  }
  Point statusItem() { return itemOf(""); }
  Point controlCenterItem() { return itemOf("com.apple.menuextra.controlcenter"); }

  void pressControl() {
    const auto controls = PlainContent::controls(journey_.world.desktop);
    if (!controls.empty()) {
      const StageControl& control =
          controls[static_cast<std::size_t>(below(static_cast<int>(controls.size())))];
      const double x = control.frame.x + control.frame.width * (0.1 + 0.08 * below(11));
      click({x, control.frame.midY()});
    }
  }

  void pressTile() {
    StageDesktop& desktop = journey_.world.desktop;
    for (const StageTile& tile : desktop.controlCenter.shownTiles()) {
      if (tile.control && desktop.controlCenter.isOpen()) {
        const Rect frame = desktop.controlCenter.panel().tile(tile);
        click({frame.x + frame.width * (0.1 + 0.08 * below(11)),
               frame.y + frame.height * (0.2 + 0.06 * below(11))});
        return;
      }
    }
  }

  void device(const std::string& uid, const std::string& name) {
    if (!journey_.world.desktop.pull(uid)) {
      journey_.world.plug({uid, name, "usb", 0.5, false});
    }
  }

  void player() {
    static const char* const names[] = {"Music", "Podcasts", "Calls", "Radio", "Games"};
    const std::string name = names[below(5)];
    StagePlayers& players = journey_.world.desktop.players;
    if (players.find(StageWorld::playerID(name)) != nullptr) {
      players.stop(StageWorld::playerID(name));
    } else {
      journey_.world.play({name, 0.1, 330});
    }
  }

  std::minstd_rand random_;
  Journey journey_;
  int acts_ = 0;
};

TEST(LongRun, ADayLeavesNothingBehind) {
  Day day(20);
  for (int i = 0; i < 100; ++i) {
    day.act();
  }
  // Once everything was used: some things are made at their first use and kept.
  const std::vector<int> before = day.rest();
  for (int hour = 0; hour < 24; ++hour) {
    for (int i = 0; i < 150; ++i) {
      day.act();
      ASSERT_TRUE(day.journey().program.isRunning());
    }
    EXPECT_EQ(day.rest(), before) << "after hour " << hour;
    day.idle(2800);
  }
  EXPECT_THAT(day.journey().overlay.faults(), testing::IsEmpty());
  EXPECT_GT(day.acts(), 3000);
}

}  // namespace
}  // namespace plemora
