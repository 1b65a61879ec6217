#include "views/module_scene.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

#include "base/log.h"
#include "views/image_providers.h"
#include "views/module_binding.h"

// Made by Qt's tools beside the sources: the components' types, and their compiled form.
extern void qml_register_types_Plemora();

namespace plemora {

namespace {

constexpr Logger logger("views");

}  // namespace

/// What is made at the first use.
class ModuleScene::Parts {
 public:
  Parts(SkinState& state, const ControlCenterLook& look, Appearance& appearance)
      : binding_(state, look, appearance) {
    qml_register_types_Plemora();
    engine_.addImportPath("qrc:/qt/qml");
    engine_.addImageProvider("symbol", new SymbolProvider);  // the engine owns it
    QQmlComponent component(&engine_, QUrl("qrc:/qt/qml/Plemora/ModuleView.qml"));
    std::unique_ptr<QObject> root(
        component.createWithInitialProperties({{"module", QVariant::fromValue(&binding_)}}));
    if (component.isError()) {
      logger.error(
          "The module cannot be shown, since its views do not load; reinstall the program. " +
          component.errorString().simplified().toStdString());
      return;
    }
    item_.reset(qobject_cast<QQuickItem*>(root.get()));
    if (item_ != nullptr) {
      root.release();
    }
  }

  QQuickItem* item() { return item_.get(); }

 private:
  ModuleBinding binding_;
  QQmlEngine engine_;
  std::unique_ptr<QQuickItem> item_;  // goes before the engine
};

ModuleScene::ModuleScene(SkinState& state, const ControlCenterLook& look, Appearance& appearance)
    : state_(state), look_(look), appearance_(appearance) {}

ModuleScene::~ModuleScene() = default;

QQuickItem* ModuleScene::item() {
  if (parts_ == nullptr) {
    parts_ = std::make_unique<Parts>(state_, look_, appearance_);
    setVisible(isVisible_);
  }
  return parts_->item();
}

void ModuleScene::setVisible(bool isVisible) {
  isVisible_ = isVisible;
  if (parts_ != nullptr && parts_->item() != nullptr) {
    parts_->item()->setVisible(isVisible);
  }
}

}  // namespace plemora
