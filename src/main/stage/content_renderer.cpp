#include "main/stage/content_renderer.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QInputEvent>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <utility>

namespace plemora {

namespace {

void collect(QAccessibleInterface& node, std::vector<ContentRenderer::Control>& found) {
  for (int i = 0; i < node.childCount(); ++i) {
    QAccessibleInterface* child = node.child(i);
    if (child == nullptr) {
      continue;
    }
    const auto* item = qobject_cast<QQuickItem*>(child->object());
    const QString name = child->text(QAccessible::Name);
    // Its state says that nothing is visible in a window that is not shown.
    if (item != nullptr && !name.isEmpty() && item->isVisible() && item->opacity() > 0) {
      ContentRenderer::Control control{name.toStdString(),
                                       item->mapRectToScene(item->boundingRect()), std::nullopt};
      if (QAccessibleValueInterface* value = child->valueInterface()) {
        control.value = value->currentValue().toDouble();
        // Its values lie between the places that the middle of its knob can take.
        const double inset = item->property("knob").toSizeF().width() / 2;
        if (inset > 0) {
          control.place.adjust(inset, 0, -inset, 0);
        }
      }
      found.push_back(std::move(control));
    }
    collect(*child, found);
  }
}

}  // namespace

ContentRenderer::ContentRenderer(std::function<void()> changed)
    : changed_(std::move(changed)),
      // Not initialised: that would ask for a graphics device, which drawing in software has not.
      control_(std::make_unique<QQuickRenderControl>()),
      window_(std::make_unique<QQuickWindow>(control_.get())) {
  window_->setColor(Qt::transparent);
  QObject::connect(control_.get(), &QQuickRenderControl::renderRequested, window_.get(),
                   [this] { change(); });
  QObject::connect(control_.get(), &QQuickRenderControl::sceneChanged, window_.get(),
                   [this] { change(); });
}

ContentRenderer::~ContentRenderer() {
  control_->disconnect(window_.get());
  setItem(nullptr);
  control_.reset();  // gives back what the scene holds, so the window must still be there
}

void ContentRenderer::change() {
  if (!std::exchange(isStale_, true)) {
    changed_();
  }
}

void ContentRenderer::setItem(QQuickItem* item) {
  if (item == item_) {
    return;
  }
  if (item_ != nullptr) {
    item_->setParentItem(nullptr);
  }
  item_ = item;
  if (item_ != nullptr) {
    item_->setParentItem(window_->contentItem());
    item_->setSize(window_->contentItem()->size());
  }
  change();
}

void ContentRenderer::setSize(QSize points, double scale) {
  const QSize pixels = (QSizeF(points) * scale).toSize();
  if (pixels.isEmpty() || (picture_.size() == pixels && scale_ == scale)) {
    return;
  }
  scale_ = scale;
  picture_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  picture_.fill(Qt::transparent);
  window_->setGeometry(QRect({0, 0}, points));
  window_->contentItem()->setSize(points);
  if (item_ != nullptr) {
    item_->setSize(points);
  }
  picture_.setDevicePixelRatio(scale);
  auto target = QQuickRenderTarget::fromPaintDevice(&picture_);
  target.setDevicePixelRatio(scale);
  window_->setRenderTarget(target);
  change();
}

void ContentRenderer::layOut() {
  control_->polishItems();
}

const QImage& ContentRenderer::render() {
  if (!isStale_ || picture_.isNull()) {
    return picture_;
  }
  control_->polishItems();
  control_->sync();
  // What changes from here on shows in the next picture.
  isStale_ = false;
  control_->render();
  return picture_;
}

std::vector<ContentRenderer::Control> ContentRenderer::controls() const {
  std::vector<Control> found;
  if (QAccessibleInterface* root = QAccessible::queryAccessibleInterface(window_.get())) {
    collect(*root, found);
  }
  return found;
}

bool ContentRenderer::send(QInputEvent& event) {
  const bool isKey = event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease;
  if (isKey && isFocused_ && item_ != nullptr && window_->activeFocusItem() == nullptr) {
    return sendToFocus(event);
  }
  event.setAccepted(false);
  QCoreApplication::sendEvent(window_.get(), &event);
  return event.isAccepted();
}

/// The toolkit gives no scene the focus while another window of the process has it, as the one has
/// that shows the stage. The key then goes where the focus would be.
bool ContentRenderer::sendToFocus(QInputEvent& event) {
  QQuickItem* item = item_;
  while (item->isFocusScope() && item->scopedFocusItem() != nullptr) {
    item = item->scopedFocusItem();
  }
  for (; item != nullptr; item = item->parentItem()) {
    event.accept();
    QCoreApplication::sendEvent(item, &event);
    if (event.isAccepted()) {
      return true;
    }
  }
  return false;
}

void ContentRenderer::leave() {
  QEvent event(QEvent::Leave);
  QCoreApplication::sendEvent(window_.get(), &event);
}

void ContentRenderer::setFocused(bool isFocused) {
  isFocused_ = isFocused;
  if (isFocused && item_ != nullptr) {
    item_->setFocus(true, Qt::ActiveWindowFocusReason);
  }
  QFocusEvent event(isFocused ? QEvent::FocusIn : QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QCoreApplication::sendEvent(window_.get(), &event);
}

}  // namespace plemora
