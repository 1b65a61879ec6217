#include "audio/tap_levels.h"

#include <gmock/gmock.h>

#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TapLevelsTest : testing::Test {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  std::map<std::string, TapLevel> taps;  // peaks not yet read
  int reads = 0;
  TapLevels levels{main, [this] {
                     ++reads;
                     std::vector<TapLevel> result;
                     for (auto& [id, tap] : taps) {
                       result.push_back({id, tap.gain, std::exchange(tap.inputPeak, 0.0f),
                                         std::exchange(tap.peak, 0.0f)});
                     }
                     return result;
                   }};

  void sound(const std::string& id, float inputPeak) {
    const bool isNew = !taps.contains(id);
    TapLevel& tap = taps[id];
    tap.gain = 0.5f;
    tap.inputPeak = std::max(tap.inputPeak, inputPeak);
    tap.peak = std::max(tap.peak, inputPeak * 0.5f);
    if (isNew) {
      levels.tapStarted();
    }
  }

  struct Watcher {
    std::vector<std::vector<TapLevel>> readings;
    std::shared_ptr<TapLevels::Watch> watch;

    /// The input peaks of the last reading.
    std::vector<float> peaks() const {
      std::vector<float> result;
      for (const TapLevel& level : readings.back()) {
        result.push_back(level.inputPeak);
      }
      return result;
    }
  };

  void start(Watcher& watcher, double interval) {
    watcher.watch = levels.watch(interval, [&watcher](const std::vector<TapLevel>& reading) {
      watcher.readings.push_back(reading);
    });
  }
};

TEST_F(TapLevelsTest, gives_every_watcher_the_maxima_since_its_own_last_reading) {
  Watcher fast;
  Watcher slow;
  start(fast, 0.1);
  start(slow, 1.0);
  sound("a", 0.75f);
  main.advance(0.15);
  EXPECT_THAT(fast.peaks(), ElementsAre(0.75f));
  sound("a", 0.25f);
  sound("b", 0.5f);
  main.advance(0.1);
  EXPECT_THAT(fast.peaks(), ElementsAre(0.25f, 0.5f));
  main.advance(0.1);
  EXPECT_THAT(fast.peaks(), ElementsAre(0.0f, 0.0f));
  EXPECT_THAT(slow.readings, IsEmpty());
  main.advance(0.7);
  ASSERT_EQ(slow.readings.size(), 1u);
  EXPECT_THAT(slow.peaks(), ElementsAre(0.75f, 0.5f));
  EXPECT_EQ(slow.readings[0][0].peak, 0.375f);
  EXPECT_EQ(slow.readings[0][0].gain, 0.5f);
  main.advance(1.0);
  EXPECT_THAT(slow.peaks(), ElementsAre(0.0f, 0.0f));
}

TEST_F(TapLevelsTest, count_from_the_beginning_of_the_watching) {
  Watcher early;
  Watcher late;
  start(early, 1.0);
  sound("a", 0.75f);
  main.advance(0.5);
  start(late, 1.0);
  main.advance(2.0);
  EXPECT_EQ(late.readings[0][0].inputPeak, 0.0f);
  EXPECT_EQ(early.readings[0][0].inputPeak, 0.75f) << "and nothing is taken from the others";
}

TEST_F(TapLevelsTest, rest_while_no_tap_runs) {
  Watcher watcher;
  start(watcher, 1.0);
  main.advance(10);
  EXPECT_EQ(watcher.readings.size(), 1u) << "one tells that there is nothing";
  EXPECT_EQ(main.pendingTimers(), 0);
  sound("a", 0.5f);
  main.advance(1);
  EXPECT_THAT(watcher.peaks(), ElementsAre(0.5f));
  taps.clear();
  main.advance(10);
  EXPECT_EQ(watcher.readings.size(), 3u);
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST_F(TapLevelsTest, can_be_left_by_a_watcher_during_its_reading) {
  int readings = 0;
  std::shared_ptr<TapLevels::Watch> watch;
  watch = levels.watch(1.0, [&](const auto&) {
    ++readings;
    watch.reset();
  });
  main.advance(5);
  EXPECT_EQ(readings, 1);
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST_F(TapLevelsTest, may_go_before_their_watchers) {
  auto other = std::make_unique<TapLevels>(main, [] { return std::vector<TapLevel>{{"a"}}; });
  int readings = 0;
  const auto watch = other->watch(1.0, [&](const auto&) { ++readings; });
  main.advance(1.0);
  other.reset();
  main.advance(5.0);
  EXPECT_EQ(readings, 1);
}

struct LevelLogTest : testing::Test {
  AudioWorld world;
  std::vector<std::string> logged() {
    std::vector<std::string> messages;
    for (const auto& record : world.log.records) {
      if (record.category == "levels" && record.level == LogLevel::info) {
        messages.push_back(record.message);
      }
    }
    return messages;
  }
};

TEST_F(LevelLogTest, tells_gain_and_peaks_every_two_seconds) {
  world.arguments = {"--no-ui", "--log-levels"};
  const auto process = world.play(11, "com.a", "A", world.speakers);
  world.play(12, "com.untapped", "Untapped", world.speakers);
  MixerModel& mixer = world.start();
  mixer.setVolume(0.5f, "com.a");
  world.settle();
  world.hal.step(64);
  world.pass(1.9);
  EXPECT_THAT(logged(), IsEmpty());
  world.pass(0.2);
  EXPECT_THAT(logged(), ElementsAre("com.a gain 0.250000 in 1.000000 out 0.250000"));
  world.hal.updateProcess(process, [](SimulatedProcess& p) { p.source = nullptr; });
  world.hal.step(64);
  world.pass(2);
  EXPECT_EQ(logged().back(), "com.a gain 0.250000 in 0.000000 out 0.000000");
}

TEST_F(LevelLogTest, is_silent_unless_asked_for) {
  world.play(11, "com.a", "A", world.speakers);
  world.start().setVolume(0.5f, "com.a");
  world.pass(10);
  EXPECT_THAT(logged(), IsEmpty());
  EXPECT_EQ(world.main.pendingTimers(), 0);
}

}  // namespace
}  // namespace plemora
