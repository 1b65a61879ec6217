#include "adapters/linux/desktop/thread_queue.h"

#include <pthread.h>
#include <signal.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace plemora {

namespace {

constexpr std::size_t longestThreadName = 15;

/// The longest end of the label that starts after a dot and fits, such as "mixer.taps".
std::string threadName(const std::string& label) {
  std::size_t start = 0;
  while (label.size() - start > longestThreadName) {
    const std::size_t dot = label.find('.', start);
    if (dot == std::string::npos) {
      return label.substr(start, longestThreadName);
    }
    start = dot + 1;
  }
  return label.substr(start);
}

class ThreadQueue : public SerialQueue {
 public:
  explicit ThreadQueue(const std::string& label) : work_(std::make_shared<Work>()) {
    work_->name = threadName(label);
  }

  ~ThreadQueue() override {
    {
      const std::lock_guard lock(work_->mutex);
      work_->ending = true;
    }
    work_->changed.notify_one();
    if (!thread_.joinable()) {
      return;
    }
    // The last owner may let go in a piece of work: that thread cannot wait for itself. It still
    // finishes what is left, on state that it shares.
    if (thread_.get_id() == std::this_thread::get_id()) {
      thread_.detach();
    } else {
      thread_.join();
    }
  }

  void async(std::function<void()> work) override {
    const std::lock_guard lock(work_->mutex);
    work_->pieces.push_back(std::move(work));
    if (thread_.joinable()) {
      work_->changed.notify_one();
    } else {
      start();
    }
  }

 private:
  struct Work {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> pieces;
    bool ending = false;
    std::string name;
  };

  void start() {
    // Signals belong to the main thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([work = work_] { run(*work); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  static void run(Work& work) {
    pthread_setname_np(pthread_self(), work.name.c_str());
    std::unique_lock lock(work.mutex);
    while (true) {
      work.changed.wait(lock, [&work] { return !work.pieces.empty() || work.ending; });
      if (work.pieces.empty()) {
        return;
      }
      auto piece = std::move(work.pieces.front());
      work.pieces.pop_front();
      lock.unlock();
      piece();
      piece = nullptr;  // what it holds goes on this thread, without the lock
      lock.lock();
    }
  }

  std::shared_ptr<Work> work_;
  std::thread thread_;  // guarded by work_->mutex
};

}  // namespace

std::shared_ptr<SerialQueue> ThreadQueueFactory::makeQueue(const std::string& label) {
  return std::make_shared<ThreadQueue>(label);
}

}  // namespace plemora
