#include <gtest/gtest.h>

#include "skin/skin_world.h"

namespace plemora {
namespace {

using enum InputEventType;

// Places on the screen. The track runs from 1094 to 1299, 40 to 44 below the module's top.
constexpr Point onTrack{1094 + 0.5 * 205, 758};
constexpr Point onTitle{1080, 790};
constexpr Point elsewhere{600, 300};

class SkinPointerTest : public testing::Test, protected SkinWorld {
 protected:
  SkinPointerTest() {
    hal.addDevice({.uid = "a", .name = "Speakers", .volume = 0.25F});
    main.drain();
    startShowing();
    skin->onPrepareDetail = [this](const Rect& rect) { prepared.push_back(rect); };
    skin->onOpenDetail = [this](const Rect& rect) { opened.push_back(rect); };
  }
  float deviceVolume() { return *hal.device(hal.defaultOutput()).volume; }

  std::vector<Rect> prepared, opened;
};

TEST_F(SkinPointerTest, DragsTheVolume) {
  send(leftMouseDown, onTrack);
  EXPECT_TRUE(skin->state.isDragging.get());
  EXPECT_NEAR(deviceVolume(), 0.5, 1e-6);
  closePanel();  // a drag holds the overlay
  tick(100);
  const struct {
    double x;
    float volume;
  } cases[] = {{1094, 0}, {1094 + 205 * 0.75, 0.75F}, {1299, 1}, {0, 0}, {1440, 1}};
  for (const auto& [x, volume] : cases) {
    send(leftMouseDragged, {x, 10});
    EXPECT_NEAR(skin->state.volume.get(), volume, 1e-6) << x;
    EXPECT_NEAR(deviceVolume(), volume, 1e-6) << x;
  }
  EXPECT_TRUE(skin->isShowing());
  send(leftMouseUp, elsewhere);
  EXPECT_FALSE(skin->state.isDragging.get());
  tick();
  EXPECT_FALSE(skin->isShowing());
  EXPECT_TRUE(input.postedKeys.empty() && prepared.empty() && opened.empty());
}

TEST_F(SkinPointerTest, LeavesAVolumeThatCannotBeSetAlone) {
  hal.updateDevice(hal.defaultOutput(),
                   [](SimulatedDevice& device) { device.hasSettableVolume = false; });
  outputs.reload();
  send(leftMouseDown, onTrack);
  EXPECT_EQ(skin->state.volume.get(), 0.25F);
}

TEST_F(SkinPointerTest, OpensTheDetailWhereItIsPressedBesideTheSlider) {
  const double before = skin->lastHandledPress();
  send(leftMouseDown, elsewhere);
  send(leftMouseDown, {module.maxX(), module.midY()});
  EXPECT_EQ(skin->lastHandledPress(), before);
  send(leftMouseDown, onTitle);
  EXPECT_EQ(skin->lastHandledPress(), clock.mediaTime());
  EXPECT_EQ(input.postedKeys, std::vector<int>{escapeKeyCode});
  EXPECT_EQ(prepared, std::vector<Rect>{module});
  closePanel();
  tick(30);
  EXPECT_TRUE(skin->isShowing());
  send(leftMouseUp, elsewhere);
  EXPECT_EQ(opened, std::vector<Rect>{module});
  EXPECT_EQ(skin->lastHandledPress(), clock.mediaTime());
}

TEST_F(SkinPointerTest, EndsADragWhoseEndItMissed) {
  for (const Point start : {onTrack, onTitle}) {
    send(leftMouseDown, start);
    tick();
    EXPECT_TRUE(opened.empty());
    input.pressedButtons = ~leftMouseButton;
    skin->onOpenDetail = [this](const Rect& rect) {
      opened.push_back(rect);
      skin->isSuppressed = true;
      skin->hide();
    };
    tick();
    EXPECT_FALSE(skin->state.isDragging.get());
  }
  EXPECT_EQ(opened.size(), 1U);
  EXPECT_FALSE(skin->isShowing());
}

TEST_F(SkinPointerTest, SeesWhatHappensOverItsOwnWindowsAndSwallowsNothing) {
  send(leftMouseDown, onTrack);
  input.pointer = {1299, 0};
  EXPECT_FALSE(input.sendHere({leftMouseDragged, 0, {}}));
  EXPECT_EQ(skin->state.volume.get(), 1);
  EXPECT_FALSE(input.sendHere({leftMouseUp, 0, {}}));
  EXPECT_FALSE(skin->state.isDragging.get());
  closePanel();
  tick();
  EXPECT_EQ(input.globalMonitors() + input.localMonitors(), 0);
}

TEST_F(SkinPointerTest, LightsUpTheTileUnderThePointer) {
  const auto path = [this] { return std::get<ShapeContent>(layer("glow")->content).path; };
  const auto glow = [this] { return layer("glow")->opacity; };
  const struct {
    double x;
    Rect lit;
  } cases[] = {{1060, {0, 0, 150, 64}},
               {1210, {0, 0, 150, 64}},
               {1211, {0, 0, 316, 64}},
               {1226, {166, 0, 150, 64}},
               {1375.5, {166, 0, 150, 64}}};
  for (const auto& [x, lit] : cases) {
    send(mouseMoved, {x, 740});
    EXPECT_TRUE(skin->state.isHovering.get());
    ASSERT_EQ(path().size(), 1U);
    EXPECT_EQ(path()[0].rect, lit) << x;
  }
  EXPECT_EQ(glow(), 0);
  main.advance(0.075);
  skin->tick();
  EXPECT_NEAR(glow(), 0.0225, 1e-9);
  tick(11);
  EXPECT_EQ(glow(), 0.045);
  const int updates = overlay().stageSurface().layerUpdates;
  send(mouseMoved, {1370, 740});
  EXPECT_EQ(overlay().stageSurface().layerUpdates, updates);

  send(mouseMoved, elsewhere);
  EXPECT_FALSE(skin->state.isHovering.get());
  EXPECT_EQ(path()[0].rect, (Rect{166, 0, 150, 64}));
  tick(11);
  EXPECT_EQ(glow(), 0);
  send(mouseMoved, onTitle);
  tick(5);
  skin->hide();
  EXPECT_FALSE(skin->state.isHovering.get());
  EXPECT_EQ(glow(), 0);
}

}  // namespace
}  // namespace plemora
