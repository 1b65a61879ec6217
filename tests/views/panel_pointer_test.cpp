#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "views/panel_rig.h"

namespace plemora {
namespace {

TEST_F(PanelTest, IsBuiltAtTheFirstUseAndReportsItsHeight) {
  world.play(11, "a", "Music", world.speakers);
  start();
  std::vector<double> heights;
  scene->setHeightHandler([&](double height) { heights.push_back(height); });
  scene->setVisible(true);
  scene->setVisible(false);
  EXPECT_FALSE(scene->isBuilt());
  open();
  EXPECT_TRUE(scene->isBuilt());
  EXPECT_EQ(scene->fittingHeight(), view->height());
  view->toggleExpanded("a");
  turn();
  ASSERT_FALSE(heights.empty());
  EXPECT_EQ(heights.back(), view->height());
}

TEST_F(PanelTest, EveryControlHasItsNameAndRole) {
  world.play(11, "a", "Music", world.speakers);
  open();
  const std::vector<std::pair<const char*, QAccessible::Role>> controls = {
      {"Volume", QAccessible::Slider},        {"Mute Music", QAccessible::Button},
      {"Music volume", QAccessible::Slider},  {"Output for Music", QAccessible::Button},
      {"Speakers", QAccessible::RadioButton}, {"Desk", QAccessible::RadioButton},
      {"AirPlay", QAccessible::Button},       {"Sound Settings…", QAccessible::Button},
      {"Apps", QAccessible::Heading},         {"Output", QAccessible::Heading}};
  for (const auto& [name, role] : controls) {
    EXPECT_NE(find(name, role), nullptr) << name;
  }
  EXPECT_TRUE(find("Speakers")->state().checked);
  EXPECT_FALSE(find("Desk")->state().checked);
  EXPECT_EQ(find("AirPlay")->text(QAccessible::Description), "AirPlay speakers and TVs");
}

TEST_F(PanelTest, IsWrittenInWhiteOnDarkGlassAndInBlackOnLight) {
  start();
  open();
  window->setColor(QColor::fromHslF(0, 0, 0.5));
  for (const bool isDark : {true, false, true}) {
    view->isDark.set(isDark);
    turn();
    const QImage title = window->grabWindow().copy(0, 0, 100, 26);
    int lightest = 0;
    int darkest = 255;
    for (int y = 0; y < title.height(); ++y) {
      for (int x = 0; x < title.width(); ++x) {
        lightest = std::max(lightest, title.pixelColor(x, y).lightness());
        darkest = std::min(darkest, title.pixelColor(x, y).lightness());
      }
    }
    EXPECT_GT(lightest, isDark ? 230 : 120);
    EXPECT_LT(darkest, isDark ? 135 : 50);
    EXPECT_TRUE(isDark ? darkest > 120 : lightest < 135) << "of one colour alone";
    const QColor fill = window->grabWindow().pixelColor(place("Volume", 0.1));
    EXPECT_TRUE(isDark ? fill.lightness() > 230 : fill.lightness() < 80) << fill.lightness();
  }
}

TEST_F(PanelTest, ADragMovesTheSliderAndTheModelAndIsNotPulledBack) {
  world.play(11, "a", "Music", world.speakers);
  open();
  QTest::mousePress(window.get(), Qt::LeftButton, {}, place("Music volume", 0.5));
  turn();
  EXPECT_NEAR(sliderValue("Music volume"), 0.5, 0.02);
  EXPECT_NEAR(volume("a"), 0.5, 0.02);
  const int y = place("Music volume").y();
  QTest::mouseMove(window.get(), {307, y});
  turn();
  EXPECT_EQ(sliderValue("Music volume"), 1);
  QTest::mouseMove(window.get(), {0, y});
  QTest::mouseRelease(window.get(), Qt::LeftButton, {}, {0, y});
  turn();
  EXPECT_EQ(volume("a"), 0);
  EXPECT_EQ(find("Music volume")->text(QAccessible::Description), "0 percent");
}

TEST_F(PanelTest, TheWheelTurnsWhatItIsOver) {
  world.play(11, "a", "Music", world.speakers);
  open();
  wheel("Music volume", -120);
  EXPECT_FLOAT_EQ(static_cast<float>(sliderValue("Music volume")), 1 - 0.0625f);
  wheel("Music volume", -120, Qt::ShiftModifier);
  EXPECT_FLOAT_EQ(static_cast<float>(sliderValue("Music volume")), 1 - 0.0725f);
  wheel("Volume", -240);
  EXPECT_FLOAT_EQ(*world.mixer->outputs().volume.get(), 0.875f);
}

TEST_F(PanelTest, WithoutASettableVolumeTheMasterSliderRests) {
  for (const AudioObjectID device : {world.speakers, world.usb, world.headset}) {
    world.hal.updateDevice(device, [](SimulatedDevice& facts) {
      facts.volume.reset();
      facts.hasSettableVolume = false;
    });
  }
  open();
  const double before = sliderValue("Volume");
  EXPECT_DOUBLE_EQ(item("Volume", QAccessible::Slider)->opacity(), 0.45);
  QTest::mouseClick(window.get(), Qt::LeftButton, {}, place("Volume", 0.3));
  wheel("Volume", 120);
  turn();
  EXPECT_EQ(sliderValue("Volume"), before);
  press(Qt::Key_Tab);
  EXPECT_NE(focused(), "Volume");
}

TEST_F(PanelTest, OneListOfOutputsIsOpenAtATime) {
  world.play(11, "a", "Music", world.speakers);
  world.play(12, "b", "Video", world.speakers);
  open();
  click("Output for Music", QAccessible::Button);
  settleTransitions();
  ASSERT_NE(find("Output for Music", QAccessible::Grouping), nullptr);
  click("Output for Video", QAccessible::Button);
  settleTransitions();
  EXPECT_EQ(find("Output for Music", QAccessible::Grouping), nullptr);
  Interface list = find("Output for Video", QAccessible::Grouping);
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->childCount(), 3);
  list->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  turn();
  EXPECT_EQ(world.row("b")->outputUID, "usb");
  EXPECT_TRUE(find("Output for Video", QAccessible::Grouping)->child(1)->state().checked);
  click("Output for Video", QAccessible::Button);
  settleTransitions();
  EXPECT_EQ(find("Output for Video", QAccessible::Grouping), nullptr);
}

TEST_F(PanelTest, IconsMuteAndDeviceRowsChoose) {
  world.play(11, "a", "Music", world.speakers);
  open();
  click("Mute Music");
  EXPECT_TRUE(world.row("a")->isMuted);
  EXPECT_TRUE(find("Unmute Music")->state().checked);
  click("Desk");
  EXPECT_EQ(world.hal.defaultOutput(), world.usb);
  EXPECT_TRUE(find("Desk")->state().checked);
  click("Sound Settings…");
  EXPECT_EQ(soundSettings, 1);
}

TEST_F(PanelTest, AirPlayOpensBesideItsRowOnceForEachClick) {
  start();
  scene->setScreenMapping([](const Rect& rect) { return rect.offset(1000, 0); });
  open();
  click("AirPlay");
  click("AirPlay");
  ASSERT_EQ(routes.anchors.size(), 2u);
  QQuickItem* row = item("AirPlay");
  EXPECT_EQ(routes.anchors[0], (Rect{1000, row->mapToScene({0, 0}).y(), 308, row->height()}));
  world.clock.advanceTo(5);
  routes.closed();
  EXPECT_EQ(view->lastPickerClosed(), 5);
}

TEST_F(PanelTest, AsksForPermissionWhereItIsMissing) {
  world.consent.setPreflight(1);
  world.play(11, "a", "Music", world.speakers);
  open();
  EXPECT_EQ(find("Mute Music"), nullptr);
  click("Turn on app volumes");
  EXPECT_EQ(setUps, 1);
  world.consent.setPreflight(0);
  world.mixer->refreshPermission();
  settleTransitions();
  EXPECT_EQ(find("Turn on app volumes"), nullptr);
  EXPECT_NE(find("Mute Music"), nullptr);
}

TEST_F(PanelTest, MetersRunOnlyWhileThePanelIsOpen) {
  world.play(11, "a", "Music", world.speakers);
  start();
  world.mixer->setVolume(0.5f, "a");
  world.settle();
  const int before = world.main.pendingTimers();
  open();
  EXPECT_GT(world.main.pendingTimers(), before);
  for (int i = 0; i < 6; ++i) {
    world.hal.step(512);
    world.pass(1.0 / 30);
  }
  QQuickItem* slider = item("Music volume", QAccessible::Slider);
  ASSERT_NE(slider, nullptr);
  EXPECT_GT(slider->property("level").toDouble(), 0.5);
  scene->setVisible(false);
  turn();
  EXPECT_EQ(world.main.pendingTimers(), before);
  EXPECT_LT(slider->property("level").toDouble(), 0);
}

}  // namespace
}  // namespace plemora
