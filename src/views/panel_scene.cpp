#include "views/panel_scene.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <utility>

#include "base/log.h"
#include "views/focus_watch.h"
#include "views/image_providers.h"
#include "views/panel_binding.h"

// Made by Qt's tools beside the sources: the components' types, and their compiled form.
extern void qml_register_types_Plemora();

namespace plemora {

namespace {

constexpr Logger logger("views");

}  // namespace

/// What is made at the first use. The components are read by a thread of the engine's meanwhile, so
/// that whoever shows the scene can see to the window.
class PanelScene::Parts {
 public:
  Parts(PanelView& view, const ControlCenterLook& look)
      : panel(view, look), focus_([this](bool showsFocus) { panel.setShowsFocus(showsFocus); }) {
    qml_register_types_Plemora();
    engine_.addImportPath("qrc:/qt/qml");
    engine_.addImageProvider("symbol", new SymbolProvider);    // the engine owns it
    engine_.addImageProvider("appicon", new AppIconProvider);  // the engine owns it
    ahead_ = std::make_unique<QQmlComponent>(&engine_, url(), QQmlComponent::Asynchronous);
  }

  /// Null: it could not be made.
  QQuickItem* item() {
    if (ahead_ != nullptr) {
      makeItem();
      ahead_.reset();
    }
    return item_.get();
  }

  PanelBinding panel;

 private:
  static QUrl url() { return QUrl("qrc:/qt/qml/Plemora/HostedPanel.qml"); }

  void makeItem() {
    QQmlComponent component(&engine_, url());  // waits for the one that is on its way
    if (component.isError()) {
      logger.error(
          "The panel cannot be shown, since its views do not load; reinstall the program. " +
          component.errorString().simplified().toStdString());
      return;
    }
    std::unique_ptr<QObject> root(
        component.createWithInitialProperties({{"panel", QVariant::fromValue(&panel)}}));
    item_.reset(qobject_cast<QQuickItem*>(root.get()));
    if (item_ == nullptr) {
      return;
    }
    root.release();
    focus_.watch(*item_);
  }

  FocusWatch focus_;
  QQmlEngine engine_;
  std::unique_ptr<QQmlComponent> ahead_;  // until there is an item
  std::unique_ptr<QQuickItem> item_;      // goes before the engine
};

PanelScene::PanelScene(PanelView& view, const ControlCenterLook& look) : view_(view), look_(look) {}

PanelScene::~PanelScene() = default;

PanelScene::Parts& PanelScene::parts() {
  if (parts_ == nullptr) {
    parts_ = std::make_unique<Parts>(view_, look_);
    PanelBinding& panel = parts_->panel;
    panel.setScreenMapping(toScreen_);
    panel.setVisible(isVisible_);
    QObject::connect(&panel, &PanelBinding::heightChanged, &panel, [this, &panel] {
      if (heightHandler_) {
        heightHandler_(panel.height());
      }
    });
  }
  return *parts_;
}

double PanelScene::fittingHeight() {
  return parts().panel.height();
}

QQuickItem* PanelScene::item() {
  return parts().item();
}

void PanelScene::setHeightHandler(std::function<void(double)> handler) {
  heightHandler_ = std::move(handler);
}

void PanelScene::setVisible(bool isVisible) {
  isVisible_ = isVisible;
  if (parts_ != nullptr) {
    parts_->panel.setVisible(isVisible);
  }
}

void PanelScene::setScreenMapping(std::function<Rect(const Rect&)> toScreen) {
  toScreen_ = std::move(toScreen);
  if (parts_ != nullptr) {
    parts_->panel.setScreenMapping(toScreen_);
  }
}

}  // namespace plemora
