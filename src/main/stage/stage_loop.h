#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>

#include "adapters/stage/desktop/stage_desktop.h"
#include "main/stage/stage_show.h"

namespace plemora {

/// Lets real time pass on the stage while the application's event loop runs. Between two things
/// that happen on the stage, and while nobody touches it, it sleeps. GUI thread.
class StageLoop : public QObject {
 public:
  /// Both outlive the loop. speed: seconds of the stage in one of the real world. refresh is called
  /// after what may have changed the picture, 60 times a second at most.
  StageLoop(StageDesktop& desktop, StageShow& show, double speed, std::function<void()> refresh);

  /// Brings the stage's time up to the real one.
  void catchUp();

 private:
  /// Before the event loop sleeps: whatever has run, the stage's own queues are run then too.
  void rest();

  StageDesktop& desktop_;
  StageShow& show_;
  double speed_;
  std::function<void()> refresh_;
  QElapsedTimer sinceCaughtUp_;
  QElapsedTimer sinceFrame_;
  QTimer wake_;
  bool isBusy_ = false;
};

}  // namespace plemora
