#pragma once

#include <QQuickWindow>
#include <functional>

#include "adapters/linux/windows/panel_host.h"

namespace plemora {

/// An ordinary window with the desktop's own frame: of a fixed size, opaque, never minimised, and
/// moved by whatever in it takes no press. Its frame is that of the content. Main thread.
class TitledHost : public PanelHost {
 public:
  /// moved: the user, or the desktop, has put it elsewhere; global points.
  TitledHost(const TitledWindowOptions& options, std::function<void(const Rect& frame)> moved);

  QQuickWindow& window() override { return window_; }
  void setFrame(const Rect& frame) override;
  void show() override;
  void hide() override { window_.hide(); }
  bool isShown() override { return window_.isVisible(); }
  void takeKeys() override { window_.requestActivate(); }
  bool isComposited() override { return true; }
  void setIgnoresMouseEvents(bool) override {}
  void setOpacity(double opacity) override { window_.setOpacity(opacity); }

 private:
  class Window : public QQuickWindow {
   public:
    std::function<void()> willClose;
    bool isMovedByBackground = false;

   protected:
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
  };

  void report();

  std::function<void(const Rect&)> moved_;
  Window window_;
};

}  // namespace plemora
