// The service that is joined by its panel later on, and ended with that open; the end that log-out
// brings.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "panel/desk.h"
#include "panel/session_manager.h"

namespace plemora::rig {
namespace {

/// What is heard of a muted app while the panel joins and opens.
Recording recordJoining(Desk& desk, SinkRecorder& sink) {
  sink.clear();
  EXPECT_EQ(desk.startAgain({"--no-ui"}), 0);
  EXPECT_EQ(desk.startAgain(), 0);
  EXPECT_TRUE(desk.showsIcon()) << desk.session().logs();
  EXPECT_FALSE(desk.panel());
  EXPECT_EQ(desk.startAgain(), 0);
  EXPECT_TRUE(desk.opens()) << "started once more, it shows itself";
  EXPECT_TRUE(desk.restsUnderIcon(317));
  return sink.take();
}

TEST(Starts, ServiceIsJoinedByItsPanelWithoutASound) {
  constexpr int attempts = 5;
  for (int attempt = 1; attempt <= attempts; ++attempt) {
    Desk desk;
    desk.startProgram(true);
    SinkRecorder first(desk.session(), "first");
    const auto tone = desk.play("tone", Signal::constant(0.5));
    desk.plemora().must({"mute", "tone"});
    ASSERT_TRUE(hears(first, 0));

    const auto heard = recordJoining(desk, first);
    EXPECT_GT(heard.frames, 4800u);
    const auto loud = std::ranges::count_if(heard[0], [](float sample) { return sample != 0; });

    desk.plemora().process().signal(SIGTERM);
    EXPECT_EQ(desk.plemora().process().wait(5), 0) << "ended with the panel open";
    EXPECT_TRUE(hears(first, 0.5)) << "back on its usual path";
    EXPECT_FALSE(desk.panel());

    // A machine that is too busy to keep up says nothing of the program.
    if (loud == 0 || heard.gaps == 0 || attempt == attempts) {
      EXPECT_EQ(loud, 0) << "frames of the muted app among " << heard.frames << ", the first at "
                         << firstAbove(heard[0], 0) << "; cycles missed: " << heard.gaps;
      return;
    }
    std::printf("disturbed: %d cycles missed\n", heard.gaps);
  }
}

TEST(LogOut, EndsItInOrderWhateverIsOpen) {
  for (const bool isFirstStart : {false, true}) {
    SessionManager manager;
    Desk desk({.name = "Left", .isFirstStart = isFirstStart});
    desk.startProgram(false, {manager.variable()});
    ASSERT_TRUE(manager.hasClient()) << desk.session().logs();
    SinkRecorder first(desk.session(), "first");
    const auto tone = desk.play("tone", Signal::constant(0.5));
    desk.plemora().must({"mute", "tone"});
    ASSERT_TRUE(hears(first, 0));
    if (isFirstStart) {
      ASSERT_TRUE(desk.shows("Finish Later"));
    } else {
      ASSERT_EQ(desk.startAgain(), 0);
      ASSERT_TRUE(desk.opens());
    }

    manager.logOut();
    EXPECT_TRUE(manager.hasToldToEnd()) << "it holds up the end of the session";
    EXPECT_EQ(desk.plemora().process().wait(5), 0);
    EXPECT_TRUE(hears(first, 0.5)) << "back on its usual path";
    EXPECT_THAT(desk.settings(), testing::HasSubstr("tone")) << "the mute is kept";
    EXPECT_FALSE(manager.isToBeRestarted()) << "it has its login item for that";
  }
}

}  // namespace
}  // namespace plemora::rig
