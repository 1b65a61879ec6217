#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "menubar/menu_bar_world.h"

// What the user does with the item and beside the panel.

namespace plemora {
namespace {

using testing::ElementsAre;
using Anchor = StatusItemController::Anchor;

struct StatusItemClicksTest : testing::Test {
  MenuBarWorld world;

  StageWindow& window() { return world.window(); }
  int monitors() const { return world.monitors(); }

  void clickElsewhere(Point where, InputEventType type = InputEventType::leftMouseDown) {
    world.input.sendElsewhere({.type = type, .location = where});
  }
  bool press(int keyCode) {
    return world.input.sendHere({.type = InputEventType::keyDown, .keyCode = keyCode});
  }
  std::optional<float> deviceVolume() { return world.hal.device(world.speakers).volume; }
  bool deviceIsMuted() { return world.hal.device(world.speakers).isMuted.value_or(false); }

  static void choose(const std::vector<MenuItem>& items, const std::string& title) {
    for (const MenuItem& item : items) {
      if (item.title == title) {
        item.action();
        return;
      }
    }
    ADD_FAILURE() << "no such item: " << title;
  }
};

TEST_F(StatusItemClicksTest, EachButtonDoesWhatUsersExpect) {
  world.startItem();
  world.bar.click();
  EXPECT_TRUE(window().isOnScreen());
  world.bar.click();
  world.pass(0.2);
  EXPECT_FALSE(window().isOnScreen());

  world.bar.click();
  world.bar.click(StatusButtonEvent::rightMouseDown);
  EXPECT_EQ(world.bar.menus.size(), 1u);
  world.pass(0.2);
  EXPECT_FALSE(window().isOnScreen()) << "the menu takes its place";

  world.bar.click(StatusButtonEvent::middleMouseDown);
  world.settle();
  EXPECT_TRUE(deviceIsMuted());
  world.bar.click(StatusButtonEvent::middleMouseDown);
  world.settle();
  EXPECT_FALSE(deviceIsMuted());
  EXPECT_FALSE(window().isOnScreen());
}

TEST_F(StatusItemClicksTest, TheWheelTurnsTheMasterBySixteenths) {
  world.hal.updateDevice(world.speakers, [](auto& device) { device.volume = 0.5f; });
  world.startItem();
  world.bar.scroll(1);
  world.bar.scroll(2);  // before the device has answered to the first
  EXPECT_EQ(deviceVolume(), 0.6875f);
  world.settle();
  world.bar.scroll(-4);
  EXPECT_EQ(deviceVolume(), 0.4375f);
  world.bar.scroll(100);
  world.pass(1);
  EXPECT_EQ(deviceVolume(), 1.0f);
  EXPECT_EQ(world.bar.image->variableValue, 1.0);
}

TEST_F(StatusItemClicksTest, ClosesOnClicksElsewhereAndOnEscape) {
  StatusItemController& controller = world.startOpen();
  const auto isOpen = [&] { return monitors() > 0; };
  clickElsewhere({10, 10});
  EXPECT_FALSE(isOpen());
  controller.open(Anchor::menuBar);
  clickElsewhere({10, 10}, InputEventType::rightMouseDown);
  EXPECT_FALSE(isOpen());
  controller.open(Anchor::menuBar);
  EXPECT_FALSE(press(54));
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(press(escapeKeyCode)) << "swallowed";
  EXPECT_FALSE(isOpen());
  EXPECT_FALSE(press(escapeKeyCode)) << "nobody listens any more";
}

TEST_F(StatusItemClicksTest, TheClickThatClosesTheListOfReceiversIsNotForThePanel) {
  StatusItemController& controller = world.startOpen();
  controller.panelView().presentRoutes({1058, 600, 308, 44});
  world.pass(5);
  world.picker.close();
  world.pass(0.59);
  clickElsewhere({10, 10});
  EXPECT_EQ(monitors(), 2);
  world.pass(0.02);
  clickElsewhere({10, 10});
  EXPECT_EQ(monitors(), 0);
}

TEST_F(StatusItemClicksTest, AClickOnTheIconClosesOnceAlsoWhenTheTrayReportsItLate) {
  world.startOpen();
  clickElsewhere({1210, 888});  // the press, seen as one in the tray's own window
  world.pass(0.3);
  EXPECT_FALSE(window().isOnScreen());
  world.bar.click();  // the tray reports it when the button is let go
  EXPECT_FALSE(window().isOnScreen());
  world.bar.click();
  EXPECT_TRUE(window().isOnScreen()) << "the next one opens";

  clickElsewhere({1100, 888});  // beside the icon
  world.pass(0.3);
  world.bar.click();
  EXPECT_TRUE(window().isOnScreen());
  clickElsewhere({1210, 888});
  world.pass(0.7);
  world.bar.click();
  EXPECT_TRUE(window().isOnScreen()) << "too long ago to be the same";
}

TEST_F(StatusItemClicksTest, OffersItsMenu) {
  bool canPutBack = false;
  bool fails = false;
  int putBacks = 0;
  int setUps = 0;
  world.hooks.canPutSoundBack = [&] { return canPutBack; };
  world.hooks.putSoundBack = [&] {
    ++putBacks;
    if (fails) {
      throw std::runtime_error("the layout is locked");
    }
  };
  StatusItemController& controller = world.startItem();
  controller.onSetUp = [&] { ++setUps; };
  controller.showMenu();
  const auto menu = world.bar.menus.back();
  EXPECT_THAT(menuTitles(menu),
              ElementsAre("Set Up Plemora…", "-", "Check for Updates…", "Quit Plemora"));
  EXPECT_EQ(menu.back().keyEquivalent, "q");
  choose(menu, "Set Up Plemora…");
  choose(menu, "Check for Updates…");
  choose(menu, "Quit Plemora");
  EXPECT_EQ(setUps, 1);
  EXPECT_EQ(world.updates.checks, 1);
  EXPECT_EQ(world.application.terminations, 1);

  canPutBack = true;
  world.defaults.setBoolean("soundReplaced", true);
  controller.showMenu();
  EXPECT_THAT(menuTitles(world.bar.menus.back()),
              ElementsAre("Set Up Plemora…", "Put Apple's Sound Back in Control Center", "-",
                          "Check for Updates…", "Quit Plemora"));
  fails = true;
  choose(world.bar.menus.back(), "Put Apple's Sound Back in Control Center");
  EXPECT_EQ(putBacks, 1);
  EXPECT_EQ(world.defaults.boolean("soundReplaced"), false);
}

TEST_F(StatusItemClicksTest, HostsThatShowTheMenuThemselvesCanOpenThePanelFromIt) {
  world.startItem();
  const auto menu = world.bar.handlers.menu();
  EXPECT_EQ(menuTitles(menu).front(), "Open Plemora");
  EXPECT_EQ(menu.size(), 5u);
  choose(menu, "Open Plemora");
  EXPECT_TRUE(window().isOnScreen());
  choose(menu, "Set Up Plemora…");  // nobody has come to show it: nothing happens
}

TEST_F(StatusItemClicksTest, ThePanelsOwnLinksLeadOut) {
  int setUps = 0;
  StatusItemController& controller = world.startOpen();
  controller.onSetUp = [&] { ++setUps; };
  controller.panelView().setUp();
  EXPECT_EQ(setUps, 1);
  controller.panelView().openSoundSettings();
  EXPECT_THAT(world.workspace.openedURLs,
              ElementsAre("x-apple.systempreferences:com.apple.Sound-Settings.extension"));
  world.pass(0.2);
  EXPECT_FALSE(window().isOnScreen());
}

}  // namespace
}  // namespace plemora
