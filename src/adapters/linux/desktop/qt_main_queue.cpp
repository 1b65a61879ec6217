#include "adapters/linux/desktop/qt_main_queue.h"

#include <QObject>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace plemora {

/// Lives on the main thread; its end takes all work that is queued on it along.
class QtMainQueue::Receiver : public QObject {};

namespace {

constexpr double coarseFrom = 1.0;  // seconds

}  // namespace

class QtMainQueue::Work : public ScheduledWork {
 public:
  Work(std::shared_ptr<std::set<Work*>> all, QObject& receiver, double seconds, bool repeats,
       std::function<void()> work)
      : all_(std::move(all)) {
    all_->insert(this);
    // Rounded up: never early.
    const double milliseconds = std::ceil(std::max(0.0, seconds) * 1000 - 1e-6);
    timer_.setInterval(static_cast<int>(
        std::min(milliseconds, static_cast<double>(std::numeric_limits<int>::max()))));
    timer_.setTimerType(seconds < coarseFrom ? Qt::PreciseTimer : Qt::CoarseTimer);
    timer_.setSingleShot(!repeats);
    // A copy: the work may drop this very object, and the original with it.
    const auto shared = std::make_shared<std::function<void()>>(std::move(work));
    QObject::connect(&timer_, &QTimer::timeout, &receiver, [shared] {
      const auto kept = shared;
      (*kept)();
    });
    timer_.start();
  }
  ~Work() override { all_->erase(this); }

  void rest() {
    left_ = timer_.isActive() ? timer_.remainingTimeAsDuration() : std::chrono::milliseconds(-1);
    timer_.stop();
  }
  // The loop that the timer comes back to need not be the one that it was started in.
  void resume() {
    if (left_.count() < 0) {
      return;
    }
    if (timer_.isSingleShot()) {
      timer_.setInterval(left_);
    }
    timer_.start();
  }

 private:
  std::shared_ptr<std::set<Work*>> all_;
  QTimer timer_;
  std::chrono::milliseconds left_{-1};
};

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<Receiver>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::async(std::function<void()> work) {
  QMetaObject::invokeMethod(receiver_.get(), std::move(work), Qt::QueuedConnection);
}

void QtMainQueue::rest() {
  for (Work* work : *scheduled_) {
    work->rest();
  }
}

void QtMainQueue::resume() {
  for (Work* work : *scheduled_) {
    work->resume();
  }
}

Timer QtMainQueue::after(double seconds, std::function<void()> work) {
  return std::make_unique<Work>(scheduled_, *receiver_, seconds, false, std::move(work));
}

Timer QtMainQueue::every(double seconds, std::function<void()> work) {
  return std::make_unique<Work>(scheduled_, *receiver_, seconds, true, std::move(work));
}

}  // namespace plemora
