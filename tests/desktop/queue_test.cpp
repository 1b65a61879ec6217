#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <QCoreApplication>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/desktop/thread_queue.h"

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

class QtMainQueueTest : public testing::Test {
 protected:
  /// Runs the event loop until the condition holds; false after ten seconds.
  template <typename Condition>
  bool runUntil(Condition condition) {
    const Timer limit = queue_->after(10, [] { QCoreApplication::exit(1); });
    const Timer poll = queue_->every(0.002, [condition] {
      if (condition()) {
        QCoreApplication::exit(0);
      }
    });
    return QCoreApplication::exec() == 0;
  }

  int argumentCount_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QCoreApplication> application_ =
      std::make_unique<QCoreApplication>(argumentCount_, arguments_);
  std::unique_ptr<QtMainQueue> queue_ = std::make_unique<QtMainQueue>();
};

TEST_F(QtMainQueueTest, RunsWorkOfAnyThreadInOrderOnTheMainThread) {
  std::vector<int> order;
  const auto main = std::this_thread::get_id();
  std::thread other([&] {
    for (int i = 0; i < 100; ++i) {
      queue_->async([&order, i, main] {
        EXPECT_EQ(std::this_thread::get_id(), main);
        order.push_back(i);
      });
    }
  });
  EXPECT_TRUE(runUntil([&order] { return order.size() == 100; }));
  other.join();
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(QtMainQueueTest, AsyncNeverRunsTheWorkAtOnce) {
  bool ran = false;
  queue_->async([&ran] { ran = true; });
  EXPECT_FALSE(ran);
  EXPECT_TRUE(runUntil([&ran] { return ran; }));
}

TEST_F(QtMainQueueTest, TimersKeepTheirTime) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  Clock::time_point once;
  int ticks = 0;
  const Timer single = queue_->after(0.12, [&once] { once = Clock::now(); });
  const Timer repeated = queue_->every(0.02, [&ticks] { ++ticks; });
  EXPECT_TRUE(runUntil([&once] { return once != Clock::time_point(); }));
  EXPECT_GE(once - start, std::chrono::milliseconds(120));
  EXPECT_GE(ticks, 1);
  EXPECT_LE(ticks, std::chrono::duration<double>(Clock::now() - start).count() / 0.02 + 1);
}

TEST_F(QtMainQueueTest, DroppedWorkDoesNotRunAlsoWhenItDropsItself) {
  bool ran = false;
  Timer dropped = queue_->after(0.001, [&ran] { ran = true; });
  dropped.reset();
  int ticks = 0;
  Timer own;
  const auto held = std::make_shared<int>(7);
  own = queue_->every(0.001, [&own, &ticks, held] {
    own.reset();
    ticks += *held;  // what the work holds outlives the drop
  });
  bool later = false;
  const Timer end = queue_->after(0.03, [&later] { later = true; });
  EXPECT_TRUE(runUntil([&later] { return later; }));
  EXPECT_FALSE(ran);
  EXPECT_EQ(ticks, 7);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(QtMainQueueTest, OutlivesItsApplicationWhileItRests) {
  int ticks = 0;
  bool single = false;
  bool submitted = false;
  const Timer repeated = queue_->every(0.01, [&ticks] { ++ticks; });
  const Timer once = queue_->after(0.02, [&single] { single = true; });
  queue_->rest();
  application_.reset();
  queue_->async([&submitted] { submitted = true; });
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  application_ = std::make_unique<QCoreApplication>(argumentCount_, arguments_);
  EXPECT_EQ(ticks, 0);
  queue_->resume();
  EXPECT_TRUE(runUntil([&] { return ticks >= 3 && single && submitted; }));
}

TEST_F(QtMainQueueTest, WorkDoesNotOutliveTheQueue) {
  bool ran = false;
  queue_->async([&ran] { ran = true; });
  const Timer timer = queue_->after(0.001, [&ran] { ran = true; });
  queue_ = std::make_unique<QtMainQueue>();
  bool later = false;
  const Timer end = queue_->after(0.02, [&later] { later = true; });
  EXPECT_TRUE(runUntil([&later] { return later; }));
  EXPECT_FALSE(ran);
}

}  // namespace

}  // namespace plemora
