#include "menubar/control_slider.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_system_info.h"
#include "support/log_keeper.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A slider of 120 points with a knob of 20, whose middle goes from 10 to 110.
struct ControlSliderTest : testing::Test {
  static constexpr double width = 120;

  ControlSliderTest() {
    slider.knob = {20, 14};
    slider.onValueChanged = [this](float value) { values.push_back(value); };
    slider.onEditingChanged = [this](bool isEditing) { edits.push_back(isEditing); };
  }

  ControlSlider slider;
  std::vector<float> values;
  std::vector<bool> edits;
};

TEST_F(ControlSliderTest, TheMiddleOfTheKnobFollowsThePointer) {
  struct Case {
    double x;
    float value;
  };
  for (const Case& each : std::vector<Case>{{10, 0.0f},
                                            {60, 0.5f},
                                            {35, 0.25f},
                                            {110, 1.0f},
                                            {9, 0.0f},
                                            {-4000, 0.0f},
                                            {111, 1.0f},
                                            {infinity, 1.0f},
                                            {-infinity, 0.0f}}) {
    slider.drag(each.x, width);
    EXPECT_FLOAT_EQ(slider.value, each.value) << each.x;
    EXPECT_FLOAT_EQ(values.back(), each.value) << each.x;
  }
  slider.value = 0.25f;
  EXPECT_DOUBLE_EQ(slider.knobOffset(width), 25);
  slider.drag(nan, width);
  EXPECT_EQ(slider.value, 0.25f);
}

TEST_F(ControlSliderTest, IsUsableWhenNarrowerThanItsKnob) {
  for (const double narrow : {20.5, 20.0, 5.0, 0.0, -3.0}) {
    EXPECT_EQ(slider.travel(narrow), 1) << narrow;
    slider.drag(10.25, narrow);
    EXPECT_FLOAT_EQ(slider.value, 0.25f) << narrow;
    slider.drag(11, narrow);
    EXPECT_EQ(slider.value, 1) << narrow;
  }
}

TEST_F(ControlSliderTest, TellsOfADragOnceAtItsBeginAndOnceAtItsEnd) {
  slider.endDrag();
  EXPECT_THAT(edits, IsEmpty());
  slider.drag(20, width);
  slider.drag(30, width);
  EXPECT_THAT(edits, ElementsAre(true));
  EXPECT_TRUE(slider.sliderKnob().pressed);
  slider.endDrag();
  slider.endDrag();
  EXPECT_THAT(edits, ElementsAre(true, false));
  EXPECT_FALSE(slider.isDragging());
}

TEST_F(ControlSliderTest, HearsOfTheBeginBeforeTheFirstValue) {
  std::vector<std::string> heard;
  slider.onValueChanged = [&](float) { heard.emplace_back("value"); };
  slider.onEditingChanged = [&](bool isEditing) { heard.emplace_back(isEditing ? "on" : "off"); };
  slider.drag(20, width);
  slider.endDrag();
  EXPECT_THAT(heard, ElementsAre("on", "value", "off"));
}

TEST_F(ControlSliderTest, DoesNothingWhileDisabled) {
  slider.value = 0.5f;
  slider.setHovering(true);
  EXPECT_TRUE(slider.isHovering());
  EXPECT_EQ(slider.opacity(), 1.0);
  slider.isEnabled = false;
  slider.drag(100, width);
  slider.turnWheel(3, false);
  slider.press(SliderKey::end);
  slider.increment();
  slider.assign(0.9);
  EXPECT_EQ(slider.value, 0.5f);
  EXPECT_THAT(values, IsEmpty());
  EXPECT_THAT(edits, IsEmpty());
  EXPECT_FALSE(slider.isHovering());
  EXPECT_EQ(slider.opacity(), 0.45);
}

TEST_F(ControlSliderTest, ADragEndsAlsoWhenTheSliderWasDisabledMeanwhile) {
  slider.drag(60, width);
  slider.isEnabled = false;
  slider.drag(100, width);
  EXPECT_FLOAT_EQ(slider.value, 0.5f);
  slider.endDrag();
  EXPECT_THAT(edits, ElementsAre(true, false));
  EXPECT_FALSE(slider.isDragging());
}

TEST_F(ControlSliderTest, SixteenStepsGoFromEndToEndExactly) {
  for (int i = 1; i <= 16; ++i) {
    slider.increment();
    EXPECT_EQ(slider.value, static_cast<float>(i) / 16);
  }
  slider.increment();
  EXPECT_EQ(slider.value, 1.0f);
  for (int i = 15; i >= 0; --i) {
    slider.decrement();
    EXPECT_EQ(slider.value, static_cast<float>(i) / 16);
  }
  slider.decrement();
  EXPECT_EQ(slider.value, 0.0f);
}

TEST_F(ControlSliderTest, WheelAndKeysMoveByTheirSteps) {
  const auto after = [&](auto&& act) {
    slider.value = 0.5f;
    act();
    return slider.value;
  };
  const auto wheel = [&](double notches, bool isFine) {
    return after([&] { slider.turnWheel(notches, isFine); });
  };
  EXPECT_EQ(wheel(1, false), 0.5625f);
  EXPECT_EQ(wheel(-2, false), 0.375f);
  EXPECT_EQ(wheel(0.5, false), 0.53125f) << "of a wheel without notches";
  EXPECT_FLOAT_EQ(wheel(1, true), 0.51f);
  EXPECT_FLOAT_EQ(wheel(-3, true), 0.47f);
  EXPECT_EQ(wheel(1e300, false), 1.0f);
  EXPECT_EQ(wheel(nan, false), 0.5f);

  struct Case {
    SliderKey key;
    float value;
    float fine;
  };
  for (const Case& each : std::vector<Case>{{SliderKey::up, 0.5625f, 0.51f},
                                            {SliderKey::right, 0.5625f, 0.51f},
                                            {SliderKey::down, 0.4375f, 0.49f},
                                            {SliderKey::left, 0.4375f, 0.49f},
                                            {SliderKey::home, 0.0f, 0.0f},
                                            {SliderKey::end, 1.0f, 1.0f}}) {
    EXPECT_EQ(after([&] { slider.press(each.key); }), each.value);
    EXPECT_FLOAT_EQ(after([&] { slider.press(each.key, true); }), each.fine);
  }
  EXPECT_EQ(after([&] { slider.press(SliderKey::pageUp); }), 0.75f);
  EXPECT_EQ(after([&] { slider.press(SliderKey::pageDown); }), 0.25f);
}

TEST_F(ControlSliderTest, SpeaksWholePercentsHalvesRoundedUp) {
  struct Case {
    float value;
    std::string text;
  };
  for (const Case& each : std::vector<Case>{{0.0f, "0 percent"},
                                            {0.004f, "0 percent"},
                                            {0.005f, "1 percent"},
                                            {0.125f, "13 percent"},
                                            {0.84f, "84 percent"},
                                            {0.9949f, "99 percent"},
                                            {1.0f, "100 percent"}}) {
    slider.value = each.value;
    EXPECT_EQ(slider.valueText(), each.text);
  }
}

TEST_F(ControlSliderTest, TheTrackHasTheColourOfTheLook) {
  struct Case {
    std::string release;
    std::string setting;  ///< of "look"
    bool isDark;
    Color color;
  };
  for (const Case& each : std::vector<Case>{
           {"26.1", "", true, Color::black(0.32)},
           {"26.1", "", false, Color::black(0.1)},
           {"26.1", "track=0.5", true, Color::black(0.32)},
           {"26.4", "", true, Color::white(0.14)},
           {"26.4", "", false, Color::white(0.14)},
           {"26.4", "track=0.5", false, Color::white(0.5)},
           {"27", "", true, Color::white(0.083)},
           {"27", "track=0", true, Color::white(0)},
           {"27", "track=much", true, Color::white(0.083)},
       }) {
    LogKeeper log;
    MemoryDefaults defaults;
    ScriptedSystemInfo system;
    ScriptedAppearance appearance;
    defaults.setString("release", each.release);
    if (!each.setting.empty()) {
      defaults.setString("look", each.setting);
    }
    const ControlCenterLook look(defaults, system, appearance,
                                 ControlCenterLook::ReleaseSource::settingElseSystem);
    EXPECT_EQ(ControlSlider::trackColor(look, each.isDark), each.color)
        << each.release << " " << each.setting << " " << each.isDark;
  }
}

TEST_F(ControlSliderTest, TheFillIsDimmedForWhatIsMuted) {
  EXPECT_EQ(slider.fillColor(true), Color::white(0.95));
  EXPECT_EQ(slider.fillColor(false), Color::black(0.62));
  slider.isDimmed = true;
  EXPECT_EQ(slider.fillColor(true), Color::white(0.35));
  EXPECT_EQ(slider.fillColor(false), Color::black(0.35));
}

}  // namespace
}  // namespace plemora
