#pragma once

#include <functional>
#include <memory>

#include "platform/hosted_view.h"
#include "views/quick_view.h"

namespace plemora {

class ViewBinding;

/// A view that is one component of QML, as large as that says. The QML engine is made when the item
/// or its size is first asked for, and not before. In an item that is lower than its content, what
/// can scroll does. Main thread, once there is a QGuiApplication; windows that show it use the
/// software renderer.
class ComponentScene : public HostedView, public QuickView {
 public:
  ~ComponentScene() override;
  ComponentScene(const ComponentScene&) = delete;
  ComponentScene& operator=(const ComponentScene&) = delete;

  double fittingHeight() override;
  double fittingWidth() override;
  void setHeightHandler(std::function<void(double height)> handler) override;
  void setVisible(bool isVisible) override;

  QQuickItem* item() override;

  /// Whether the engine has been made.
  bool isBuilt() const { return parts_ != nullptr; }

 protected:
  /// The component (its name without ".qml") finds the binding as its property "page".
  ComponentScene(const char* component, std::unique_ptr<ViewBinding> binding);

  ViewBinding& binding() { return *binding_; }

 private:
  class Parts;

  const char* component_;
  std::unique_ptr<ViewBinding> binding_;
  std::unique_ptr<Parts> parts_;  // goes before the binding
  std::function<void(double)> heightHandler_;
};

}  // namespace plemora
