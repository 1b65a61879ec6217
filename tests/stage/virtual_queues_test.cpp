#include <gtest/gtest.h>

#include <memory>
#include <string>
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

}  // namespace
}  // namespace plemora
