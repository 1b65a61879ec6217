#pragma once

#include <QRasterWindow>
#include <functional>

#include "adapters/stage/desktop/stage_desktop.h"
#include "main/stage/stage_show.h"

namespace plemora {

/// The window of the real desktop that shows the stage's main screen, scaled to fit, and takes
/// pointer and keys to it. GUI thread.
class StageScreenWindow : public QRasterWindow {
 public:
  /// Both outlive the window. catchUp is called before each act of the user, for the stage's time
  /// to be that of the act.
  StageScreenWindow(StageDesktop& desktop, StageShow& show, std::function<void()> catchUp);

  /// Has painted what has changed on the stage.
  void refresh();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  const Screen* screen() const;
  /// Where the picture is in the window, in points of the window.
  QRectF place() const;
  Point onStage(const QPointF& position) const;

  StageDesktop& desktop_;
  StageShow& show_;
  std::function<void()> catchUp_;
  double turned_ = 0;  ///< of the wheel, less than a notch
};

}  // namespace plemora
