#pragma once

#include <QQuickItem>
#include <QWindow>
#include <functional>
#include <memory>

#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "adapters/linux/windows/linux_panels.h"
#include "glass/raster.h"
#include "platform/hosted_view.h"
#include "views/glass_item.h"
#include "views/quick_view.h"
#include "windows/x_display.h"

namespace plemora {

/// A view with an opaque square in its middle and two places for the keys.
class TestView : public HostedView, public QuickView {
 public:
  static constexpr unsigned color = 0xff2040;

  double fittingHeight() override { return 0; }
  void setHeightHandler(std::function<void(double)>) override {}
  void setVisible(bool) override {}

  QQuickItem* item() override {
    if (!item_) {
      item_ = std::make_unique<QQuickItem>();
      item_->setFlag(QQuickItem::ItemIsFocusScope);
      for (auto*& place : places) {
        auto* square = new GlassItem(item_.get());
        Raster raster(20, 20);
        raster.fill(0xff000000U | color);
        square->setRaster(raster);
        square->setSize({20, 20});
        square->setActiveFocusOnTab(true);
        place = square;
      }
      places[0]->setFocus(true);
      places[0]->setPosition({140, 100});
      places[1]->setPosition({140, 140});
    }
    return item_.get();
  }
  bool isBuilt() const { return item_ != nullptr; }

  QQuickItem* places[2] = {};

 private:
  std::unique_ptr<QQuickItem> item_;
};

/// The desktop on a display, and a panel on it like the mixer's.
class TestDesktop {
 public:
  explicit TestDesktop(const DisplaySetup& setup) : display(setup) {
    options.identifier = "panel";
    options.title = "Plemora";
    options.level = popUpMenuWindowLevel;
  }

  std::unique_ptr<PanelWindow> makePanel(const Rect& frame) {
    auto panel = panels.makePanel(options);
    panel->surface().setContent(view);
    panel->setFrame(frame);
    return panel;
  }

  /// The X window of the panel; none before it is shown.
  static xcb_window_t idOf(const std::string& identifier = "panel") {
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
      if (window->objectName().toStdString() == identifier && window->handle() != nullptr) {
        return static_cast<xcb_window_t>(window->winId());
      }
    }
    return XCB_WINDOW_NONE;
  }

  XDisplay display;
  XApplication application;
  QtMainQueue queue;
  LinuxDesktop desktop;
  LinuxPanels panels{desktop, queue};
  PanelWindowOptions options;
  std::shared_ptr<TestView> view = std::make_shared<TestView>();
};

}  // namespace plemora
