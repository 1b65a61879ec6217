#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <vector>

#include "base/published.h"
#include "platform/appearance.h"
#include "skin/look/control_center_look.h"
#include "skin/module_drawing.h"
#include "skin/skin_state.h"

namespace plemora {

/// A symbol for QML: around its middle. An empty name: none.
struct ModuleSymbol {
  Q_GADGET
  Q_PROPERTY(QString name MEMBER name)
  Q_PROPERTY(QPointF center MEMBER center)
  Q_PROPERTY(double size MEMBER size)
  Q_PROPERTY(QColor color MEMBER color)

 public:
  QString name;
  QPointF center;
  double size = 0;
  QColor color;
};

/// A SkinState for QML, as what is to be drawn at a width. A new volume changes nothing but what
/// depends on it. Main thread.
class ModuleBinding : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each module.")
  Q_PROPERTY(double width READ width WRITE setWidth NOTIFY changed)
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(QRectF titleFrame READ titleFrame CONSTANT)
  Q_PROPERTY(int titlePixels READ titlePixels CONSTANT)
  Q_PROPERTY(double titleScale READ titleScale CONSTANT)
  Q_PROPERTY(QColor foreground READ foreground NOTIFY changed)
  Q_PROPERTY(plemora::ModuleSymbol chevron READ chevron NOTIFY changed)
  Q_PROPERTY(plemora::ModuleSymbol output READ output NOTIFY changed)
  Q_PROPERTY(plemora::ModuleSymbol loudness READ loudness NOTIFY changed)
  Q_PROPERTY(QRectF button READ button NOTIFY changed)
  Q_PROPERTY(QColor buttonColor READ buttonColor NOTIFY changed)
  Q_PROPERTY(plemora::ModuleSymbol buttonSymbol READ buttonSymbol NOTIFY changed)
  Q_PROPERTY(QRectF track READ track NOTIFY changed)
  Q_PROPERTY(QColor trackColor READ trackColor NOTIFY changed)
  Q_PROPERTY(QColor fillColor READ fillColor NOTIFY changed)
  Q_PROPERTY(double fillOpacity READ fillOpacity NOTIFY changed)
  Q_PROPERTY(double fillWidth READ fillWidth NOTIFY volumeChanged)
  Q_PROPERTY(QSizeF knob READ knob CONSTANT)
  Q_PROPERTY(QColor knobColor READ knobColor CONSTANT)
  Q_PROPERTY(double knobOffset READ knobOffset NOTIFY volumeChanged)

 public:
  /// All outlive it.
  ModuleBinding(SkinState& state, const ControlCenterLook& look, Appearance& appearance);

  double width() const { return width_; }
  void setWidth(double width);

  QString title() const { return ModuleDrawing::title; }
  QRectF titleFrame() const;
  /// The size of its font: the toolkit has whole ones alone, so it is scaled down from that.
  int titlePixels() const;
  double titleScale() const { return drawing_.titleSize / titlePixels(); }
  QColor foreground() const;
  ModuleSymbol chevron() const;
  ModuleSymbol output() const;
  ModuleSymbol loudness() const;
  QRectF button() const;  ///< empty: none
  QColor buttonColor() const;
  ModuleSymbol buttonSymbol() const;
  QRectF track() const;
  QColor trackColor() const;
  QColor fillColor() const;
  double fillOpacity() const { return drawing_.fillOpacity; }
  double fillWidth() const;
  QSizeF knob() const { return {ModuleDrawing::knob.width, ModuleDrawing::knob.height}; }
  QColor knobColor() const;
  double knobOffset() const;

 signals:
  void changed();
  void volumeChanged();

 private:
  void update();

  SkinState& state_;
  const ControlCenterLook& look_;
  double width_ = 0;
  bool isDark_;
  ModuleDrawing drawing_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace plemora
