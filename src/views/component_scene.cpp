#include "views/component_scene.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <string>
#include <utility>

#include "base/log.h"
#include "views/focus_watch.h"
#include "views/image_providers.h"
#include "views/view_binding.h"

// Made by Qt's tools beside the sources: the components' types, and their compiled form.
extern void qml_register_types_Plemora();

namespace plemora {

namespace {

constexpr Logger logger("views");

}  // namespace

/// What is made at the first use.
class ComponentScene::Parts : public QObject {
 public:
  Parts(const char* name, ViewBinding& binding, std::function<void()> resized)
      : resized_(std::move(resized)),
        focus_([&binding](bool showsFocus) { binding.setShowsFocus(showsFocus); }) {
    qml_register_types_Plemora();
    engine_.addImportPath("qrc:/qt/qml");
    engine_.addImageProvider("symbol", new SymbolProvider);    // the engine owns it
    engine_.addImageProvider("appicon", new AppIconProvider);  // the engine owns it
    QQmlComponent component(&engine_, QUrl(QString("qrc:/qt/qml/Plemora/%1.qml").arg(name)));
    std::unique_ptr<QObject> root;
    if (!component.isError()) {
      root.reset(component.createWithInitialProperties({{"page", QVariant::fromValue(&binding)}}));
    }
    item_.reset(qobject_cast<QQuickItem*>(root.get()));
    if (item_ == nullptr) {
      logger.error("A window cannot be shown, since its view " + std::string(name) +
                   " does not load; reinstall the program. " +
                   component.errorString().simplified().toStdString());
      return;
    }
    root.release();
    focus_.watch(*item_);
    connect(item_.get(), &QQuickItem::implicitHeightChanged, this, [this] { tellLater(); });
  }

  QQuickItem* item() { return item_.get(); }

 private:
  /// A height changes in several steps while a page is taken over.
  void tellLater() {
    if (!std::exchange(isTelling_, true)) {
      QMetaObject::invokeMethod(
          this,
          [this] {
            isTelling_ = false;
            resized_();
          },
          Qt::QueuedConnection);
    }
  }

  std::function<void()> resized_;
  bool isTelling_ = false;
  FocusWatch focus_;
  QQmlEngine engine_;
  std::unique_ptr<QQuickItem> item_;  // goes before the engine
};

ComponentScene::ComponentScene(const char* component, std::unique_ptr<ViewBinding> binding)
    : component_(component), binding_(std::move(binding)) {}

ComponentScene::~ComponentScene() = default;

QQuickItem* ComponentScene::item() {
  if (parts_ == nullptr) {
    parts_ = std::make_unique<Parts>(component_, *binding_, [this] {
      if (heightHandler_) {
        heightHandler_(fittingHeight());
      }
    });
  }
  return parts_->item();
}

double ComponentScene::fittingHeight() {
  return item() == nullptr ? 0 : item()->implicitHeight();
}

double ComponentScene::fittingWidth() {
  return item() == nullptr ? 0 : item()->implicitWidth();
}

void ComponentScene::setHeightHandler(std::function<void(double height)> handler) {
  heightHandler_ = std::move(handler);
}

void ComponentScene::setVisible(bool isVisible) {
  binding_->setVisible(isVisible);
}

}  // namespace plemora
