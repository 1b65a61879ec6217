#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QQuickPaintedItem>

namespace plemora {

/// A rounded rectangle with smooth edges: a ground in one colour or two from top to bottom, a
/// border inside it, and a soft shadow if wanted. It fills the item but for the shadow's room on
/// every side. Main thread.
class PlateItem : public QQuickPaintedItem {
  Q_OBJECT
  QML_NAMED_ELEMENT(Plate)
  Q_PROPERTY(double radius MEMBER radius_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  Q_PROPERTY(QColor bottomColor MEMBER bottomColor_ NOTIFY changed)
  Q_PROPERTY(QColor borderColor MEMBER borderColor_ NOTIFY changed)
  Q_PROPERTY(double borderWidth MEMBER borderWidth_ NOTIFY changed)
  Q_PROPERTY(bool isDashed MEMBER isDashed_ NOTIFY changed)
  Q_PROPERTY(double shadow MEMBER shadow_ NOTIFY changed)
  Q_PROPERTY(double shadowStrength MEMBER shadowStrength_ NOTIFY changed)

 public:
  explicit PlateItem(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  double radius_ = 0;
  QColor color_ = Qt::transparent;
  QColor bottomColor_;  // not valid: the same
  QColor borderColor_;
  double borderWidth_ = 0;  // points
  bool isDashed_ = false;
  double shadow_ = 0;  // points that it reaches
  double shadowStrength_ = 0.2;
};

}  // namespace plemora
