#pragma once

#include <QtQml/qqmlregistration.h>

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"
#include "menubar/panel_view.h"
#include "skin/look/control_center_look.h"
#include "views/row_list_model.h"

namespace plemora {

/// A PanelView for QML: its rows as a model, and what the user does as calls. Main thread.
class PanelBinding : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each panel.")
  Q_PROPERTY(plemora::RowListModel* rows READ rows CONSTANT)
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(double width READ width CONSTANT)
  Q_PROPERTY(double height READ height NOTIFY heightChanged)
  Q_PROPERTY(double bottomPadding READ bottomPadding NOTIFY heightChanged)
  Q_PROPERTY(bool isVisible READ isVisible NOTIFY isVisibleChanged)
  Q_PROPERTY(bool showsFocus READ showsFocus NOTIFY showsFocusChanged)
  Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)
  Q_PROPERTY(QColor trackColor READ trackColor NOTIFY isDarkChanged)

 public:
  /// Where a place in the scene (points, y down) lies on the screens (global, y up).
  using ScreenMapping = std::function<Rect(const Rect& inScene)>;

  static constexpr double panelWidth = 308;

  /// Both outlive it.
  PanelBinding(PanelView& view, const ControlCenterLook& look);

  RowListModel* rows() { return &rows_; }
  QString title() const { return PanelView::title; }
  double width() const { return panelWidth; }
  /// Of everything; the padding lies below the last row.
  double height() const { return height_; }
  double bottomPadding() const { return bottomPadding_; }
  bool isVisible() const { return isVisible_; }
  bool showsFocus() const { return showsFocus_; }
  bool isDark() const { return view_.isDark.get(); }
  QColor trackColor() const;

  void setVisible(bool isVisible);
  /// Whether the focused control is marked: while keys are used, and not the pointer.
  void setShowsFocus(bool showsFocus);
  void setScreenMapping(ScreenMapping toScreen) { toScreen_ = std::move(toScreen); }

  Q_INVOKABLE void setMasterVolume(double volume);
  Q_INVOKABLE void toggleMasterMute() { view_.toggleMasterMute(); }
  Q_INVOKABLE void setMasterEditing(bool isEditing);
  Q_INVOKABLE void setVolume(const QString& app, double volume);
  Q_INVOKABLE void setEditing(const QString& app, bool isEditing);
  Q_INVOKABLE void toggleMute(const QString& app) { view_.toggleMute(app.toStdString()); }
  Q_INVOKABLE void toggleExpanded(const QString& app) { view_.toggleExpanded(app.toStdString()); }
  Q_INVOKABLE void setOutput(const QString& app, const QString& device);
  Q_INVOKABLE void chooseDevice(const QString& device) { view_.chooseDevice(device.toStdString()); }
  Q_INVOKABLE void presentRoutes(const QRectF& inScene);
  Q_INVOKABLE void setUp() { view_.setUp(); }
  Q_INVOKABLE void openSoundSettings() { view_.openSoundSettings(); }

 signals:
  void heightChanged();
  void isVisibleChanged();
  void showsFocusChanged();
  void isDarkChanged();

 private:
  void showRows(const PanelRows& rows);
  void showMeters(const LevelMeters::Levels& meters);
  void updateHeight();

  PanelView& view_;
  const ControlCenterLook& look_;
  RowListModel rows_;
  ScreenMapping toScreen_;
  double height_ = 0;
  double bottomPadding_ = 0;
  bool isVisible_ = false;
  bool showsFocus_ = false;
  std::vector<Subscription> subscriptions_;
};

}  // namespace plemora
