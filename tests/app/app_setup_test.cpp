#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "app/app_world.h"
#include "onboarding/onboarding_controller.h"

// The program and setup: who shows it, what it changes, and what is left of it at the end.

namespace plemora {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Not;

bool isSetupShown(AppWorld& world) {
  StageWindow* window = world.window("dock-window");
  return window != nullptr && window->isOnScreen();
}

TEST(AppSetupTest, TheFirstStartLeadsThroughSetupOnceAllElseIsThere) {
  AppWorld world;
  world.defaults.setBoolean("didCompleteSetup", false);
  world.launch();
  EXPECT_THAT(
      world.events.lines,
      ElementsAre("0.00 main menu", "0.00 model", "0.00 status item", "0.00 skin", "0.00 updater",
                  "0.00 login item", "0.00 reload", "0.00 tile signal", "0.00 read layout"));
  EXPECT_TRUE(isSetupShown(world));
  EXPECT_EQ(world.application.policy, ActivationPolicy::regular);
}

TEST(AppSetupTest, OneArgumentComesBeforeAnother) {
  enum class Shown { nothing, panel, setup, helper };
  struct Case {
    std::vector<std::string> arguments;
    bool isSetUp;
    Shown shown;
    std::string printed;  // empty: nothing
  };
  for (const Case& each : std::vector<Case>{
           {{}, true, Shown::nothing, ""},
           {{}, false, Shown::setup, ""},
           {{"--open"}, true, Shown::panel, ""},
           {{"--open"}, false, Shown::setup, ""},
           {{"--setup"}, true, Shown::setup, ""},
           {{"--open", "--setup"}, true, Shown::setup, ""},
           {{"--setup", "--test-helper"}, true, Shown::helper, ""},
           {{"--test-helper", "--open"}, true, Shown::helper, ""},
           {{"--test-helper"}, false, Shown::helper, ""},
           {{"--prime-controls"}, false, Shown::setup, "primed"},
           {{"--prime-controls", "--test-helper"}, true, Shown::helper, "primed"},
           {{"--prime-controls", "--setup", "--open"}, true, Shown::setup, "primed"},
           {{"--setup", "--test-helper", "--replace-sound"}, false, Shown::nothing, "ok"},
           {{"--restore-sound", "--setup"},
            false,
            Shown::nothing,
            "failed: Control Center's layout couldn't be read."},
       }) {
    SCOPED_TRACE(testing::PrintToString(each.arguments));
    AppWorld world;
    world.defaults.setBoolean("didCompleteSetup", each.isSetUp);
    world.launch(each.arguments);
    world.pass(0.5);
    EXPECT_EQ(isSetupShown(world), each.shown == Shown::setup);
    EXPECT_EQ(world.panelX().has_value(), each.shown == Shown::panel);
    EXPECT_EQ(world.windows.visible().size(), each.shown == Shown::nothing ? 0U : 1U);
    world.pass(20);
    const auto printed = EndsWith("print " + each.printed);
    if (each.printed.empty()) {
      EXPECT_THAT(world.events.lines, Not(Contains(testing::HasSubstr("print"))));
    } else {
      EXPECT_THAT(world.events.lines, Contains(printed));
    }
  }
}

TEST(AppSetupTest, StartingItAgainAndTheMenuShowSetup) {
  AppWorld world;
  EXPECT_FALSE(world.make().applicationShouldHandleReopen(false)) << "and nothing is there yet";
  world.launch({"--open"});
  world.pass(1);
  ASSERT_TRUE(world.panelX());
  world.delegate->statusItem()->setUpFromMenu();
  world.pass(1);
  EXPECT_TRUE(isSetupShown(world));
  EXPECT_FALSE(world.panelX());

  world.window("dock-window")->close();
  world.pass(1);
  EXPECT_FALSE(isSetupShown(world));
  EXPECT_FALSE(world.delegate->applicationShouldHandleReopen(true));
  EXPECT_TRUE(isSetupShown(world));
}

TEST(AppSetupTest, TilesThatAreNewInControlCenterAreReloadedAndPrimed) {
  AppWorld world;
  world.defaults.setBoolean("didCompleteSetup", false);
  world.defaults.setString("tilesRefreshedForBuild", "an older one");
  world.launch();
  const int reloads = world.reload.reloads;
  world.delegate->onboarding()->startControlCenter();
  EXPECT_EQ(world.tiles(), 2U);
  EXPECT_EQ(world.events.lines.back(), "0.00 restart");
  world.pass(1);
  world.center.launch();
  world.center.appear();
  world.pass(0.99);
  EXPECT_EQ(world.reload.reloads, reloads);
  world.pass(0.02);
  EXPECT_EQ(world.reload.reloads, reloads + 1);
  world.pass(10);
  EXPECT_THAT(world.events.lines, Contains(EndsWith("press edit")));
  EXPECT_FALSE(world.center.isOpen || world.center.isEditing);
  EXPECT_EQ(world.defaults.string("controlsPrimedForSystem"), world.system.versionString);

  world.events.lines.clear();
  world.launch();
  EXPECT_THAT(world.events.lines, Not(Contains(EndsWith("restart"))))
      << "this build has had its turn";
}

TEST(AppSetupTest, QuittingWithAllDoneIsAnEndOfSetupToo) {
  AppWorld world;
  world.defaults.setBoolean("didCompleteSetup", false);
  world.launch();
  OnboardingController& setup = *world.delegate->onboarding();
  for (const SetupStep step : setupSteps) {
    setup.state.status(step).set(StepStatus::done);
  }
  world.delegate->applicationWillTerminate();
  EXPECT_EQ(world.defaults.boolean("didCompleteSetup"), true);
}

TEST(AppSetupTest, QuittingEndsSetupWhereverItStands) {
  for (const SetupStep step : setupSteps) {
    AppWorld world;
    world.defaults.setBoolean("didCompleteSetup", false);
    world.consent.setPreflight(step == SetupStep::audio ? 2 : 0);
    world.accessibility.setTrusted(step != SetupStep::accessibility);
    world.launch();
    OnboardingController& setup = *world.delegate->onboarding();
    for (const auto& start :
         {setup.onAudio, setup.onAccessibility, setup.onControlCenter, setup.onSoundIcon}) {
      start();
    }
    world.pass(1);
    world.center.launch();
    ASSERT_FALSE(world.hasSound());
    world.delegate->applicationWillTerminate();
    EXPECT_TRUE(world.hasSound()) << "it is never lost";
    EXPECT_TRUE(world.windows.visible().empty());
    EXPECT_EQ(world.defaults.boolean("didCompleteSetup"), false);
    world.delegate.reset();
    world.settle();
    EXPECT_EQ(world.main.pendingTimers(), 0);
    EXPECT_EQ(world.input.globalMonitors() + world.input.localMonitors(), 0);
    EXPECT_TRUE(world.windows.windows().empty());
  }
}

}  // namespace
}  // namespace plemora
