#include "skin/control_center_skin.h"

#include <gtest/gtest.h>

#include "skin/skin_world.h"

namespace plemora {
namespace {

class ControlCenterSkinTest : public testing::Test, protected SkinWorld {
 protected:
  bool isTracking() const { return main.pendingTimers() == 2; }  // the other one keeps house
};

TEST_F(ControlCenterSkinTest, LooksForControlCenterEverySecond) {
  accessibility.setTrusted(false);
  start();
  main.advance(3);
  EXPECT_EQ(accessibility.observers(), 0);
  accessibility.setTrusted(true);
  accessibility.refusesObservers = true;
  main.advance(1);
  EXPECT_EQ(accessibility.observers(), 0);
  accessibility.refusesObservers = false;
  main.advance(1);
  EXPECT_EQ(accessibility.observers(), 1);
  EXPECT_FALSE(isTracking());
  setPanel(1);
  main.advance(1);
  EXPECT_TRUE(isTracking());

  workspace.quit(pid);
  launch(pid + 1);
  main.advance(1);
  accessibility.notify(pid, "AXCreated");
  EXPECT_EQ(accessibility.observers(), 1);
  accessibility.setTrusted(false);
  main.advance(1);
  EXPECT_EQ(accessibility.observers(), 0);
  skin->stop();
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST_F(ControlCenterSkinTest, TracksFromANotificationUntilNinetyOneQuietTicks) {
  screens.set({Screen{7, {0, 0, 1440, 900}, {}, 2, 60}, Screen{8, {1440, 0, 800, 600}, {}, 1, 60}});
  start();
  for (const char* notification : {"AXWindowCreated", "AXCreated", "AXFocusedWindowChanged"}) {
    accessibility.notify(pid, notification);
    tick(89);  // the first was made at once
    EXPECT_TRUE(isTracking());
    tick();
    EXPECT_FALSE(isTracking()) << notification;
  }
  accessibility.notify(pid, "AXMoved");
  EXPECT_EQ(links.madeFor(), (std::vector<int>{7, 7, 7}));

  // A notification and an open panel begin the count anew; edit mode holds it.
  skin->startTracking();
  tick(60);
  skin->startTracking();
  tick(60);
  enterEditMode();
  tick(200);
  closePanel();
  tick(29);
  EXPECT_TRUE(isTracking());
}

TEST_F(ControlCenterSkinTest, HasOneScanUnderWayAtMost) {
  setPanel(1);
  start();
  tick(10);
  EXPECT_EQ(queues.labels(), std::vector<std::string>{"com.quorvane.mixer.skin-scan"});
  const auto queue = queues.queues("com.quorvane.mixer.skin-scan").at(0);
  const auto ticksToScan = [&] {
    scan();
    int ticks = 0;
    for (; queue->pending() == 0; ++ticks) {
      tick();
    }
    EXPECT_EQ(queue->pending(), 1);
    return ticks;
  };
  EXPECT_EQ(ticksToScan(), 4);  // the first beyond 0.05 s
  addTile(leftTile);
  EXPECT_EQ(ticksToScan(), 33);  // and beyond 0.5 s
}

TEST_F(ControlCenterSkinTest, AsksFewQuestionsWhileItKnowsTheTiles) {
  startShowing();
  for (const bool isScanning : {false, true}) {
    tick(isScanning ? 40 : 0);
    int attributes = 0;
    accessibility.setHook([&](const std::string& name) {
      EXPECT_TRUE(name == "AXPosition" || name == "AXSize") << name;
      ++attributes;
    });
    const int reads = windowList.reads;
    const int layers = overlay().stageSurface().layerUpdates;
    const std::size_t frames = overlay().frames.size();
    skin->tick();
    EXPECT_EQ(attributes, 4);
    EXPECT_EQ(windowList.reads - reads, 1);
    EXPECT_EQ(overlay().stageSurface().layerUpdates, layers);
    EXPECT_EQ(overlay().frames.size(), frames);
    accessibility.setHook({});
  }
}

TEST_F(ControlCenterSkinTest, FadesInAfterAMomentOrShowsAtOnce) {
  startShowing();
  closePanel();
  tick();
  EXPECT_EQ(alpha(), 0);
  EXPECT_FALSE(view->isVisible);
  setPanel(1, 200);
  skin->tick();  // by the frames that it remembers, before a scan has found anything
  EXPECT_TRUE(skin->isShowing());
  EXPECT_TRUE(view->isVisible);
  EXPECT_EQ(overlay().level(), 201);
  EXPECT_EQ(overlay().frame(), module);
  const struct { double wait, alpha; } cases[] = {{0.05, 0}, {0.085, 0.75}, {0.085, 1}};
  EXPECT_EQ(alpha(), 0);
  for (const auto& [wait, expected] : cases) {
    main.advance(wait);
    skin->tick();
    EXPECT_NEAR(alpha(), expected, 1e-6);
  }
  skin->hide();
  skin->showInstantly = true;
  skin->tick();
  EXPECT_EQ(alpha(), 1);
  EXPECT_FALSE(skin->showInstantly);
  EXPECT_EQ(windows.made(), 1);

  closePanel();
  skin->showInstantly = true;
  tick();
  setPanel(1);
  tick();
  EXPECT_TRUE(skin->isShowing());
  EXPECT_EQ(alpha(), 0) << "that was meant for a panel that did not come";
}

TEST_F(ControlCenterSkinTest, ClosesWithControlCenter) {
  startShowing();
  setPanel(0.5);
  skin->tick();
  EXPECT_EQ(alpha(), 0.5);
  setPanel(0.2);
  skin->tick();
  EXPECT_EQ(alpha(), 0.2);
  setPanel(0.005);
  skin->tick();
  EXPECT_FALSE(skin->isShowing());
  skin->tick();
  EXPECT_FALSE(skin->isShowing());

  // Opened again before it was gone: the overlay fades in anew.
  setPanel(1);
  skin->tick();
  EXPECT_TRUE(skin->isShowing());
  EXPECT_EQ(alpha(), 0);
  tick(20);
  EXPECT_EQ(alpha(), 1);
}

TEST_F(ControlCenterSkinTest, FallsBackOnRememberedFramesForTheSamePanelOnly) {
  const auto loseTiles = [this] {
    for (const ElementID tile : tiles) {
      accessibility.clear(tile, "AXSize");
    }
  };
  startShowing();
  loseTiles();
  tick();
  EXPECT_TRUE(skin->isShowing());
  windowList.windows = {window(panel.offset(0, 0.5), panelLayer)};
  tick();
  EXPECT_FALSE(skin->isShowing());

  // Neither after edit mode, nor with another Control Center.
  setPanel(1);
  tick();
  EXPECT_TRUE(skin->isShowing());
  enterEditMode();
  tick();
  setPanel(1);
  tick();
  EXPECT_FALSE(skin->isShowing());
}

TEST_F(ControlCenterSkinTest, ShowsNothingInEditModeAndReloadsControlsOnceAfterIt) {
  startShowing();
  enterEditMode();
  tick(20);
  EXPECT_FALSE(skin->isShowing());
  EXPECT_EQ(reload.reloads, 0);
  setPanel(1);
  tick(20);
  EXPECT_EQ(reload.reloads, 1);
  scan();
  tick();
  EXPECT_TRUE(skin->isShowing());
  accessibility.setTrusted(false);
  tick();
  EXPECT_FALSE(skin->isShowing());
}

TEST_F(ControlCenterSkinTest, DoesNothingWhileSuppressed) {
  startShowing();
  skin->isSuppressed = true;
  skin->hide();
  tick(60);
  EXPECT_FALSE(skin->isShowing());
  closePanel();
  tick(200);
  EXPECT_TRUE(isTracking());
}

TEST_F(ControlCenterSkinTest, FollowsTheTilesAndResolvesTheStyleEachTime) {
  startShowing();
  EXPECT_TRUE(skin->state.isWide.get());
  accessibility.setFrame(tiles[1], rightTile.offset(4, 0));  // 20 points apart
  tick();
  EXPECT_EQ(overlay().frame(), (Rect{1060, 736, 150, 64}));
  EXPECT_EQ(skin->moduleFrame(), overlay().frame());
  EXPECT_FALSE(skin->state.isWide.get());
  EXPECT_EQ(alpha(), 1);

  defaults.setString("skinStyle", "cc,r=9");
  tick();
  EXPECT_EQ(windows.made(), 2);
  EXPECT_EQ(windows.windows().size(), 1U);
  EXPECT_EQ(alpha(), 0);
  tick(20);
  EXPECT_EQ(alpha(), 1);
  EXPECT_EQ(overlay().stageSurface().effect->layers, nullptr);
}

TEST_F(ControlCenterSkinTest, OutlivedByAScanThatItDropped) {
  startShowing();
  tick(40);
  skin.reset();
  scan();
  EXPECT_TRUE(windows.windows().empty());
}

TEST_F(ControlCenterSkinTest, ShowsTheOutputDevice) {
  const auto speakers = hal.addDevice({.uid = "a", .name = "Speakers", .volume = 0.25F});
  const auto buds = hal.addDevice({.uid = "b",
                                   .name = "AirPods Pro",
                                   .transport = kAudioDeviceTransportTypeBluetooth,
                                   .hasSettableVolume = false});
  main.drain();
  SkinState& state = start().state;
  EXPECT_EQ(state.volume.get(), 0.25F);
  hal.updateDevice(speakers, [](SimulatedDevice& device) { device.volume = 0.5F; });
  main.drain();
  EXPECT_EQ(state.volume.get(), 0.5F);
  EXPECT_TRUE(state.hasVolume.get());
  EXPECT_FALSE(state.isHeadphones.get());
  hal.setDefaultOutput(buds);
  main.drain();
  EXPECT_FALSE(state.hasVolume.get());
  EXPECT_TRUE(state.isHeadphones.get());
}

}  // namespace
}  // namespace plemora
