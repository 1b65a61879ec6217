#pragma once

#include <QtQml/qqmlregistration.h>

#include <QObject>
#include <QSizeF>
#include <QString>

#include "menubar/panel_row.h"
#include "views/device_list_model.h"

namespace plemora {

/// One row of the panel for QML: tells what has changed of it, and nothing when nothing has. Main
/// thread.
class RowBinding : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Rows come from the panel.")
  Q_PROPERTY(int kind READ kind CONSTANT)
  Q_PROPERTY(QString rowId READ rowId CONSTANT)
  Q_PROPERTY(double height READ height NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString detail READ detail NOTIFY changed)
  Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
  Q_PROPERTY(double symbolSize READ symbolSize NOTIFY changed)
  Q_PROPERTY(bool isSelected READ isSelected NOTIFY changed)
  Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
  Q_PROPERTY(double volume READ volume NOTIFY sliderChanged)
  Q_PROPERTY(bool isDimmed READ isDimmed NOTIFY sliderChanged)
  Q_PROPERTY(double level READ level NOTIFY levelChanged)
  Q_PROPERTY(bool isEnabled READ isEnabled NOTIFY changed)
  Q_PROPERTY(QString sliderLabel READ sliderLabel NOTIFY changed)
  Q_PROPERTY(QSizeF knob READ knob NOTIFY changed)
  Q_PROPERTY(double trackHeight READ trackHeight NOTIFY changed)
  Q_PROPERTY(bool isMuted READ isMuted NOTIFY changed)
  Q_PROPERTY(bool isCompact READ isCompact NOTIFY changed)
  Q_PROPERTY(QString icon READ icon NOTIFY changed)
  Q_PROPERTY(double iconOpacity READ iconOpacity NOTIFY changed)
  Q_PROPERTY(double iconSaturation READ iconSaturation NOTIFY changed)
  Q_PROPERTY(QString muteHelp READ muteHelp NOTIFY changed)
  Q_PROPERTY(QString outputHelp READ outputHelp NOTIFY changed)
  Q_PROPERTY(plemora::DeviceListModel* devices READ devices CONSTANT)

 public:
  explicit RowBinding(PanelRow row, QObject* parent = nullptr);

  /// Takes over everything but kind and id, which stay.
  void setRow(PanelRow row);
  /// Of a row with a slider: where it is now.
  void setSlider(float volume, bool isDimmed);
  /// What is heard of the app, 0...1 of the meter's length; below 0: no meter.
  void setLevel(double level);

  const PanelRow& row() const { return row_; }

  /// The number of a PanelRowKind.
  int kind() const { return static_cast<int>(row_.kind); }
  QString rowId() const { return QString::fromStdString(row_.id); }
  double height() const { return row_.height; }
  QString title() const { return QString::fromStdString(row_.title); }
  QString detail() const { return QString::fromStdString(row_.detail); }
  QString symbol() const { return QString::fromStdString(row_.symbol); }
  double symbolSize() const { return row_.symbolSize; }
  bool isSelected() const { return row_.isSelected; }
  bool isOpen() const { return row_.isOpen; }
  double volume() const { return static_cast<double>(row_.volume); }
  bool isDimmed() const { return row_.isDimmed; }
  double level() const { return level_; }
  bool isEnabled() const { return row_.isEnabled; }
  QString sliderLabel() const { return QString::fromStdString(row_.sliderLabel); }
  QSizeF knob() const { return {row_.slider.knob.width, row_.slider.knob.height}; }
  double trackHeight() const { return row_.slider.trackHeight; }
  bool isMuted() const { return row_.isMuted; }
  bool isCompact() const { return row_.isCompact; }
  QString icon() const { return QString::fromStdString(row_.icon.source); }
  double iconOpacity() const { return row_.iconOpacity; }
  double iconSaturation() const { return row_.iconSaturation; }
  QString muteHelp() const { return QString::fromStdString(row_.muteHelp); }
  QString outputHelp() const { return QString::fromStdString(row_.outputHelp); }
  DeviceListModel* devices() { return &devices_; }

 signals:
  void changed();
  void sliderChanged();
  void levelChanged();

 private:
  PanelRow row_;
  double level_ = -1;
  DeviceListModel devices_;
};

}  // namespace plemora
