#pragma once

#include <QImage>
#include <QQuickItem>

namespace plemora {

class Raster;

/// Shows a rendered picture, such as the glass behind a panel, over its whole area. The picture is
/// replaced as a whole; nothing is drawn while there is none. Main thread.
class GlassItem : public QQuickItem {
  Q_OBJECT

 public:
  explicit GlassItem(QQuickItem* parent = nullptr);

  /// Copies the picture. It should have as many pixels as the item covers; another size is scaled.
  void setRaster(const Raster& raster);

  const QImage& image() const { return image_; }

 protected:
  QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;

 private:
  QImage image_;
  bool isImageNew_ = false;
};

}  // namespace plemora
