#include "adapters/linux/windows/qt_display_links.h"

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace plemora {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// The part of a frame's time after which the first tick comes: what begins is to be seen soon.
constexpr double firstFrame = 0.25;

class TimerLink : public DisplayLink {
 public:
  TimerLink(double rate, std::function<void()> tick)
      : period_(1000 / rate),
        start_(Clock::now() - std::chrono::duration_cast<Clock::duration>(
                                  Milliseconds((1 - firstFrame) * period_))),
        tick_(std::make_shared<std::function<void()>>(std::move(tick))) {
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
      arm();
      // The tick may drop this link, and itself with it.
      const auto kept = tick_;
      (*kept)();
    });
    arm();
  }

 private:
  using Clock = std::chrono::steady_clock;

  /// To the next whole frame since the start: timers count whole milliseconds, frames do not.
  void arm() {
    const double now = Milliseconds(Clock::now() - start_).count();
    frame_ = std::max(frame_ + 1, std::floor(now / period_) + 1);
    timer_.start(static_cast<int>(std::ceil(std::max(0.0, frame_ * period_ - now))));
  }

  double period_;
  double frame_ = 0;
  Clock::time_point start_;
  std::shared_ptr<std::function<void()>> tick_;
  QTimer timer_;
};

}  // namespace

std::unique_ptr<DisplayLink> QtDisplayLinks::makeLink(int screen, std::function<void()> tick) {
  double rate = 60;
  const auto& screens = screens_.screens().get();
  for (const Screen& candidate : screens) {
    if (candidate.id == screen || &candidate == &screens.front()) {
      rate = candidate.refreshRate;
    }
    if (candidate.id == screen) {
      break;
    }
  }
  return std::make_unique<TimerLink>(rate, std::move(tick));
}

}  // namespace plemora
