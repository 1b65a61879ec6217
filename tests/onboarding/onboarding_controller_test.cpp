#include "onboarding/onboarding_controller.h"

#include <gmock/gmock.h>

#include <functional>

#include "onboarding/setup_world.h"

// The window of setup, and its way from the beginning to the end.

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum StepStatus;

TEST(OnboardingControllerTest, TheFirstLookFindsWhatIsDoneAlready) {
  struct Case {
    const char* what;
    bool isGranted;
    bool isTrusted;
    int tiles;
    bool hasSound;
    std::vector<StepStatus> statuses;
  };
  for (const Case& each : std::vector<Case>{
           {"nothing", false, false, 0, true, {active, pending, pending, pending}},
           {"audio", true, false, 0, true, {done, active, pending, pending}},
           {"both grants", true, true, 0, true, {done, done, active, pending}},
           {"all but the icon", true, true, 2, false, {done, done, done, active}},
           {"Sound stands beside the tiles", true, true, 2, true, {done, done, active, pending}},
           {"one tile is missing", true, true, 1, false, {done, done, active, pending}},
           {"the first is missing", false, true, 2, false, {active, done, done, pending}}}) {
    SCOPED_TRACE(each.what);
    SetupWorld world;
    world.desktop.consent.setPreflight(each.isGranted ? 0 : 1);
    world.desktop.accessibility.setTrusted(each.isTrusted);
    world.storeLayout(each.tiles, each.hasSound);
    world.setup->show();
    EXPECT_EQ(world.statuses(), each.statuses);
    EXPECT_THAT(world.desktop.workspace.openedURLs, IsEmpty());
    EXPECT_EQ(world.isSet("soundReplaced"), each.statuses[2] == done);
    EXPECT_FALSE(world.setup->isPolling());
    EXPECT_EQ(world.page().doneCards,
              static_cast<std::size_t>(std::ranges::count(each.statuses, done)));
  }
}

TEST(OnboardingControllerTest, WhatCannotBeReadLeavesTheStepAsItIs) {
  SetupWorld world;
  world.prepare(SetupStep::soundIcon);
  world.setup->show();
  ASSERT_EQ(world.setup->state.controlCenter.get(), done);
  world.makeLayoutUnreadable();
  world.setup->refreshState();
  EXPECT_EQ(world.setup->state.controlCenter.get(), done);
  world.setup->state.controlCenter.set(active);
  world.setup->refreshState();
  EXPECT_EQ(world.setup->state.controlCenter.get(), active);
}

TEST(OnboardingControllerTest, ReplacingIsOfferedWhereThereIsAWay) {
  struct Case {
    bool isReadable;
    bool isRunning;
    int systemVersion;
    bool isOffered;
  };
  for (const Case& each :
       {Case{true, true, 26, true}, Case{true, false, 26, true}, Case{false, true, 26, true},
        Case{false, false, 26, false}, Case{true, true, 15, false}, Case{true, true, 0, true}}) {
    SetupWorld world;
    world.prepare(SetupStep::controlCenter);
    world.desktop.systemInfo.systemVersion.major = each.systemVersion;
    world.desktop.controlCenter.faults.staysDown = true;
    if (!each.isRunning) {
      world.desktop.controlCenter.kill();
    }
    if (!each.isReadable) {
      world.makeLayoutUnreadable();
    }
    world.setup->show();
    EXPECT_EQ(world.setup->state.supportsControlCenter.get(), each.isOffered);
    EXPECT_EQ(world.setup->state.controlCenter.get(), each.isOffered ? active : done);
    EXPECT_FALSE(world.isSet("soundReplaced"));
    EXPECT_EQ(world.page().cards.size(), each.isOffered ? 4U : 3U);
  }
}

TEST(OnboardingControllerTest, TheWindowIsAnOrdinaryOneOfAProgramInTheDock) {
  SetupWorld world;
  EXPECT_EQ(world.window(), nullptr);
  world.setup->show();
  StageWindow* window = world.window();
  ASSERT_NE(window, nullptr);
  ASSERT_TRUE(window->titled);
  EXPECT_EQ(window->titled->title, "Set Up Plemora");
  EXPECT_TRUE(window->isOnScreen() && window->isKey);
  EXPECT_EQ(world.desktop.program.activationPolicy(), ActivationPolicy::regular);
  EXPECT_EQ(world.desktop.workspace.frontmost().get(), world.desktop.program.pid());
  ASSERT_NE(window->stageSurface().effect, nullptr);
  EXPECT_EQ(window->stageSurface().effect->description().material, 21);
  EXPECT_EQ(window->stageSurface().effect->description().blendingMode, 0);
  EXPECT_EQ(window->stageSurface().effect->description().state, 1);

  const auto content =
      std::static_pointer_cast<ScriptedHostedView>(window->stageSurface().content());
  const Rect before = window->frame();
  content->resize(before.height + 100);
  EXPECT_EQ(window->frame().height, before.height + 100);
  EXPECT_EQ(window->frame().maxY(), before.maxY()) << "it grows downwards";

  world.setup->show();
  EXPECT_EQ(world.window(), window) << "there is one of it";
}

TEST(OnboardingControllerTest, TheHelperComesOutOfTheButtonWhereverTheWindowIs) {
  SetupWorld world;
  world.setup->show();
  world.setup->view().onButtonFrame("audio", {400, 100, 80, 24});
  world.setup->view().onButtonFrame("nobody", {0, 0, 1, 1});
  StageWindow* window = world.window();
  const auto button = [&] { return world.setup->state.buttonFrames.get().at(SetupStep::audio); };
  EXPECT_EQ(button(), (Rect{window->frame().x + 400, window->frame().maxY() - 124, 80, 24}));
  EXPECT_EQ(world.setup->state.buttonFrames.get().size(), 1U);

  window->setFrame(window->frame().offset(-100, 50));
  world.press(SetupStep::audio);
  EXPECT_EQ(button(), (Rect{window->frame().x + 400, window->frame().maxY() - 124, 80, 24}));
  world.setup->view().onButtonFrame("audio", {});
  EXPECT_THAT(world.setup->state.buttonFrames.get(), IsEmpty());
}

TEST(OnboardingControllerTest, GoingBackLeavesTheStepToBeBegunAgain) {
  SetupWorld world;
  world.setup->show();
  world.press(SetupStep::audio);
  world.desktop.advance(4);
  world.setup->helper().onBack();
  EXPECT_THAT(world.statuses(), ElementsAre(active, pending, pending, pending));
  EXPECT_EQ(world.desktop.workspace.frontmost().get(), world.desktop.program.pid());
  world.desktop.advance(3);
  EXPECT_FALSE(world.setup->helper().isPresented());

  world.press(SetupStep::audio);
  EXPECT_TRUE(world.setup->helper().isPresented());
  world.desktop.settings.setRow("Plemora", true);
  world.desktop.advance(0.5);
  EXPECT_THAT(world.statuses(), ElementsAre(done, active, pending, pending));
}

/// Setup in each of the states that it can be left in.
struct State {
  const char* name;
  SetupStep step;
  std::function<void(SetupWorld&)> reach;
};

std::vector<State> states() {
  const auto press = [](SetupStep step) {
    return [step](SetupWorld& world) {
      world.press(step);
      world.desktop.advance(1);
    };
  };
  return {
      {"shown", SetupStep::audio, [](SetupWorld&) {}},
      {"audio", SetupStep::audio, press(SetupStep::audio)},
      {"accessibility", SetupStep::accessibility, press(SetupStep::accessibility)},
      {"working", SetupStep::controlCenter,
       [](SetupWorld& world) {
         world.desktop.controlCenter.faults.staysDown = true;
         world.press(SetupStep::controlCenter);
       }},
      {"guided", SetupStep::controlCenter,
       [press](SetupWorld& world) {
         world.makeLayoutUnreadable();
         press(SetupStep::controlCenter)(world);
       }},
      {"sound icon", SetupStep::soundIcon, press(SetupStep::soundIcon)},
      {"success", SetupStep::audio,
       [](SetupWorld& world) {
         world.press(SetupStep::audio);
         world.desktop.settings.setRow("Plemora", true);
         world.desktop.advance(0.5);
       }},
      {"asking", SetupStep::audio,
       [press](SetupWorld& world) {
         press(SetupStep::audio)(world);
         world.setup->helper().onAskInstead();
       }},
      {"fading", SetupStep::audio,
       [](SetupWorld& world) {
         world.setup->finish();
         world.desktop.advance(0.1);
       }},
      {"pointing", SetupStep::audio,
       [](SetupWorld& world) {
         world.setup->finish();
         world.desktop.advance(1);
       }},
      {"testing", SetupStep::audio,
       [](SetupWorld& world) {
         world.setup->testHelper();
         world.desktop.advance(1);
       }},
  };
}

TEST(OnboardingControllerTest, NothingIsLeftOfItWhereverItStood) {
  for (const State& state : states()) {
    for (const bool isDestroyed : {false, true}) {
      SCOPED_TRACE(state.name);
      SetupWorld world;
      world.prepare(state.step);
      world.setup->show();
      state.reach(world);
      world.desktop.controlCenter.faults.staysDown = true;
      world.desktop.controlCenter.kill();
      if (isDestroyed) {
        world.setup.reset();
      } else {
        world.setup->tearDown();
      }
      EXPECT_EQ(world.desktop.mainQueue.pendingTimers(), world.usualTimers);
      EXPECT_EQ(world.desktop.windows.windows().size(), world.usualWindows);
      EXPECT_EQ(world.desktop.input.globalMonitors() + world.desktop.input.localMonitors(), 0);
      world.desktop.consent.decide(true);
      world.desktop.advance(12);
      EXPECT_EQ(world.desktop.windows.windows().size(), world.usualWindows);
    }
  }
}

TEST(OnboardingControllerTest, AWindowThatIsClosedLeavesNothingRunningAndCanBeOpenedAgain) {
  for (const State& state : states()) {
    SCOPED_TRACE(state.name);
    SetupWorld world;
    world.prepare(state.step);
    world.setup->show();
    state.reach(world);
    if (world.window() != nullptr && world.window()->isOnScreen()) {
      world.window()->close();
    }
    world.desktop.advance(40);
    EXPECT_EQ(world.desktop.mainQueue.pendingTimers(), world.usualTimers);
    EXPECT_EQ(world.desktop.windows.windows().size(), world.usualWindows);
    EXPECT_EQ(world.desktop.program.activationPolicy(), ActivationPolicy::accessory);
    EXPECT_FALSE(world.isSet("didCompleteSetup"));

    world.preferences.gate = nullptr;
    world.setup->show();
    EXPECT_EQ(std::ranges::count_if(
                  world.statuses(),
                  [](StepStatus status) { return status == inSettings || status == working; }),
              0);
    EXPECT_TRUE(world.window()->isOnScreen());
    EXPECT_EQ(world.window()->alpha(), 1);
  }
}

TEST(OnboardingControllerTest, TheEndIsRememberedWhenAllIsDoneAndPointsAtTheIcon) {
  for (const bool isComplete : {false, true}) {
    for (const bool isClosed : {false, true}) {
      SetupWorld world;
      world.prepare(SetupStep::soundIcon);
      world.setup->show();
      if (isComplete) {
        world.setup->view().onSkip("soundIcon");
      }
      EXPECT_FALSE(world.isSet("didCompleteSetup"));
      if (isClosed) {
        world.window()->close();
      } else {
        world.setup->view().onFinish();
        world.setup->view().onFinish();
        world.desktop.advance(0.1);
        EXPECT_LT(world.window()->alpha(), 1);
      }
      world.desktop.advance(2);
      EXPECT_EQ(world.isSet("didCompleteSetup"), isComplete);
      EXPECT_EQ(world.window(), nullptr);
      EXPECT_EQ(world.desktop.program.activationPolicy(), ActivationPolicy::accessory);
      EXPECT_EQ(world.desktop.windows.windows().size() - world.usualWindows, isClosed ? 0U : 2U)
          << "the callout and its rings";
    }
  }
}

TEST(OnboardingControllerTest, AKilledProgramFindsWhatItHadBegun) {
  SetupWorld world;
  world.prepare(SetupStep::controlCenter);
  world.setup->show();
  world.press(SetupStep::controlCenter);
  world.desktop.advance(2);
  world.defaults.remove("soundReplaced");  // it was killed before it wrote that
  world.make();
  int preparations = 0;
  world.setup->prepareControls = [&](const auto&) { ++preparations; };
  world.setup->show();
  EXPECT_THAT(world.statuses(), ElementsAre(done, done, done, active));
  EXPECT_TRUE(world.isSet("soundReplaced")) << "so that Sound is put back at its end";
  EXPECT_EQ(preparations, 1) << "Control Center may not show the tiles yet";
}

TEST(OnboardingControllerTest, EveryHelperIsPresentedInTurn) {
  SetupWorld world;
  world.setup->testHelper();
  for (const auto kind : {HelperState::Kind::audioPermission, HelperState::Kind::accessibility,
                          HelperState::Kind::controlCenter, HelperState::Kind::hideSoundIcon}) {
    EXPECT_EQ(world.setup->helper().state.kind.get(), kind);
    EXPECT_TRUE(world.setup->helper().isPresented());
    world.desktop.advance(OnboardingController::testTime + OnboardingController::testPause);
  }
  EXPECT_FALSE(world.setup->helper().isPresented());
  world.desktop.advance(3);
  EXPECT_EQ(world.desktop.mainQueue.pendingTimers(), world.usualTimers);

  world.setup->testHelper();
  world.desktop.advance(1);
  world.setup->show();
  world.desktop.advance(10);
  EXPECT_FALSE(world.setup->helper().isPresented()) << "setup itself ends the test";
}

}  // namespace
}  // namespace plemora
