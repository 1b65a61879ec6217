#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"

namespace plemora {
namespace {

using Log = std::vector<std::string>;

class VirtualMainQueueTest : public testing::Test {
 protected:
  auto note(std::string what) {
    return [this, what = std::move(what)] {
      log.push_back(what + "@" + std::to_string(static_cast<int>(clock.mediaTime() * 100 + 0.5)));
    };
  }

  VirtualClock clock;
  VirtualMainQueue main{clock};
  Log log;
};

TEST_F(VirtualMainQueueTest, RunsTimersInTheOrderOfTheirTimesAndAsyncWorkBetween) {
  const auto late = main.after(0.3, note("late"));
  const auto early = main.after(0.1, [&] {
    note("early")();
    main.async(note("async"));
  });
  const auto tied = main.after(0.1, note("tied"));
  const auto often = main.every(0.2, note("often"));
  main.async(note("first"));
  main.advance(0.5);
  EXPECT_EQ(log,
            (Log{"first@0", "early@10", "async@10", "tied@10", "often@20", "late@30", "often@40"}));
  EXPECT_EQ(clock.mediaTime(), 0.5);
  EXPECT_EQ(main.pendingTimers(), 1);
}

TEST_F(VirtualMainQueueTest, DroppedWorkNeverRunsAndLetsGoOfWhatItHolds) {
  const auto held = std::make_shared<int>(0);
  Timer victim = main.after(0.2, [this, held] { log.push_back("victim"); });
  Timer self;
  self = main.every(0.1, [&, held] {
    log.push_back("self");
    victim.reset();
    self.reset();
  });
  main.advance(0.15);
  EXPECT_EQ(held.use_count(), 1);
  main.advance(1);
  EXPECT_EQ(log, Log{"self"});
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST_F(VirtualMainQueueTest, TellsWhenTheNextTimerIsDue) {
  EXPECT_EQ(main.nextTimer(), std::nullopt);
  Timer early = main.after(0.1, [] {});
  const auto often = main.every(0.25, [] {});
  EXPECT_EQ(main.nextTimer(), 0.1);
  early.reset();
  EXPECT_EQ(main.nextTimer(), 0.25);
  main.advance(0.3);
  EXPECT_EQ(main.nextTimer(), 0.5);
}

TEST_F(VirtualMainQueueTest, WorkMayScheduleMoreAndBeDroppedAfterTheQueue) {
  Timer outlives;
  {
    VirtualMainQueue shortLived(clock);
    Timer inner;
    const auto outer = shortLived.after(0.1, [&] {
      note("outer")();
      inner = shortLived.after(0.1, note("inner"));
    });
    outlives = shortLived.after(5, note("never"));
    shortLived.advance(0.2);
  }
  outlives.reset();
  EXPECT_EQ(log, (Log{"outer@10", "inner@20"}));
}

TEST_F(VirtualMainQueueTest, TakesWorkFromAnyThread) {
  int ran = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 250; ++n) {
        main.async([&] { ++ran; });
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(main.drain(), 1000);
  EXPECT_EQ(ran, 1000);
}

TEST(VirtualClockTest, TheDateRunsAlongAndCanBeSet) {
  VirtualClock clock;
  const WallTime start = clock.now();
  clock.advanceTo(599);
  EXPECT_EQ(clock.now() - start, std::chrono::seconds(599));
  clock.setNow(start);
  clock.advanceTo(600);
  EXPECT_EQ(clock.now() - start, std::chrono::seconds(1));
  EXPECT_EQ(clock.mediaTime(), 600);
  const std::string first = clock.makeUUID();
  EXPECT_NE(first, clock.makeUUID());
  EXPECT_EQ(VirtualClock().makeUUID(), first);
}

TEST(ManualQueues, RunWhenToldInOrderAndFinishBeforeTheyEnd) {
  StageQueueFactory factory;
  auto taps = factory.makeQueue("taps");
  auto io = factory.makeQueue("io");
  Log log;
  taps->async([&] {
    log.push_back("t1");
    taps->async([&] { log.push_back("t3"); });
  });
  taps->async([&] { log.push_back("t2"); });
  io->async([&] { log.push_back("i1"); });
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(factory.queues("taps").at(0)->pending(), 2);
  EXPECT_TRUE(factory.runNext());
  EXPECT_EQ(log, Log{"t1"});
  EXPECT_EQ(factory.runAll(), 3);
  EXPECT_EQ(log, (Log{"t1", "t2", "t3", "i1"}));
  EXPECT_FALSE(factory.runNext());
  io->async([&] { log.push_back("i2"); });
  io.reset();
  EXPECT_EQ(log.back(), "i2");
  EXPECT_TRUE(factory.queues("io").empty());
  EXPECT_EQ(factory.labels(), (Log{"taps", "io"}));
}

TEST(ManualQueues, ImmediateOnesStillRunOnePieceAfterTheOther) {
  StageQueueFactory factory;
  factory.setImmediate(true);
  const auto queue = factory.makeQueue("taps");
  Log log;
  queue->async([&] {
    queue->async([&] { log.push_back("inner"); });
    log.push_back("outer");
  });
  EXPECT_EQ(log, (Log{"outer", "inner"}));
}

}  // namespace
}  // namespace plemora
