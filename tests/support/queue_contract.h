#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/main_queue.h"

namespace plemora {

/// What every adapter of MainQueue must do. A world derives from this and gives one whose time can
/// be let pass.
class MainQueueWorld {
 public:
  virtual ~MainQueueWorld() = default;

  virtual MainQueue& queue() = 0;
  /// Lets the queue go, and takes another one.
  virtual void replaceQueue() = 0;
  /// Lets time pass until the condition holds; false after ten seconds of it.
  virtual bool runUntil(std::function<bool()> condition) = 0;
};

struct MainQueueWorldFactory {
  std::string name;
  std::function<std::unique_ptr<MainQueueWorld>()> make;
};

class MainQueueContract : public testing::TestWithParam<MainQueueWorldFactory> {
 protected:
  bool runFor(double seconds) {
    bool isOver = false;
    const Timer end = world->queue().after(seconds, [&isOver] { isOver = true; });
    return world->runUntil([&isOver] { return isOver; });
  }

  const std::unique_ptr<MainQueueWorld> world = GetParam().make();
};

TEST_P(MainQueueContract, RunsWorkOfAnyThreadInOrderOnTheMainThread) {
  std::vector<int> order;
  const auto main = std::this_thread::get_id();
  std::thread other([&] {
    for (int i = 0; i < 100; ++i) {
      world->queue().async([&order, i, main] {
        EXPECT_EQ(std::this_thread::get_id(), main);
        order.push_back(i);
      });
    }
  });
  other.join();
  EXPECT_TRUE(world->runUntil([&order] { return order.size() == 100; }));
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_P(MainQueueContract, NeverRunsWorkAtOnceAlsoNotFromWork) {
  std::string order;
  world->queue().async([&] {
    world->queue().async([&order] { order += 'c'; });
    order += 'b';
  });
  const Timer now = world->queue().after(0, [&order] { order += 't'; });
  order += 'a';
  EXPECT_TRUE(world->runUntil([&order] { return order.size() == 4; }));
  std::erase(order, 't');
  EXPECT_EQ(order, "abc");
}

TEST_P(MainQueueContract, RunsTimersByTheirTimes) {
  std::string order;
  const Timer late = world->queue().after(0.05, [&order] { order += 'l'; });
  const Timer early = world->queue().after(0.005, [&order] { order += 'e'; });
  const Timer often = world->queue().every(0.02, [&order] { order += '.'; });
  EXPECT_TRUE(world->runUntil([&order] { return order.find('l') != order.npos; }));
  EXPECT_EQ(order.front(), 'e');
  EXPECT_NE(order.find('.'), order.npos);
}

TEST_P(MainQueueContract, DroppedWorkDoesNotRunAlsoWhenItDropsItself) {
  bool ran = false;
  Timer dropped = world->queue().after(0.001, [&ran] { ran = true; });
  dropped.reset();
  int ticks = 0;
  Timer own;
  const auto held = std::make_shared<int>(7);
  own = world->queue().every(0.001, [&own, &ticks, held] {
    own.reset();
    ticks += *held;  // what the work holds outlives the drop
  });
  EXPECT_TRUE(runFor(0.03));
  EXPECT_FALSE(ran);
  EXPECT_EQ(ticks, 7);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_P(MainQueueContract, WorkDoesNotOutliveTheQueueButItsHandlesMay) {
  bool ran = false;
  world->queue().async([&ran] { ran = true; });
  Timer timer = world->queue().after(0.001, [&ran] { ran = true; });
  world->replaceQueue();
  EXPECT_TRUE(runFor(0.02));
  EXPECT_FALSE(ran);
  timer.reset();
}

}  // namespace plemora
