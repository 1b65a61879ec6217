#include "main/stage/stage_loop.h"

#include <QAbstractEventDispatcher>
#include <algorithm>
#include <cmath>
#include <utility>

namespace plemora {

namespace {

constexpr double frameTime = 1000.0 / 60;  // milliseconds
/// What is made up for at most after a pause, in seconds: a suspended computer is not run after.
constexpr double longestStep = 0.5;
constexpr double longestSleep = 60;  // seconds

}  // namespace

StageLoop::StageLoop(StageDesktop& desktop, StageShow& show, double speed,
                     std::function<void()> refresh)
    : desktop_(desktop), show_(show), speed_(speed), refresh_(std::move(refresh)) {
  sinceCaughtUp_.start();
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&wake_, &QTimer::timeout, this, [this] { catchUp(); });
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          [this] { rest(); });
}

void StageLoop::catchUp() {
  const double passed = static_cast<double>(sinceCaughtUp_.nsecsElapsed()) / 1e9;
  sinceCaughtUp_.restart();
  desktop_.advance(std::min(passed * speed_, longestStep));
  show_.tick();
}

void StageLoop::rest() {
  if (std::exchange(isBusy_, true)) {
    return;
  }
  show_.tick();
  desktop_.settle();
  double sleep = longestSleep * 1000;
  if (!sinceFrame_.isValid() || static_cast<double>(sinceFrame_.elapsed()) >= frameTime - 1) {
    sinceFrame_.start();
    refresh_();
  } else {
    sleep = frameTime - static_cast<double>(sinceFrame_.elapsed());
  }
  if (const auto next = desktop_.mainQueue.nextTimer()) {
    sleep = std::min(sleep, std::max(0.0, *next - desktop_.clock.mediaTime()) * 1000 / speed_);
  }
  if (show_.hasOwnTime()) {
    sleep = std::min(sleep, frameTime);
  }
  wake_.start(static_cast<int>(std::ceil(sleep)));
  isBusy_ = false;
}

}  // namespace plemora
