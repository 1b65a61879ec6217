#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QString>

#include "menubar/control_slider.h"

namespace plemora {

/// A ControlSlider for QML: its state as properties; gestures, wheel and keys as calls. The model's
/// value comes in through boundValue; what the user does shows at once and goes out through
/// moved(). Main thread.
class SliderBinding : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double boundValue READ value WRITE setBoundValue NOTIFY valueChanged)
  Q_PROPERTY(double value READ value NOTIFY valueChanged)
  Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY changed)
  Q_PROPERTY(bool isDimmed READ isDimmed WRITE setDimmed NOTIFY changed)
  Q_PROPERTY(bool isDark READ isDark WRITE setDark NOTIFY changed)
  Q_PROPERTY(bool isPointedAt READ isHovering WRITE setPointedAt NOTIFY changed)
  Q_PROPERTY(bool isHovering READ isHovering NOTIFY changed)
  Q_PROPERTY(bool isDragging READ isDragging NOTIFY changed)
  Q_PROPERTY(QSizeF knob READ knob WRITE setKnob NOTIFY geometryChanged)
  Q_PROPERTY(double width READ width WRITE setWidth NOTIFY geometryChanged)
  Q_PROPERTY(double knobOffset READ knobOffset NOTIFY geometryChanged)
  Q_PROPERTY(double opacity READ opacity NOTIFY changed)
  Q_PROPERTY(QColor fillColor READ fillColor NOTIFY changed)
  Q_PROPERTY(QString label READ label CONSTANT)
  Q_PROPERTY(QString valueText READ valueText NOTIFY valueChanged)
  Q_PROPERTY(double step READ step CONSTANT)

 public:
  explicit SliderBinding(QObject* parent = nullptr);

  double value() const { return static_cast<double>(slider_.value); }
  void setBoundValue(double value);
  bool isEnabled() const { return slider_.isEnabled; }
  void setEnabled(bool isEnabled);
  bool isDimmed() const { return slider_.isDimmed; }
  void setDimmed(bool isDimmed);
  bool isDark() const { return isDark_; }
  void setDark(bool isDark);
  bool isHovering() const { return slider_.isHovering(); }
  void setPointedAt(bool isPointedAt);
  bool isDragging() const { return slider_.isDragging(); }
  QSizeF knob() const { return {slider_.knob.width, slider_.knob.height}; }
  void setKnob(const QSizeF& knob);
  double width() const { return width_; }
  void setWidth(double width);
  double knobOffset() const { return slider_.knobOffset(width_); }
  double opacity() const { return slider_.opacity(); }
  QColor fillColor() const;
  QString label() const { return ControlSlider::label; }
  QString valueText() const { return QString::fromStdString(slider_.valueText()); }
  double step() const { return static_cast<double>(ControlSlider::step); }

  Q_INVOKABLE void drag(double x) { slider_.drag(x, width_); }
  Q_INVOKABLE void endDrag() { slider_.endDrag(); }
  /// As WheelEvent has it: eighths of a degree, 120 for a notch, and Qt::KeyboardModifiers. Whether
  /// it counted; a disabled slider leaves the wheel to what it lies in.
  Q_INVOKABLE bool turnWheel(const QPointF& angleDelta, int modifiers);
  /// A Qt::Key with modifiers; whether the slider has a use for it.
  Q_INVOKABLE bool pressKey(int key, int modifiers);
  Q_INVOKABLE void increment() { slider_.increment(); }
  Q_INVOKABLE void decrement() { slider_.decrement(); }
  Q_INVOKABLE void assign(double value) { slider_.assign(value); }

 signals:
  void moved(double value);
  void editingChanged(bool isEditing);
  void valueChanged();
  void geometryChanged();
  void changed();

 private:
  ControlSlider slider_;
  double width_ = 0;
  bool isDark_ = true;
};

}  // namespace plemora
