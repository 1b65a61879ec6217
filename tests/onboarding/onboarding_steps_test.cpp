#include <gmock/gmock.h>

#include <functional>

#include "onboarding/setup_world.h"

// The steps, each from its button to its end.

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = HelperState::Kind;
using enum StepStatus;

constexpr double pollTime = OnboardingController::pollInterval + 0.02;  // seconds
constexpr double successTime = 3;                                       // and the helper is gone

TEST(OnboardingStepsTest, AStepInSettingsIsSeenToBeDoneThere) {
  struct Case {
    SetupStep step;
    const char* url;
    Kind kind;
    const char* row;  // of System Settings
    bool isOn;
  };
  for (const Case& each :
       {Case{SetupStep::audio,
             "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture",
             Kind::audioPermission, "Plemora", true},
        Case{SetupStep::accessibility,
             "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
             Kind::accessibility, "Plemora", true},
        Case{SetupStep::soundIcon,
             "x-apple.systempreferences:com.apple.ControlCenter-Settings.extension",
             Kind::hideSoundIcon, "Sound", false}}) {
    SCOPED_TRACE(SetupWorld::id(each.step));
    SetupWorld world;
    world.prepare(each.step);
    world.setup->show();
    EXPECT_EQ(world.setup->state.statusOf(each.step), active);
    EXPECT_FALSE(world.setup->isPolling());
    EXPECT_THAT(world.desktop.workspace.openedURLs, IsEmpty());

    world.press(each.step);
    EXPECT_EQ(world.desktop.workspace.openedURLs.back(), each.url);
    EXPECT_EQ(world.desktop.accessibility.isAsking(), each.step == SetupStep::accessibility);
    EXPECT_EQ(world.setup->helper().state.kind.get(), each.kind);
    world.desktop.advance(5);
    EXPECT_EQ(world.setup->state.statusOf(each.step), inSettings);
    EXPECT_TRUE(world.setup->helper().isPresented());

    ASSERT_TRUE(world.desktop.settings.setRow(each.row, each.isOn));
    world.desktop.advance(pollTime);
    EXPECT_EQ(world.setup->state.statusOf(each.step), done);
    EXPECT_FALSE(world.setup->isPolling());
    EXPECT_TRUE(world.setup->helper().state.succeeded.get());
    world.desktop.advance(successTime);
    EXPECT_FALSE(world.setup->helper().isPresented());
    EXPECT_EQ(world.desktop.workspace.frontmost().get(), world.desktop.program.pid());
    EXPECT_EQ(world.mixer->permission.get(), AudioPermission::Status::granted)
        << "the mixer has heard of it";
    EXPECT_EQ(world.desktop.mainQueue.pendingTimers(), world.usualTimers);
    if (each.step != SetupStep::soundIcon) {
      const auto next = static_cast<SetupStep>(static_cast<int>(each.step) + 1);
      EXPECT_EQ(world.setup->state.statusOf(next), active);
    } else {
      EXPECT_TRUE(world.page().isComplete);
    }
  }
}

TEST(OnboardingStepsTest, WhatWasDoneMeanwhileNeedsNoSettings) {
  for (const SetupStep step : {SetupStep::audio, SetupStep::accessibility}) {
    SetupWorld world;
    world.prepare(step);
    world.setup->show();
    world.desktop.consent.setPreflight(0);
    world.desktop.accessibility.setTrusted(true);
    world.press(step);
    EXPECT_EQ(world.setup->state.statusOf(step), done);
    EXPECT_THAT(world.desktop.workspace.openedURLs, IsEmpty());
    EXPECT_FALSE(world.setup->isPolling() || world.setup->helper().isPresented());
  }
  SetupWorld world;
  world.prepare(SetupStep::controlCenter);
  world.setup->show();
  world.storeLayout(2, false);
  world.press(SetupStep::controlCenter);
  EXPECT_EQ(world.setup->state.controlCenter.get(), done);
  EXPECT_TRUE(world.isSet("soundReplaced"));
  EXPECT_EQ(world.desktop.controlCenter.launches(), 1) << "it was not restarted for nothing";
}

TEST(OnboardingStepsTest, TheSystemCanBeToldToAskInstead) {
  SetupWorld world;
  world.setup->show();
  world.press(SetupStep::audio);
  for (const bool isGranted : {false, true}) {
    world.setup->helper().state.awaitingApproval.set(true);
    world.setup->helper().onAskInstead();
    ASSERT_EQ(world.desktop.consent.openRequests(), 1);
    world.desktop.consent.decide(isGranted);
    world.desktop.advance(pollTime);
    EXPECT_EQ(world.setup->state.audio.get(), isGranted ? done : inSettings);
    EXPECT_EQ(world.setup->helper().state.awaitingApproval.get(), isGranted);
    world.desktop.consent.setPreflight(isGranted ? 0 : 2);
  }
  world.desktop.advance(successTime);
  world.press(SetupStep::accessibility);
  world.desktop.accessibility.endAsking();
  world.setup->helper().onAskInstead();
  EXPECT_TRUE(world.desktop.accessibility.isAsking());
}

TEST(OnboardingStepsTest, SoundIsReplacedOnceControlCenterIsBack) {
  struct Case {
    const char* what;
    double relaunchDelay;
    double killedAfter;  // once more, seconds; 0: not
    double preparedAfter;
    double doneAfter;
  };
  for (const Case& each :
       {Case{"at once", 0.1, 0, 0, 0.4}, Case{"slowly", 3, 0, 0, 3.2},
        Case{"killed again", 1, 1.1, 0, 2.4}, Case{"waiting for its controls", 1, 0, 4.1, 4.4}}) {
    SCOPED_TRACE(each.what);
    SetupWorld world;
    world.prepare(SetupStep::controlCenter);
    world.desktop.controlCenter.faults.relaunchDelay = each.relaunchDelay;
    Timer preparation;
    world.setup->prepareControls = [&](std::function<void()> prepared) {
      preparation = world.desktop.mainQueue.after(each.preparedAfter, std::move(prepared));
    };
    world.setup->show();
    world.press(SetupStep::controlCenter);
    EXPECT_TRUE(world.isSet("soundReplaced"));
    EXPECT_EQ(world.page().cards[2].note, "Restarting Control Center…");
    world.desktop.advance(each.killedAfter);
    if (each.killedAfter > 0) {
      world.desktop.controlCenter.kill();
    }
    world.desktop.advance(each.doneAfter - each.killedAfter - 0.05);
    EXPECT_THAT(world.statuses(), ElementsAre(done, done, working, pending));
    world.desktop.advance(0.1);
    EXPECT_THAT(world.statuses(), ElementsAre(done, done, done, active));
    EXPECT_FALSE(world.setup->isPolling());
    EXPECT_TRUE(world.desktop.controlCenter.isRunning());
  }
}

TEST(OnboardingStepsTest, AControlCenterThatDoesNotComeBackIsNotWaitedForForever) {
  struct Case {
    const char* what;
    std::function<void(SetupWorld&)> goesWrong;
  };
  for (const Case& each : std::vector<Case>{
           {"it stays away",
            [](auto& world) { world.desktop.controlCenter.faults.staysDown = true; }},
           {"it puts its old layout back", [](auto& world) { world.storeLayout(0, true); }},
           {"its controls are never ready",
            [](auto& world) { world.setup->prepareControls = [](const auto&) {}; }}}) {
    SCOPED_TRACE(each.what);
    SetupWorld world;
    world.prepare(SetupStep::controlCenter);
    world.setup->show();
    if (each.what != std::string("it puts its old layout back")) {
      each.goesWrong(world);
    }
    world.press(SetupStep::controlCenter);
    if (each.what == std::string("it puts its old layout back")) {
      each.goesWrong(world);
    }
    world.desktop.advance(OnboardingController::restartTimeout - 0.1);
    EXPECT_EQ(world.setup->state.controlCenter.get(), working);
    world.desktop.advance(0.6);
    EXPECT_EQ(world.setup->state.controlCenter.get(), active);
    EXPECT_EQ(world.desktop.mainQueue.pendingTimers(), world.usualTimers);
  }
}

TEST(OnboardingStepsTest, WhatTheProgramCannotReplaceTheUserIsShownHowTo) {
  enum class End { seen, saidAndSeen, saidTooEarly, believed };
  struct Case {
    const char* what;
    std::function<void(SetupWorld&)> fails;
    End end;
  };
  const auto noSound = [](SetupWorld& world) { world.storeLayout(0, false); };
  const auto unknown = [](SetupWorld& world) { world.makeLayoutUnknown(); };
  const auto unreadable = [](SetupWorld& world) { world.makeLayoutUnreadable(); };
  for (const Case& each : std::vector<Case>{{"no Sound", noSound, End::seen},
                                            {"no Sound, in a hurry", noSound, End::saidAndSeen},
                                            {"no Sound, too early", noSound, End::saidTooEarly},
                                            {"unknown", unknown, End::seen},
                                            {"unknown to the end", unknown, End::believed},
                                            {"unreadable", unreadable, End::believed}}) {
    SCOPED_TRACE(each.what);
    SetupWorld world;
    world.prepare(SetupStep::controlCenter);
    each.fails(world);
    world.setup->show();
    EXPECT_TRUE(world.setup->state.supportsControlCenter.get());
    EXPECT_EQ(world.setup->state.controlCenter.get(), active);
    world.press(SetupStep::controlCenter);
    EXPECT_EQ(world.setup->helper().state.kind.get(), Kind::controlCenter);
    world.desktop.advance(5);
    EXPECT_EQ(world.setup->state.controlCenter.get(), inSettings);
    EXPECT_FALSE(world.isSet("soundReplaced"));
    EXPECT_EQ(world.desktop.controlCenter.launches(), 1);
    if (each.end == End::seen || each.end == End::saidAndSeen) {
      world.storeLayout(2, false);
    }
    if (each.end == End::seen) {
      world.desktop.advance(pollTime);
    } else {
      world.setup->helper().onDone();
    }
    const bool isDone = each.end != End::saidTooEarly;
    EXPECT_EQ(world.setup->state.controlCenter.get(), isDone ? done : inSettings);
    EXPECT_EQ(world.isSet("soundReplaced"), isDone);
    EXPECT_EQ(world.setup->helper().state.controlCenterRetry.get(), !isDone);
    world.setup->skipSoundIcon();
    if (isDone) {
      EXPECT_EQ(world.page().completeLines.size(), each.end == End::believed ? 1U : 2U)
          << "nothing is claimed that cannot be seen";
    }
  }
}

TEST(OnboardingStepsTest, OnlyAHiddenIconOfSoundIsDone) {
  struct Case {
    PreferenceValue value;
    bool isDone;
  };
  for (const Case& each : std::vector<Case>{{PreferenceValue(false), true},
                                            {PreferenceValue(std::int64_t{0}), true},
                                            {PreferenceValue(true), false},
                                            {PreferenceValue(std::int64_t{1}), false},
                                            {PreferenceValue(std::int64_t{8}), false},
                                            {PreferenceValue("NO"), false},
                                            {PreferenceValue(OtherPreference{}), false}}) {
    SetupWorld world;
    world.prepare(SetupStep::soundIcon);
    world.storeSoundIcon(each.value);
    world.setup->show();
    EXPECT_EQ(world.setup->state.soundIcon.get(), each.isDone ? done : active);
  }
}

TEST(OnboardingStepsTest, AHelperSpeaksOfItsOwnStepAlone) {
  SetupWorld world;
  world.desktop.consent.setPreflight(1);
  world.desktop.accessibility.setTrusted(false);
  world.setup->show();
  world.press(SetupStep::audio);
  world.desktop.advance(2);
  world.desktop.accessibility.setTrusted(true);
  world.desktop.advance(3);
  EXPECT_EQ(world.setup->state.accessibility.get(), done);
  EXPECT_TRUE(world.setup->helper().isPresented());
  EXPECT_FALSE(world.setup->helper().state.succeeded.get());
  world.desktop.consent.setPreflight(0);
  world.desktop.advance(0.5);
  EXPECT_TRUE(world.setup->helper().state.succeeded.get());
}

TEST(OnboardingStepsTest, KeepingTheSoundIconEndsItsStep) {
  for (const bool isBegun : {false, true}) {
    SetupWorld world;
    world.prepare(SetupStep::soundIcon);
    world.setup->show();
    if (isBegun) {
      world.press(SetupStep::soundIcon);
      world.desktop.advance(2);
    }
    world.setup->view().onSkip("soundIcon");
    EXPECT_TRUE(world.page().isComplete);
    EXPECT_FALSE(world.setup->isPolling());
    world.desktop.advance(3);
    EXPECT_FALSE(world.setup->helper().isPresented());
    EXPECT_EQ(world.desktop.workspace.frontmost().get(), world.desktop.program.pid());
  }
  SetupWorld world;
  world.setup->show();
  for (const SetupStep step : setupSteps) {
    world.setup->view().onSkip(SetupWorld::id(step));
  }
  EXPECT_THAT(world.statuses(), ElementsAre(active, pending, pending, pending))
      << "nothing else can be skipped, and this not before its turn";
}

}  // namespace
}  // namespace plemora
