#include "menubar/glass_panel.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "menubar/layout_helpers.h"

namespace plemora {
namespace {

struct GlassPanelTest : testing::Test {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  ScriptedScreens screens;
  StageWindows windows{main, screens};
  std::shared_ptr<ScriptedHostedView> view = std::make_shared<ScriptedHostedView>();
  PanelVisibility visibility;

  std::unique_ptr<GlassPanel> makePanel(bool canBecomeKey = true) {
    PanelWindowOptions options;
    options.canBecomeKey = canBecomeKey;
    return std::make_unique<GlassPanel>(windows, options, view, visibility, main);
  }
  StageWindow& stage() { return *windows.windows().at(0); }
  StageSurface& surface() { return stage().stageSurface(); }
};

TEST_F(GlassPanelTest, TellsItsContentWhetherItIsOnScreen) {
  const auto panel = makePanel();
  const VisibilityGate gate(visibility, view);
  EXPECT_FALSE(view->isVisible);
  EXPECT_EQ(view->visibilityChanges, 0);

  for (const auto show : {&GlassPanel::orderFront, &GlassPanel::makeKeyAndOrderFront,
                          &GlassPanel::orderFrontRegardless}) {
    ((*panel).*show)();
    EXPECT_TRUE(visibility.isVisible.get());
    EXPECT_TRUE(view->isVisible);
    EXPECT_TRUE(panel->isOnScreen());
    panel->orderOut();
    EXPECT_FALSE(visibility.isVisible.get());
    EXPECT_FALSE(view->isVisible);
    EXPECT_FALSE(panel->isOnScreen());
  }
  EXPECT_EQ(stage().orders,
            (std::vector{WindowOrder::front, WindowOrder::out, WindowOrder::keyAndFront,
                         WindowOrder::out, WindowOrder::frontRegardless, WindowOrder::out}));

  // Shown twice is told once.
  const int changes = view->visibilityChanges;
  panel->orderFront();
  panel->orderFrontRegardless();
  EXPECT_EQ(view->visibilityChanges, changes + 1);
}

TEST_F(GlassPanelTest, WakesTheContentBeforeItAppearsAndPutsItToSleepAfterwards) {
  const auto panel = makePanel();
  std::vector<bool> wasOnScreen;
  const auto subscription =
      visibility.isVisible.subscribe([&](bool) { wasOnScreen.push_back(panel->isOnScreen()); });
  panel->orderFront();
  panel->orderOut();
  EXPECT_EQ(wasOnScreen, (std::vector{false, false}));
}

TEST_F(GlassPanelTest, AGateThatComesLateIsOpenAtOnce) {
  const auto panel = makePanel();
  panel->orderFront();
  const VisibilityGate gate(visibility, view);
  EXPECT_TRUE(view->isVisible);
}

TEST_F(GlassPanelTest, FitsItsRimToEverySize) {
  const auto panel = makePanel();
  panel->setFrame({0, 0, 10, 10});
  EXPECT_EQ(surface().layer, nullptr);  // no rim, nothing to show

  panel->setRim(std::make_unique<RimLayer>(0.5, 0.2), 15, 10);
  ASSERT_NE(surface().layer, nullptr);
  EXPECT_EQ(surface().layer->zPosition, 10);
  panel->setFrame({5, 5, 308, 400});
  EXPECT_EQ(surface().layer->frame.size(), (Size{308, 400}));

  const int updates = surface().layerUpdates;
  panel->setFrame({50, 60, 308, 400});  // moved only
  EXPECT_EQ(surface().layerUpdates, updates);
  panel->setFrame({50, 60, 308, 401});
  EXPECT_EQ(surface().layer->frame.size(), (Size{308, 401}));
  EXPECT_EQ(surface().layerUpdates, updates + 1);
}

}  // namespace
}  // namespace plemora
