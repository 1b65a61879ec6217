// The service that is joined by its panel later on, and ended with that open.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

#include "panel/desk.h"

namespace plemora::rig {
namespace {

TEST(Starts, ServiceIsJoinedByItsPanelWithoutASound) {
  Desk desk;
  desk.startProgram(true);
  SinkRecorder first(desk.session(), "first");
  const auto tone = desk.play("tone", Signal::constant(0.5));
  desk.plemora().must({"mute", "tone"});
  ASSERT_TRUE(hears(first, 0));

  first.clear();
  EXPECT_EQ(desk.startAgain({"--no-ui"}), 0);
  EXPECT_EQ(desk.startAgain(), 0);
  EXPECT_TRUE(desk.showsIcon()) << desk.session().logs();
  EXPECT_FALSE(desk.panel());
  EXPECT_EQ(desk.startAgain(), 0);
  EXPECT_TRUE(desk.opens()) << "started once more, it shows itself";
  EXPECT_TRUE(desk.restsUnderIcon(317));
  const auto heard = first.take();
  EXPECT_GT(heard.frames, 4800u);
  EXPECT_EQ(peak(heard[0]), 0) << "the muted app was heard";

  desk.plemora().process().signal(SIGTERM);
  EXPECT_EQ(desk.plemora().process().wait(5), 0);
  EXPECT_TRUE(hears(first, 0.5)) << "back on its usual path";
  EXPECT_FALSE(desk.panel());
}

}  // namespace
}  // namespace plemora::rig
