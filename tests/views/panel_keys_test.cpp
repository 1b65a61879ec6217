#include "views/panel_rig.h"

namespace plemora {
namespace {

const std::vector<std::string> inOrder = {"Volume",           "Mute Music", "Music volume",
                                          "Output for Music", "Speakers",   "Desk",
                                          "Headset",          "AirPlay",    "Sound Settings…"};

struct KeysTest : PanelTest {
  void SetUp() override {
    PanelTest::SetUp();
    world.play(11, "a", "Music", world.speakers);
    open();
  }
  void focusOn(const std::string& name) {
    for (std::size_t i = 0; i <= inOrder.size() && focused() != name; ++i) {
      press(Qt::Key_Tab);
    }
    ASSERT_EQ(focused(), name);
  }
};

TEST_F(KeysTest, TabReachesEveryControlInOrderAndComesRound) {
  for (const std::string& name : inOrder) {
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), name);
  }
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), inOrder.front());
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), inOrder.back());
}

TEST_F(KeysTest, UpAndDownKeepTheColumn) {
  focusOn("Music volume");
  press(Qt::Key_Down);
  EXPECT_EQ(focused(), "Speakers");
  press(Qt::Key_Down);
  EXPECT_EQ(focused(), "Desk");
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  EXPECT_EQ(focused(), "Volume");
}

TEST_F(KeysTest, KeysMoveTheFocusedSlider) {
  focusOn("Music volume");
  const std::vector<std::tuple<Qt::Key, Qt::KeyboardModifier, float>> steps = {
      {Qt::Key_Left, Qt::NoModifier, 0.9375f},
      {Qt::Key_Left, Qt::ShiftModifier, 0.9275f},
      {Qt::Key_PageDown, Qt::NoModifier, 0.6775f},
      {Qt::Key_PageUp, Qt::NoModifier, 0.9275f},
      {Qt::Key_Home, Qt::NoModifier, 0},
      {Qt::Key_Right, Qt::NoModifier, 0.0625f},
      {Qt::Key_End, Qt::NoModifier, 1}};
  for (const auto& [key, modifier, expected] : steps) {
    press(key, modifier);
    EXPECT_NEAR(sliderValue("Music volume"), expected, 1e-5) << key;
    EXPECT_NEAR(volume("a"), expected, 1e-5) << key;
  }
}

TEST_F(KeysTest, MMutesWhatIsFocusedOrElseTheMaster) {
  press(Qt::Key_M);
  EXPECT_TRUE(world.mixer->outputs().isMuted.get());
  focusOn("Music volume");
  press(Qt::Key_M);
  EXPECT_TRUE(world.row("a")->isMuted);
  focusOn("Unmute Music");
  press(Qt::Key_M);
  EXPECT_FALSE(world.row("a")->isMuted);
  focusOn("Volume");
  press(Qt::Key_M);
  EXPECT_FALSE(world.mixer->outputs().isMuted.get());
}

TEST_F(KeysTest, EnterAndSpacePressButtons) {
  focusOn("Output for Music");
  press(Qt::Key_Return);
  EXPECT_EQ(view->expandedApp(), "a");
  press(Qt::Key_Space);
  EXPECT_EQ(view->expandedApp(), std::nullopt);
  focusOn("Desk");
  press(Qt::Key_Enter);
  EXPECT_EQ(world.hal.defaultOutput(), world.usb);
}

TEST_F(KeysTest, TheRingShowsForKeysAndNotForThePointer) {
  const auto panel = scene->item()->property("panel").value<QObject*>();
  focusOn("Music volume");
  EXPECT_TRUE(panel->property("showsFocus").toBool());
  QTest::mouseClick(window.get(), Qt::LeftButton, {}, place("Volume"));
  EXPECT_FALSE(panel->property("showsFocus").toBool());
  press(Qt::Key_Tab);
  scene->setVisible(false);
  turn();
  EXPECT_EQ(focused(), "");
}

TEST_F(KeysTest, AssistiveTechnologyReadsAndMovesSliders) {
  world.mixer->setVolume(0.84f, "a");
  world.mixer->publish();
  turn();
  Interface slider = find("Music volume", QAccessible::Slider);
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ(slider->text(QAccessible::Description), "84 percent");
  QAccessibleValueInterface* value = slider->valueInterface();
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->minimumValue().toDouble(), 0);
  EXPECT_EQ(value->maximumValue().toDouble(), 1);
  EXPECT_NEAR(value->currentValue().toDouble(), 0.84, 1e-6);
  slider->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_NEAR(volume("a"), 0.7775, 1e-5);
  slider->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  slider->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_NEAR(volume("a"), 0.9025, 1e-5);
  value->setCurrentValue(0.25);
  turn();
  EXPECT_NEAR(volume("a"), 0.25, 1e-6);
  // The slider goes on to follow its model.
  world.mixer->setVolume(0.5f, "a");
  world.mixer->publish();
  turn();
  EXPECT_NEAR(sliderValue("Music volume"), 0.5, 1e-6);
  Interface mute = find("Mute Music");
  mute->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  turn();
  EXPECT_TRUE(world.row("a")->isMuted);
}

}  // namespace
}  // namespace plemora
