#include "main/gallery/panel_picture.h"

#include <QGuiApplication>
#include <QPainter>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <cmath>
#include <cstring>
#include <memory>

#include "glass/glass_view.h"
#include "menubar/status_item_controller.h"
#include "skin/look/glass_style.h"
#include "skin/look/rim_layer.h"
#include "views/glass_item.h"
#include "views/panel_scene.h"

namespace plemora {

namespace {

constexpr int margin = 44;  // of desktop around the panel
constexpr int gap = 6;      // between the bar and the panel

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

/// Draws items as a window of that size would, without one.
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

}  // namespace

QImage panelPicture(GalleryWorld& world, Wallpaper wallpaper, double scale, double room) {
  PanelScene scene(world.view(), world.look());
  scene.setVisible(true);
  if (scene.item() == nullptr) {
    return {};
  }
  const double fitting = scene.fittingHeight();
  const double height = std::ceil(room > 0 ? std::min(fitting, room) : fitting);
  const QSize panel(308, static_cast<int>(height));
  const QPoint origin(margin, barHeight + gap);
  const QSize desktop(panel.width() + 2 * margin, panel.height() + origin.y() + margin);
  QImage picture = wallpaperImage(wallpaper, desktop, scale);

  GlassView glass(world.mainQueue());
  GlassSurface surface(glass);
  const GlassStyle style(world.look().style("detailStyle", builtInDetail));
  const double cornerRadius = StatusItemController::cornerRadius;
  const auto tuned = GlassStyle::make(cornerRadius, nullptr, style, surface, world.mainQueue());
  const Size size{static_cast<double>(panel.width()), height};
  RimLayer rim(StatusItemController::rimTop, StatusItemController::rimRest);
  rim.update(size, cornerRadius, true, scale);
  rim.layer()->zPosition = StatusItemController::rimZPosition;
  surface.setLayer(rim.layer());
  glass.setSize(size);
  glass.setScale(scale);
  glass.setDark(true);
  glass.setInWindow(true);
  glass.setBackdropKind(BackdropSource::Kind::pixels);
  glass.setBackdrop(backdrop(picture, scale),
                    {static_cast<double>(-origin.x()), static_cast<double>(-origin.y()),
                     static_cast<double>(desktop.width()), static_cast<double>(desktop.height())});
  world.settle();

  GlassItem background;
  background.setSize(QSizeF(panel));
  background.setRaster(glass.render());
  scene.item()->setSize(QSizeF(panel));
  const QImage content = renderItems({&background, scene.item()}, panel, scale);
  QPainter(&picture).drawImage(origin * scale, content);
  return picture;
}

}  // namespace plemora
