#pragma once

#include <QAnimationDriver>
#include <QVariantAnimation>

namespace plemora {

/// Lets the animations and timers of QML follow the stage's time instead of the machine's, as long
/// as it exists. They move only in tick(). GUI thread; one at a time.
class SceneClock : public QAnimationDriver {
 public:
  SceneClock();
  ~SceneClock() override;

  /// The stage's time, in seconds since any moment; never back. Animations move on to it.
  void tick(double seconds);

  qint64 elapsed() const override { return elapsed_; }

 private:
  /// Keeps the driver in charge: while nothing but timers ran, Qt would time them by itself.
  QVariantAnimation keeper_;
  qint64 elapsed_ = 0;
  double start_ = -1;
};

}  // namespace plemora
