#include "main/stage/scene_clock.h"

#include <QCoreApplication>
#include <cmath>
#include <limits>

namespace plemora {

SceneClock::SceneClock() {
  install();
  keeper_.setStartValue(0);
  keeper_.setEndValue(1);
  keeper_.setDuration(std::numeric_limits<int>::max());
  keeper_.setLoopCount(-1);
  keeper_.start();
  // What starts and stops animations comes by the event loop.
  QCoreApplication::sendPostedEvents();
}

SceneClock::~SceneClock() {
  keeper_.stop();
  QCoreApplication::sendPostedEvents();
  uninstall();
}

void SceneClock::tick(double seconds) {
  if (start_ < 0) {
    start_ = seconds;
  }
  const auto now = static_cast<qint64>(std::llround((seconds - start_) * 1000));
  if (now > elapsed_) {
    elapsed_ = now;
    advance();
  }
}

}  // namespace plemora
