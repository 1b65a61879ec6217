#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <QCoreApplication>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/desktop/thread_queue.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "support/queue_contract.h"

namespace plemora {

namespace {

TEST(ThreadQueue, RunsWorkInOrderAndFinishesBeforeItGoes) {
  std::vector<int> order;
  {
    const auto queue = ThreadQueueFactory().makeQueue("com.quorvane.mixer.taps");
    for (int i = 0; i < 1000; ++i) {
      queue->async([&order, i] { order.push_back(i); });
    }
  }
  ASSERT_EQ(order.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(ThreadQueue, KeepsTheWorkOfEachSubmitterInOrderAndRunsOneAtATime) {
  std::vector<std::pair<int, int>> order;  // written without a lock: the queue is one
  {
    const auto queue = ThreadQueueFactory().makeQueue("x");
    std::vector<std::thread> submitters;
    for (int submitter = 0; submitter < 4; ++submitter) {
      submitters.emplace_back([&queue, &order, submitter] {
        for (int i = 0; i < 500; ++i) {
          queue->async([&order, submitter, i] { order.emplace_back(submitter, i); });
        }
      });
    }
    for (auto& thread : submitters) {
      thread.join();
    }
  }
  ASSERT_EQ(order.size(), 2000U);
  for (int submitter = 0; submitter < 4; ++submitter) {
    int next = 0;
    for (const auto& [who, i] : order) {
      if (who == submitter) {
        EXPECT_EQ(i, next++);
      }
    }
  }
}

TEST(ThreadQueue, ItsThreadBearsTheEndOfTheLabel) {
  for (const auto& [label, name] : {std::pair("com.quorvane.mixer.skin-scan", "mixer.skin-scan"),
                                    std::pair("com.quorvane.mixer.io", "mixer.io"),
                                    std::pair("averylonglabelwithoutdots", "averylonglabelw")}) {
    char found[16] = "";
    ThreadQueueFactory().makeQueue(label)->async(
        [&found] { pthread_getname_np(pthread_self(), found, sizeof found); });
    EXPECT_STREQ(found, name);
  }
}

TEST(ThreadQueue, MayBeDroppedByItsOwnWork) {
  std::promise<void> done;
  auto queue = ThreadQueueFactory().makeQueue("x");
  auto* raw = queue.get();
  std::promise<void> submitted;
  raw->async([&queue, &submitted] {
    submitted.get_future().wait();
    queue.reset();
  });
  raw->async([&done] { done.set_value(); });
  submitted.set_value();
  EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

/// The queue of an event loop, in real time.
class QtWorld : public MainQueueWorld {
 public:
  QtMainQueue& queue() override { return *queue_; }
  void replaceQueue() override { queue_ = std::make_unique<QtMainQueue>(); }
  bool runUntil(std::function<bool()> condition) override {
    const Timer limit = queue_->after(10, [] { QCoreApplication::exit(1); });
    const Timer poll = queue_->every(0.002, [condition] {
      if (condition()) {
        QCoreApplication::exit(0);
      }
    });
    return QCoreApplication::exec() == 0;
  }

  void dropApplication() { application_.reset(); }
  void makeApplication() {
    application_ = std::make_unique<QCoreApplication>(argumentCount_, arguments_);
  }

 private:
  int argumentCount_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QCoreApplication> application_ =
      std::make_unique<QCoreApplication>(argumentCount_, arguments_);
  std::unique_ptr<QtMainQueue> queue_ = std::make_unique<QtMainQueue>();
};

class VirtualWorld : public MainQueueWorld {
 public:
  MainQueue& queue() override { return *queue_; }
  void replaceQueue() override { queue_ = std::make_unique<VirtualMainQueue>(clock_); }
  bool runUntil(std::function<bool()> condition) override {
    while (clock_.mediaTime() < 10 && !condition()) {
      queue_->advance(0.0005);
    }
    return condition();
  }

 private:
  VirtualClock clock_;
  std::unique_ptr<VirtualMainQueue> queue_ = std::make_unique<VirtualMainQueue>(clock_);
};

INSTANTIATE_TEST_SUITE_P(
    Of, MainQueueContract,
    testing::Values(MainQueueWorldFactory{"Qt", [] { return std::make_unique<QtWorld>(); }},
                    MainQueueWorldFactory{"Stage",
                                          [] { return std::make_unique<VirtualWorld>(); }}),
    [](const auto& test) { return test.param.name; });

class QtMainQueueTest : public testing::Test {
 protected:
  QtWorld world_;
  QtMainQueue* const queue_ = &world_.queue();
};

TEST_F(QtMainQueueTest, TimersKeepTheirTime) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  Clock::time_point once;
  int ticks = 0;
  const Timer single = queue_->after(0.12, [&once] { once = Clock::now(); });
  const Timer repeated = queue_->every(0.02, [&ticks] { ++ticks; });
  EXPECT_TRUE(world_.runUntil([&once] { return once != Clock::time_point(); }));
  EXPECT_GE(once - start, std::chrono::milliseconds(120));
  EXPECT_GE(ticks, 1);
  EXPECT_LE(ticks, std::chrono::duration<double>(Clock::now() - start).count() / 0.02 + 1);
}

TEST_F(QtMainQueueTest, OutlivesItsApplicationWhileItRests) {
  int ticks = 0;
  bool single = false;
  bool submitted = false;
  const Timer repeated = queue_->every(0.01, [&ticks] { ++ticks; });
  const Timer once = queue_->after(0.02, [&single] { single = true; });
  queue_->rest();
  world_.dropApplication();
  queue_->async([&submitted] { submitted = true; });
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  world_.makeApplication();
  EXPECT_EQ(ticks, 0);
  queue_->resume();
  EXPECT_TRUE(world_.runUntil([&] { return ticks >= 3 && single && submitted; }));
}

}  // namespace

}  // namespace plemora
