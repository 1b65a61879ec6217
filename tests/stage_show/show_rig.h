#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_preferences.h"
#include "main/stage/stage_show.h"
#include "views/qt_warnings.h"
#include "views/quick_view.h"

namespace plemora {

/// A view of a few lines of QML.
class QmlView : public HostedView, public QuickView {
 public:
  explicit QmlView(const QByteArray& text) {
    QQmlComponent component(&engine_);
    component.setData("import QtQuick\n" + text, {});
    EXPECT_FALSE(component.isError()) << component.errorString().toStdString();
    item_.reset(qobject_cast<QQuickItem*>(component.create()));
  }

  QQuickItem* item() override { return item_.get(); }
  double fittingHeight() override { return item_->height(); }
  void setHeightHandler(std::function<void(double)>) override {}
  void setVisible(bool) override {}

 private:
  QQmlEngine engine_;
  std::unique_ptr<QQuickItem> item_;
};

/// A desktop of one screen of 1280 x 800 points with nothing on it but the system's own, drawn.
/// Warnings of Qt fail the test.
struct StageShowTest : testing::Test {
  static constexpr int screen = 1;

  std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>();
  MemoryPreferences ours{store};
  MemoryPreferences systems{store};
  bool isStored = storeFreshLayout(systems);
  StageDesktop desktop{{ours, systems}};
  StageShow show{desktop, StageShow::Time::virtualTime};

  StageShowTest() {
    desktop.screens.set({StageDesktop::makeScreen(screen, {0, 0, 1280, 800}, 1, true)});
    show.setShowsPointer(false);
    show.setWallpaper(StageWallpaper::plain);
    show.settle();
  }

  void SetUp() override { QtWarnings::take(); }
  void TearDown() override { EXPECT_EQ(QtWarnings::take(), std::vector<std::string>{}); }

  /// A window of the program that shows a view, if one is given.
  std::unique_ptr<PanelWindow> makeWindow(const Rect& frame, const QByteArray& qml = {},
                                          PanelWindowOptions options = {}) {
    options.identifier = "test";
    auto window = show.windows().makePanel(options);
    window->setFrame(frame);
    if (!qml.isEmpty()) {
      window->surface().setContent(
          std::make_shared<StageContent>(std::make_shared<QmlView>(qml), desktop.clock));
    }
    window->order(WindowOrder::front);
    return window;
  }

  /// Of the picture, at a global place (y up).
  QColor colorAt(const Point& place) {
    const QImage picture = show.picture(screen);
    return picture.pixelColor(static_cast<int>(place.x),
                              static_cast<int>(picture.height() - place.y));
  }
};

}  // namespace plemora
