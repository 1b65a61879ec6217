#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QQuickPaintedItem>

namespace plemora {

/// A capsule with smooth edges at any size, in one colour or two from top to bottom, with a soft
/// shadow if wanted. (Rectangles of the software renderer are rounded to whole pixels.) The capsule
/// fills the item but for the shadow's room on every side. Main thread.
class CapsuleItem : public QQuickPaintedItem {
  Q_OBJECT
  QML_NAMED_ELEMENT(Capsule)
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
  Q_PROPERTY(QColor bottomColor READ bottomColor WRITE setBottomColor NOTIFY changed)
  Q_PROPERTY(double shadow READ shadow WRITE setShadow NOTIFY changed)

 public:
  explicit CapsuleItem(QQuickItem* parent = nullptr);

  QColor color() const { return color_; }
  void setColor(const QColor& color);
  /// The same as the colour unless it is set.
  QColor bottomColor() const { return bottomColor_.isValid() ? bottomColor_ : color_; }
  void setBottomColor(const QColor& color);
  /// How far the shadow reaches, in points; 0: none.
  double shadow() const { return shadow_; }
  void setShadow(double shadow);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  QColor color_ = Qt::white;
  QColor bottomColor_;
  double shadow_ = 0;
};

}  // namespace plemora
