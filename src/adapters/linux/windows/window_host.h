#pragma once

#include <QQuickWindow>

#include "adapters/linux/windows/panel_host.h"

namespace plemora {

/// A panel as an ordinary window of the toolkit: without a frame, translucent, on top where the
/// desktop lets it be. Where windows cannot place themselves it appears where the desktop puts it.
class WindowHost : public PanelHost {
 public:
  explicit WindowHost(const PanelWindowOptions& options, Qt::WindowFlags extra = {});

  QQuickWindow& window() override { return window_; }
  void setFrame(const Rect& frame) override;
  void show() override;
  void hide() override { window_.hide(); }
  bool isShown() override { return window_.isVisible(); }
  void takeKeys() override { window_.requestActivate(); }
  void setIgnoresMouseEvents(bool ignores) override {
    window_.setFlag(Qt::WindowTransparentForInput, ignores);
  }
  bool isComposited() override { return true; }
  void setOpacity(double opacity) override { window_.setOpacity(opacity); }

 private:
  /// A desktop that asks the window to close presses Escape in it: its owner knows what to do.
  class Window : public QQuickWindow {
   protected:
    void closeEvent(QCloseEvent* event) override;
  };

  Window window_;
  bool isSizeFixed_;  ///< said to the desktop, so that it does not tile the window
};

/// A window for the scene of a panel: translucent, named after the options, not yet shown.
void setUpPanelWindow(QQuickWindow& window, const PanelWindowOptions& options);

}  // namespace plemora
