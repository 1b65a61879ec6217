#include "menubar/status_item_controller.h"

#include <gmock/gmock.h>

#include <optional>
#include <utility>

#include "menubar/menu_bar_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Anchor = StatusItemController::Anchor;

// The item's button is at {1200, 876, 24, 24} and the content 300 high.
constexpr Rect finalFrame{1058, 570, 308, 300};

struct StatusItemControllerTest : testing::Test {
  MenuBarWorld world;

  StageWindow& window() { return world.window(); }
  int monitors() const { return world.monitors(); }
};

TEST_F(StatusItemControllerTest, MakesTheItemAndNoPanelYet) {
  StatusItemController& controller = world.startItem();
  EXPECT_EQ(world.bar.options.length, -2);
  EXPECT_EQ(world.bar.options.behavior, 0u);
  EXPECT_EQ(world.bar.options.actionMask, 10u);
  EXPECT_EQ(world.bar.options.accessibilityLabel, "Sound");
  EXPECT_EQ(controller.iconFrame(), world.bar.frame);

  EXPECT_FALSE(controller.isPanelVisible());
  EXPECT_THAT(world.windows.windows(), IsEmpty());
  EXPECT_EQ(world.contentsMade, 0);
  EXPECT_EQ(monitors(), 0);
  world.settle();
  EXPECT_EQ(world.main.pendingTimers(), 0);
  controller.close();
  controller.contentHeightChanged(500);
  EXPECT_EQ(world.contentsMade, 0) << "there is nothing to close or to resize";
}

TEST_F(StatusItemControllerTest, TheFirstOpeningMakesThePanelForGood) {
  StatusItemController& controller = world.startOpen();
  const PanelWindowOptions& options = window().options;
  EXPECT_EQ(options.level, 101);
  EXPECT_EQ(options.collectionBehavior, 0x151u);
  EXPECT_EQ(options.animationBehavior, 2);
  EXPECT_FALSE(options.isOpaque || options.hasShadow || options.isMovable ||
               options.hidesOnDeactivate || options.isReleasedWhenClosed);
  EXPECT_TRUE(options.isDark && options.canBecomeKey);
  StageSurface& surface = window().stageSurface();
  EXPECT_EQ(surface.content(), world.content);
  ASSERT_NE(surface.effect, nullptr) << "the detail style has a tuned backdrop";
  EXPECT_EQ(surface.effect->description().cornerRadius, 15);
  ASSERT_NE(surface.layer, nullptr);
  EXPECT_EQ(surface.layer->zPosition, 10);
  EXPECT_EQ(surface.layer->frame.size(), (Size{308, 300}));

  controller.close();
  world.pass(0.2);
  controller.open(Anchor::menuBar);
  EXPECT_EQ(world.contentsMade, 1);
  EXPECT_EQ(world.windows.made(), 1);
}

TEST_F(StatusItemControllerTest, StaysClosedWhileThereIsNoContentAndTriesAgain) {
  StatusItemController& controller = world.startItem();
  const auto content = std::exchange(world.content, nullptr);
  controller.open(Anchor::menuBar);
  EXPECT_FALSE(controller.isPanelVisible());
  EXPECT_THAT(world.windows.windows(), IsEmpty());
  EXPECT_EQ(monitors(), 0);

  world.content = content;
  controller.open(Anchor::menuBar);
  EXPECT_TRUE(controller.isPanelVisible());
  EXPECT_EQ(world.contentsMade, 2);
}

TEST_F(StatusItemControllerTest, ShowsTheVolumeAsItIs) {
  struct Case {
    std::optional<float> volume;
    bool muted;
    const char* symbol;
    std::optional<double> value;
    const char* description;
  };
  const Case cases[] = {
      {0.25f, false, "speaker.wave.3.fill", 0.25, "Sound"},
      {1.0f, false, "speaker.wave.3.fill", 1.0, "Sound"},
      {std::nullopt, false, "speaker.wave.3.fill", 1.0, "Sound"},
      {0.0f, false, "speaker.slash.fill", std::nullopt, "Sound muted"},
      {0.5f, true, "speaker.slash.fill", std::nullopt, "Sound muted"},
      {std::nullopt, true, "speaker.slash.fill", std::nullopt, "Sound muted"},
  };
  StatusItemController& controller = world.startItem();
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.volume.value_or(-1) << c.muted);
    controller.updateIcon(c.volume, c.muted);
    EXPECT_EQ(world.bar.image, (SymbolImage{c.symbol, c.value, 14, c.description}));
  }
}

TEST_F(StatusItemControllerTest, FollowsTheDefaultDevice) {
  world.hal.updateDevice(world.speakers, [](auto& device) { device.volume = 0.5f; });
  world.startItem();
  EXPECT_EQ(world.bar.image->variableValue, 0.5) << "from the start";
  world.hal.updateDevice(world.speakers, [](auto& device) { device.isMuted = true; });
  world.settle();
  EXPECT_EQ(world.bar.image->name, "speaker.slash.fill");
  const int before = world.bar.images;
  world.mixer->outputs().reload();
  EXPECT_EQ(world.bar.images, before) << "nothing has changed";
  world.hal.updateDevice(world.usb, [](auto& device) { device.volume.reset(); });
  world.hal.setDefaultOutput(world.usb);
  world.settle();
  EXPECT_EQ(world.bar.image->variableValue, 1.0);
}

TEST_F(StatusItemControllerTest, DropsThePanelDownFromTheIcon) {
  StatusItemController& controller = world.startItem();
  controller.open(Anchor::menuBar);
  EXPECT_EQ(window().frame(), finalFrame.offset(0, 4));
  EXPECT_EQ(window().alpha(), 0);
  EXPECT_TRUE(window().isKey);
  EXPECT_THAT(window().orders, ElementsAre(WindowOrder::keyAndFront));
  EXPECT_TRUE(world.content->isVisible);
  EXPECT_TRUE(controller.panelView().isVisible());
  EXPECT_EQ(world.content->measurements, 1);
  EXPECT_EQ(world.content->maximumHeight, 862);
  EXPECT_TRUE(world.bar.isHighlighted);
  EXPECT_EQ(monitors(), 2);

  world.pass(0.08);
  EXPECT_GT(window().alpha(), 0.55) << "fast at first";
  EXPECT_LT(window().alpha(), 1);
  EXPECT_LT(window().frame().y, 572);
  world.pass(0.1);
  EXPECT_EQ(window().frame(), finalFrame);
  EXPECT_EQ(window().alpha(), 1);
}

TEST_F(StatusItemControllerTest, TakesTheHeightOfItsContentOrElseTheLastOne) {
  struct Case {
    double content;
    double height;
  };
  StatusItemController& controller = world.startItem();
  for (const Case& c : {Case{0, 300}, Case{412, 412}, Case{0, 412}, Case{2000, 862}}) {
    SCOPED_TRACE(c.content);
    world.content->height = c.content;
    controller.open(Anchor::menuBar);
    world.pass(0.2);
    EXPECT_EQ(window().frame().height, c.height);
    EXPECT_EQ(window().frame().maxY(), 870);
    controller.close();
    world.pass(0.2);
  }
}

TEST_F(StatusItemControllerTest, HangsWhereItIsAskedTo) {
  std::optional<Rect> controlCenter = Rect{1300, 876, 30, 24};
  world.hooks.iconFrame = [&] { return controlCenter; };
  StatusItemController& controller = world.startItem();
  controller.open(Anchor::controlCenter);
  EXPECT_EQ(window().frame().x, 1124);
  controlCenter.reset();
  controller.open(Anchor::controlCenter);
  EXPECT_EQ(window().frame().x, finalFrame.x) << "the status item stands in";
  EXPECT_EQ(monitors(), 2) << "opened twice, watched once";
  world.bar.frame.reset();
  controller.open(Anchor::menuBar);
  world.pass(0.2);
  EXPECT_EQ(window().frame(), (Rect{1124, 570, 308, 300})) << "the corner, where trays are";
}

TEST_F(StatusItemControllerTest, LooksAtTheDevicesAnewWheneverItOpens) {
  StatusItemController& controller = world.startItem();
  int lists = 0;
  const auto subscription = world.mixer->outputs().devices.subscribe([&](const auto&) { ++lists; });
  controller.open(Anchor::menuBar);
  EXPECT_EQ(lists, 1);
  controller.close();
  controller.open(Anchor::controlCenter);
  EXPECT_EQ(lists, 2);
}

TEST_F(StatusItemControllerTest, AsksForThePermissionWhileItIsOpen) {
  world.consent.setPreflight(1);
  StatusItemController& controller = world.startItem();
  world.consent.setPreflight(2);
  controller.open(Anchor::menuBar);
  EXPECT_EQ(world.mixer->permission.get(), AudioPermission::Status::unknown) << "at once";
  world.consent.setPreflight(0);
  world.pass(0.9);
  EXPECT_EQ(world.mixer->permission.get(), AudioPermission::Status::unknown);
  world.pass(0.2);
  EXPECT_EQ(world.mixer->permission.get(), AudioPermission::Status::granted);
}

TEST_F(StatusItemControllerTest, FadesAwayAndLeavesNothingRunning) {
  StatusItemController& controller = world.startOpen();
  controller.close();
  EXPECT_FALSE(world.bar.isHighlighted);
  EXPECT_EQ(monitors(), 0);
  world.pass(0.1);
  EXPECT_TRUE(window().isOnScreen());
  EXPECT_GT(window().alpha(), 0);
  world.pass(0.05);
  EXPECT_FALSE(window().isOnScreen());
  EXPECT_FALSE(world.content->isVisible);
  EXPECT_FALSE(controller.panelView().isVisible());
  EXPECT_EQ(world.main.pendingTimers(), 0);
  controller.close();
  EXPECT_EQ(window().orders.size(), 2u) << "there is nothing to close";
}

TEST_F(StatusItemControllerTest, OpeningDuringTheFadeWins) {
  for (const double into : {0.0, 0.06, 0.119}) {
    SCOPED_TRACE(into);
    StatusItemController& controller = world.startOpen();
    controller.close();
    world.pass(into);
    controller.open(Anchor::menuBar);
    world.pass(1);
    EXPECT_TRUE(window().isOnScreen());
    EXPECT_EQ(window().alpha(), 1);
    EXPECT_EQ(window().frame(), finalFrame);
    EXPECT_EQ(monitors(), 2);
  }
}

TEST_F(StatusItemControllerTest, GrowsDownwardsWithItsContent) {
  struct Case {
    double height;
    Rect frame;
  };
  const Case cases[] = {
      {350, {1058, 520, 308, 350}}, {350.3, {1058, 520, 308, 350}}, {0, {1058, 520, 308, 350}},
      {-20, {1058, 520, 308, 350}}, {200, {1058, 670, 308, 200}},   {2000, {1058, 8, 308, 862}},
  };
  world.startOpen();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.height);
    world.content->resize(c.height);
    world.pass(0.1);
    EXPECT_NEAR(window().frame().maxY(), 870, 1e-9) << "also on the way";
    world.pass(0.1);
    EXPECT_EQ(window().frame(), c.frame);
  }
}

TEST_F(StatusItemControllerTest, AHeightThatChangesOnTheWayDownEndsUnderTheIcon) {
  StatusItemController& controller = world.startItem();
  controller.open(Anchor::menuBar);
  world.pass(0.05);
  world.content->resize(350);
  world.pass(0.3);
  EXPECT_EQ(window().frame(), (Rect{1058, 520, 308, 350}));
  EXPECT_EQ(window().alpha(), 1);

  controller.close();
  world.pass(0.2);
  world.content->resize(200);
  EXPECT_EQ(window().frame().height, 350) << "closed: kept for the next opening";
}

TEST_F(StatusItemControllerTest, StandsOnABarAtTheBottomAndGrowsUpwards) {
  world.screens.set({Screen{1, {0, 0, 1440, 900}, {0, 30, 1440, 870}, 1, 60}});
  world.bar.frame = Rect{1200, 0, 30, 30};
  StatusItemController& controller = world.startItem();
  controller.open(Anchor::menuBar);
  EXPECT_EQ(window().frame(), (Rect{1061, 32, 308, 300})) << "rises into its place";
  world.pass(0.2);
  EXPECT_EQ(window().frame(), (Rect{1061, 36, 308, 300}));
  world.content->resize(400);
  world.pass(0.2);
  EXPECT_EQ(window().frame(), (Rect{1061, 36, 308, 400}));
}

TEST_F(StatusItemControllerTest, FollowsTheScreenWhenItChanges) {
  world.startOpen();
  world.bar.frame = Rect{800, 576, 24, 24};
  world.screens.set({Screen{1, {0, 0, 1024, 600}, {0, 0, 1024, 576}, 1, 60}});
  world.pass(0.3);
  EXPECT_EQ(window().frame(), (Rect{658, 270, 308, 300}));
  world.screens.set({});
  world.pass(0.3);
  EXPECT_TRUE(window().isOnScreen());
}

TEST_F(StatusItemControllerTest, GoesWhileItsPanelMoves) {
  world.startItem().open(Anchor::menuBar);
  world.pass(0.05);
  world.content->resize(400);
  world.bar.scroll(1);
  world.controller.reset();
  EXPECT_THAT(world.windows.windows(), IsEmpty());
  EXPECT_FALSE(world.content->hasHeightHandler());
  EXPECT_EQ(monitors(), 0);
  world.screens.set({});
  world.pass(1);
  EXPECT_EQ(world.main.pendingTimers(), 0);
}

}  // namespace
}  // namespace plemora
