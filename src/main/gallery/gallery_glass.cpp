#include "main/gallery/gallery_glass.h"

#include <QCoreApplication>
#include <QPainter>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <cstring>
#include <memory>

#include "glass/glass_view.h"
#include "menubar/status_item_controller.h"
#include "skin/look/glass_style.h"
#include "skin/look/rim_layer.h"
#include "views/glass_item.h"

namespace plemora {

namespace {

/// The panel's surface without a window: only its glass counts.
class GlassSurface : public PanelSurface {
 public:
  explicit GlassSurface(GlassView& glass) : glass_(glass) {}

  void clearBackground() override { glass_.clearBackground(); }
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override {
    return glass_.showEffect(description);
  }
  std::shared_ptr<SystemGlassView> showSystemGlass() override { return glass_.showSystemGlass(); }
  std::shared_ptr<EffectView> addEffect(const EffectDescription& description) override {
    return glass_.addEffect(description);
  }
  void setContainer(const Rect& frame, double cornerRadius) override {
    glass_.setContainer(frame, cornerRadius);
  }
  void setContent(std::shared_ptr<HostedView>) override {}
  void setContents(std::vector<HostedContent>) override {}
  void setLayer(std::shared_ptr<Layer> layer) override { glass_.setLayer(std::move(layer)); }
  bool isFlipped() override { return true; }

 private:
  GlassView& glass_;
};

BackdropImage backdrop(const QImage& desktop, double scale) {
  BackdropImage image{desktop.width(), desktop.height(), scale, {}};
  const QImage pixels = desktop.convertToFormat(QImage::Format_RGB32);
  image.pixels.resize(static_cast<std::size_t>(image.width) *
                      static_cast<std::size_t>(image.height));
  for (int y = 0; y < image.height; ++y) {
    std::memcpy(image.pixels.data() + static_cast<std::size_t>(y) * image.width,
                pixels.constScanLine(y), static_cast<std::size_t>(image.width) * 4);
  }
  return image;
}

}  // namespace

QImage renderItems(const std::vector<QQuickItem*>& items, QSize points, double scale) {
  QImage image(points * scale, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  image.setDevicePixelRatio(scale);
  QQuickRenderControl control;
  QQuickWindow window(&control);
  window.setColor(Qt::transparent);
  window.setGeometry(QRect({0, 0}, points));
  window.contentItem()->setSize(QSizeF(points));
  QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&image);
  target.setDevicePixelRatio(scale);
  window.setRenderTarget(target);
  for (QQuickItem* item : items) {
    item->setParentItem(window.contentItem());
  }
  // Items that are made while others are laid out are laid out in the next turn.
  for (int turn = 0; turn < 3; ++turn) {
    QCoreApplication::processEvents();
    control.polishItems();
  }
  control.beginFrame();
  control.sync();
  control.render();
  control.endFrame();
  for (QQuickItem* item : items) {
    item->setParentItem(nullptr);
  }
  image.setDevicePixelRatio(1);
  return image;
}

void drawOnGlass(QImage& desktop, double scale, const GlassPlace& place, QQuickItem& item,
                 ControlCenterLook& look, MainQueue& queue, const std::function<void()>& settle) {
  GlassView glass(queue);
  GlassSurface surface(glass);
  const GlassStyle style(look.style("detailStyle", builtInDetail));
  const auto tuned = GlassStyle::make(place.cornerRadius, nullptr, style, surface, queue);
  const QSizeF points(place.size);
  const Size size{points.width(), points.height()};
  RimLayer rim(StatusItemController::rimTop, StatusItemController::rimRest);
  rim.update(size, place.cornerRadius, true, scale);
  rim.layer()->zPosition = StatusItemController::rimZPosition;
  surface.setLayer(rim.layer());
  glass.setSize(size);
  glass.setScale(scale);
  glass.setDark(true);
  glass.setInWindow(true);
  glass.setBackdropKind(BackdropSource::Kind::pixels);
  glass.setBackdrop(backdrop(desktop, scale),
                    {static_cast<double>(-place.origin.x()), static_cast<double>(-place.origin.y()),
                     desktop.width() / scale, desktop.height() / scale});
  settle();

  GlassItem background;
  background.setSize(points);
  background.setRaster(glass.render());
  item.setSize(points);
  const QImage content = renderItems({&background, &item}, place.size, scale);
  QPainter(&desktop).drawImage(place.origin * scale, content);
}

}  // namespace plemora
