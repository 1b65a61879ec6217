#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace plemora {

/// One of the drawings of setup, fitted into the item. What moves in it follows the phase, which
/// goes around from 0 to 1; at 0 it shows what is to be seen in a still. An unknown name draws
/// nothing. Main thread.
class FigureItem : public QQuickPaintedItem {
  Q_OBJECT
  QML_NAMED_ELEMENT(Figure)
  Q_PROPERTY(QString name MEMBER name_ NOTIFY changed)
  Q_PROPERTY(double phase MEMBER phase_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)

 public:
  explicit FigureItem(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  QString name_;
  double phase_ = 0;
  QColor color_ = Qt::white;  // of those that have no colours of their own
};

}  // namespace plemora
