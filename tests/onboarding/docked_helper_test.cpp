#include "onboarding/docked_helper.h"

#include <gtest/gtest.h>

#include "onboarding/dock_placement.h"
#include "onboarding/guide_world.h"

namespace plemora {
namespace {

using Kind = HelperState::Kind;
using Placement = HelperState::Placement;

constexpr Rect button{600, 500, 100, 30};
constexpr Rect origin{416, 435, 468, 160};
constexpr Rect dropped{416, 321, 468, 160};
constexpr Rect middle{300, 300, 715, 520};
constexpr Rect underMiddle{537.9, 128, 468, 160};
constexpr Rect corner{100, 50, 715, 520};
constexpr Rect besideCorner{827, 90, 468, 160};
constexpr double settled = 1.3;  // seconds

struct HelperWorld : GuideWorld {
  std::optional<DockedHelper> helper{std::in_place, onboarding, ripple};
  int completions = 0;

  StageWindow& window() { return *helperWindow(); }
  void present(Kind kind = Kind::audioPermission) { helper->present(kind, button); }
  void presentDocked(const Rect& settings = middle) {
    showSettings(settings);
    present();
    pass(settled);
  }
  void leave() {
    helper->leave([this] { ++completions; });
  }
};

TEST(DockedHelper, DropsOutOfTheButtonAndFollowsSystemSettings) {
  HelperWorld world;
  world.present();
  EXPECT_EQ(world.window().frame(), origin);
  EXPECT_EQ(world.window().alpha(), 0);
  EXPECT_EQ(world.window().level(), 3);
  world.pass(settled);
  EXPECT_EQ(world.window().frame(), dropped);
  EXPECT_EQ(world.window().alpha(), 1);
  world.showSettings(middle);
  world.pass(settled);
  expectNear(world.window().frame(), underMiddle);
  EXPECT_EQ(world.helper->state.placement.get(), Placement::under);
  world.showSettings(middle.offset(-30, 20));
  world.pass(0.02);
  expectNear(world.window().frame(), underMiddle.offset(-30, 20));
  world.showSettings(corner);
  world.pass(0.02);
  expectNear(world.window().frame(), besideCorner);
  EXPECT_EQ(world.helper->state.placement.get(), Placement::right);
  EXPECT_EQ(world.helperView->page.get().direction, HelperPage::Direction::left);
}

TEST(DockedHelper, FadesWithSystemSettingsAndComesBackWithIt) {
  // Both at rest and while it is still on its way.
  for (const double before : {settled, 0.1}) {
    SCOPED_TRACE(before);
    HelperWorld world;
    world.showSettings(middle);
    world.present();
    world.pass(before);
    world.closeSettings();
    world.pass(before);
    if (before == settled) {
      EXPECT_EQ(world.window().alpha(), 0);
    }
    EXPECT_TRUE(world.window().options.ignoresMouseEvents);
    world.showSettings(corner);
    world.pass(settled);
    EXPECT_EQ(world.window().alpha(), 1);
    EXPECT_FALSE(world.window().options.ignoresMouseEvents);
    expectNear(world.window().frame(), besideCorner);
  }
}

TEST(DockedHelper, WaitsByItselfForSystemSettingsAfterThreeSeconds) {
  HelperWorld world;
  world.present();
  world.pass(2.99);
  EXPECT_FALSE(world.helper->state.settingsMissing.get());
  world.pass(settled);
  EXPECT_TRUE(world.helper->state.settingsMissing.get());
  EXPECT_NEAR(world.window().frame().midX(), 720, 1e-6);
  EXPECT_LT(world.window().frame().maxY(), 450);
  EXPECT_EQ(world.window().alpha(), 1);
  world.showSettings(middle);
  world.pass(settled);
  EXPECT_FALSE(world.helper->state.settingsMissing.get());
  expectNear(world.window().frame(), underMiddle);

  // It was there in time.
  world.present();
  world.pass(4);
  EXPECT_FALSE(world.helper->state.settingsMissing.get());
}

TEST(DockedHelper, HidesBehindOtherApplications) {
  HelperWorld world;
  world.presentDocked();
  for (const std::int32_t pid : {GuideWorld::settingsPid, GuideWorld::ownPid}) {
    world.workspace.activate(800);
    EXPECT_FALSE(world.window().isOnScreen());
    EXPECT_FALSE(world.helperContent->isVisible);
    world.workspace.activate(pid);
    EXPECT_TRUE(world.window().isOnScreen());
  }
}

TEST(DockedHelper, LeavesOnceAndForGood) {
  HelperWorld world;
  world.presentDocked();
  world.leave();
  world.leave();
  world.pass(0.05);
  world.leave();
  world.showSettings(corner);
  world.workspace.activate(GuideWorld::settingsPid);
  world.helper->heightChanged(300);
  EXPECT_EQ(world.main.pendingTimers(), 1);  // the spring's
  world.pass(0.8);
  EXPECT_EQ(world.completions, 0);
  expectNear(world.window().frame(), origin, 0.5);
  world.pass(0.2);
  EXPECT_EQ(world.completions, 1);
  EXPECT_EQ(world.leftovers(), "");
  world.workspace.activate(GuideWorld::ownPid);
  EXPECT_FALSE(world.helper->isPresented());
}

TEST(DockedHelper, LeavesAtOnceWhenThereIsNothingToBeSeen) {
  HelperWorld world;
  world.leave();
  world.presentDocked();
  world.workspace.activate(800);
  world.leave();
  world.presentDocked();
  world.closeSettings();
  world.pass(0.1);
  world.leave();
  EXPECT_EQ(world.completions, 3);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(DockedHelper, PresentedAnewItForgetsThatItWasLeaving) {
  HelperWorld world;
  world.presentDocked();
  world.helper->state.awaitingApproval.set(true);
  world.leave();
  world.pass(0.1);
  world.closeSettings();
  world.present(Kind::hideSoundIcon);
  EXPECT_FALSE(world.helper->state.awaitingApproval.get());
  world.pass(2);
  EXPECT_EQ(world.completions, 0);
  EXPECT_EQ(world.window().frame(), dropped);
  EXPECT_EQ(world.windows.windows().size(), 1u);
}

TEST(DockedHelper, EndsAtAnyTimeWithoutALeftover) {
  for (const Kind kind : {Kind::audioPermission, Kind::controlCenter}) {
    for (const bool isLeaving : {false, true}) {
      for (const double after : {0.0, 0.3, 5.0}) {
        HelperWorld world;
        world.center.launch();
        world.center.appear();
        world.present(kind);
        world.pass(after);
        if (isLeaving) {
          world.leave();
        }
        world.helper.reset();
        world.pass(0.5);
        EXPECT_EQ(world.leftovers(), "");
        EXPECT_EQ(world.completions, 0);
      }
    }
  }
}

TEST(DockedHelper, ShowsSuccessForAWhile) {
  HelperWorld world;
  const auto succeed = [&] { world.helper->succeed([&] { ++world.completions; }); };
  succeed();
  EXPECT_EQ(world.completions, 1);  // there is nothing to be seen
  world.presentDocked();
  succeed();
  world.pass(0.4);
  succeed();
  EXPECT_TRUE(world.helperView->page.get().hasSucceeded);
  world.pass(DockedHelper::successTime - 0.41);
  EXPECT_EQ(world.completions, 1);
  world.pass(0.02);
  EXPECT_EQ(world.completions, 2);
  world.pass(2);
  EXPECT_EQ(world.completions, 2);

  // Who leaves meanwhile has other plans; the action may end the helper.
  world.present();
  succeed();
  world.helper->leave();
  world.pass(2);
  EXPECT_EQ(world.completions, 2);
  world.present();
  world.helper->succeed([&] { world.helper.reset(); });
  world.pass(2);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(DockedHelper, KeepsItsPlaceWhenItsHeightChanges) {
  HelperWorld world;
  world.present();
  world.helperContent->resize(200);
  world.pass(settled);
  EXPECT_EQ(world.window().frame(), (Rect{416, 281, 468, 200}));  // its top stays
  world.showSettings(middle);
  world.pass(settled);
  world.helperContent->resize(100);
  expectNear(world.window().frame(), {537.9, 188, 468, 100});
  world.helperContent->resize(300);  // no room below
  expectNear(world.window().frame(), {537.9, 8, 468, 300});
  world.helper->heightChanged(0);
  EXPECT_EQ(world.window().frame().height, 300);
}

TEST(DockedHelper, LetsTheIconBeDraggedIntoTheList) {
  HelperWorld world;
  const HelperState& state = world.helper->state;
  world.present(Kind::hideSoundIcon);
  world.helperView->onDrag();
  EXPECT_EQ(world.fileDrag.path, "");

  world.present(Kind::accessibility);
  world.helperView->onDrag();
  EXPECT_EQ(world.fileDrag.path, "/Applications/Plemora.app");
  EXPECT_TRUE(world.helperView->page.get().isDragging);
  world.fileDrag.ended(false);
  EXPECT_FALSE(state.isDragging.get() || state.awaitingApproval.get());
  world.helperView->onDrag();
  world.fileDrag.ended(true);
  EXPECT_FALSE(state.isDragging.get());
  EXPECT_TRUE(state.awaitingApproval.get());

  // A drop that comes too late is not of this step.
  world.helperView->onDrag();
  world.present(Kind::audioPermission);
  world.fileDrag.ended(true);
  EXPECT_FALSE(state.awaitingApproval.get());
  world.fileDrag.works = false;
  world.helperView->onDrag();
  EXPECT_FALSE(state.isDragging.get());
}

TEST(DockedHelper, DoesWithoutContent) {
  HelperWorld world;
  OnboardingServices services = world.onboarding;
  for (const auto& make :
       {decltype(services.contents.makeHelper){},
        decltype(services.contents.makeHelper){[](HelperView&) { return nullptr; }}}) {
    services.contents.makeHelper = make;
    DockedHelper helper(services, world.ripple);
    helper.present(Kind::controlCenter, button);
    helper.present(Kind::audioPermission, button);
    helper.settingsMoved(middle);
    helper.updateControlCenter();
    helper.heightChanged(100);
    helper.succeed([&] { ++world.completions; });
    helper.leave([&] { ++world.completions; });
    EXPECT_EQ(world.leftovers(), "");
  }
  EXPECT_EQ(world.completions, 4);
}

/// Control Center has its icon at 1228...1258 in the menu bar, and its panel at 1050...1390.
TEST(DockedHelper, GuidesThroughControlCenter) {
  HelperWorld world;
  world.center.launch();
  world.center.appear();
  const auto set = [&](bool isOpen, bool isEditing) {
    const auto add = [&](const Rect& bounds) {
      world.windowList.windows.push_back(
          {2, ObedientControlCenter::pid, "Control Center", 26, bounds, 1.0});
    };
    world.windowList.windows.resize(1);
    if (isOpen) {
      add(ObedientControlCenter::panel);
    }
    if (isEditing) {
      add({0, 0, 1440, 900});
    }
    world.pass(0.11);
  };
  const HelperState& state = world.helper->state;
  world.present(Kind::controlCenter);
  EXPECT_EQ(world.window().level(), 101);
  EXPECT_TRUE(world.ripple.isShown());
  EXPECT_EQ(world.rippleWindow()->frame(), (Rect{1211, 856, 64, 64}));
  world.pass(settled);
  EXPECT_EQ(world.window().frame(), dropped);

  set(true, false);
  EXPECT_TRUE(state.controlCenterOpen.get());
  EXPECT_FALSE(world.ripple.isShown());
  world.pass(settled);
  EXPECT_EQ(world.rippleWindow(), nullptr);
  EXPECT_EQ(world.window().frame(), (Rect{570, 708, 468, 160}));

  // Edit mode has what can be added beside the panel: the helper gives way.
  set(true, true);
  EXPECT_TRUE(state.controlCenterEditing.get());
  world.pass(settled);
  EXPECT_LT(world.window().frame().maxY(), 450);

  // Left, and the tiles are not there after a while.
  set(false, false);
  EXPECT_TRUE(world.ripple.isShown());
  world.pass(1.3);
  EXPECT_FALSE(state.controlCenterRetry.get());
  world.pass(0.3);
  EXPECT_TRUE(state.controlCenterRetry.get());
  set(true, false);
  EXPECT_TRUE(state.controlCenterRetry.get());
  set(true, true);
  EXPECT_FALSE(state.controlCenterRetry.get());

  // Without an icon there is nothing to point at, nor once all is done.
  world.center.quit();
  world.pass(0.11);
  EXPECT_FALSE(world.ripple.isShown());
  world.center.launch();
  world.center.appear();
  world.pass(0.11);
  EXPECT_TRUE(world.ripple.isShown());
  world.helper->succeed({});
  world.pass(0.11);
  EXPECT_FALSE(world.ripple.isShown());
  world.leave();
  world.pass(settled);
  EXPECT_EQ(world.completions, 1);
  EXPECT_EQ(world.leftovers(), "");
}

}  // namespace
}  // namespace plemora
