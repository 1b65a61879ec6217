#include "views/glass_item.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <cstring>

#include "glass/raster.h"

namespace plemora {

GlassItem::GlassItem(QQuickItem* parent) : QQuickItem(parent) {
  setFlag(ItemHasContents);
}

void GlassItem::setRaster(const Raster& raster) {
  if (raster.isEmpty()) {
    image_ = QImage();
  } else {
    // A picture of its own: the scene may still be painting the one before.
    image_ = QImage(raster.width(), raster.height(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < raster.height(); ++y) {
      std::memcpy(image_.scanLine(y), raster.row(y), raster.bytesPerLine());
    }
  }
  isImageNew_ = true;
  update();
}

QSGNode* GlassItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
  auto* node = static_cast<QSGImageNode*>(old);
  if (image_.isNull() || width() <= 0 || height() <= 0) {
    delete node;
    isImageNew_ = true;
    return nullptr;
  }
  if (node == nullptr) {
    node = window()->createImageNode();
    node->setOwnsTexture(true);
    isImageNew_ = true;
  }
  if (isImageNew_) {
    node->setTexture(window()->createTextureFromImage(image_));
    isImageNew_ = false;
  }
  node->setRect(boundingRect());
  return node;
}

}  // namespace plemora
