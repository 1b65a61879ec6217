#include "menubar/level_meters.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;

struct LevelMetersTest : testing::Test {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  std::map<std::string, float> taps;  // peaks not yet read
  TapLevels source{main, [this] {
                     std::vector<TapLevel> result;
                     for (auto& [id, peak] : taps) {
                       result.push_back({id, 1.0f, 0.0f, std::exchange(peak, 0.0f)});
                     }
                     return result;
                   }};
  LevelMeters::Levels last;
  int changes = 0;
  LevelMeters meters{source, [this](const LevelMeters::Levels& levels) {
                       last = levels;
                       ++changes;
                     }};

  void tick() { main.advance(LevelMeters::interval); }
};

TEST_F(LevelMetersTest, LengthFollowsTheDecibels) {
  EXPECT_EQ(LevelMeters::length(1), 1);
  EXPECT_NEAR(LevelMeters::length(0.1f), 28.0 / 48, 1e-6);
  EXPECT_NEAR(LevelMeters::length(0.01f), 8.0 / 48, 1e-6);
  for (const float silent : {0.0f, -1.0f, 1e-3f, std::numeric_limits<float>::denorm_min(),
                             std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_EQ(LevelMeters::length(silent), 0) << silent;
  }
  for (const float loud : {1.5f, std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(LevelMeters::length(loud), 1) << loud;
  }
}

TEST_F(LevelMetersTest, RiseAtOnceAndFallSlowly) {
  taps["a"] = 1.0f;
  meters.start();  // what sounded before is not its business
  taps["a"] = 0.1f;
  tick();
  EXPECT_NEAR(last.at("a"), 28.0 / 48, 1e-6);
  taps["a"] = 1.0f;
  tick();
  EXPECT_EQ(last.at("a"), 1);
  main.advance(1);
  EXPECT_NEAR(last.at("a"), 0.5, 0.02) << "24 of 48 decibels in a second";
  main.advance(1.2);
  EXPECT_EQ(last.at("a"), 0);
  const int settled = changes;
  main.advance(5);
  EXPECT_EQ(changes, settled) << "nothing is told while nothing changes";
}

TEST_F(LevelMetersTest, AreThereAsLongAsTheirTaps) {
  meters.start();
  taps["a"] = 1.0f;
  tick();
  taps["b"] = 0.0f;
  tick();
  EXPECT_THAT(last, ElementsAre(Key("a"), Key("b")));
  taps.erase("a");
  tick();
  EXPECT_THAT(last, ElementsAre(Key("b"))) << "a tap that has gone falls silent at once";
}

TEST_F(LevelMetersTest, CostNothingWhileStopped) {
  EXPECT_EQ(main.pendingTimers(), 0);
  meters.start();
  meters.start();
  EXPECT_EQ(main.pendingTimers(), 1);
  taps["a"] = 1.0f;
  tick();
  meters.stop();
  EXPECT_EQ(main.pendingTimers(), 0);
  const int told = changes;
  main.advance(1);
  EXPECT_EQ(changes, told);
  meters.start();
  tick();
  EXPECT_EQ(last.at("a"), 0) << "starts anew, not at the old length";
}

}  // namespace
}  // namespace plemora
